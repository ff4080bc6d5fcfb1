#pragma once

#include "maintenance/uninstall/UninstallTypes.h"
#include "views/Page.h"
#include "views/ViewContext.h"

#include <QPointer>

namespace velbrix {

class AppListCard;
class Sheet;

// The uninstaller.
class UninstallContentView final : public Page {
public:
    explicit UninstallContentView(const ViewContext &context, QWidget *parent = nullptr);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void ask(const AppInfo &app);
    void openSettings();
    void showReview();
    void showProgress();

    ViewContext _context;
    AppListCard *_apps;
    QString _asked; // the application whose review was asked for
    QPointer<Sheet> _settings;
    QPointer<Sheet> _review;
    QPointer<Sheet> _progress;
};

} // namespace velbrix
