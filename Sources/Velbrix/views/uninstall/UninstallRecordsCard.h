#pragma once

#include "maintenance/uninstall/UninstallTypes.h"
#include "views/ViewContext.h"
#include "views/components/Card.h"

namespace velbrix {

class JobBar;

// The last uninstalls, which can be put back.
class UninstallRecordsCard final : public Card {
public:
    explicit UninstallRecordsCard(const ViewContext &context, QWidget *parent = nullptr);

private:
    void rebuild();
    QWidget *makeRow(const UninstallRecord &record);
    QWidget *makeButtons(const UninstallRecord &record);
    void askToForget(const UninstallRecord &record);
    void showBusy();

    ViewContext _context;
    QWidget *_none;
    QWidget *_list;
    JobBar *_job;
};

// "3 项已移到废纸篓 · 1 项没有移动 · firefox 由软件包管理器移除".
QString recordText(const UninstallRecord &record);

} // namespace velbrix
