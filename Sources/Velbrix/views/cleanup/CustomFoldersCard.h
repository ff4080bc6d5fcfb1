#pragma once

#include "views/ViewContext.h"
#include "views/components/Card.h"

#include <QCoroTask>
#include <QHash>

class QPushButton;

namespace velbrix {

class SettingRow;
class SystemCleaner;

// Folders of the user's own choice: added by panel or by dropping them here.
class CustomFoldersCard final : public Card {
public:
    explicit CustomFoldersCard(const ViewContext &context, QWidget *parent = nullptr);

    static QString heading();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void choose();
    QCoro::Task<> addFolders(QStringList paths);
    void showFolders();
    void showAdding();

    ViewContext _context;
    SystemCleaner &_cleaner;
    QPushButton *_add;
    SettingRow *_problem;
    QWidget *_folders;
    QHash<QString, QWidget *> _rows; // by id
};

} // namespace velbrix
