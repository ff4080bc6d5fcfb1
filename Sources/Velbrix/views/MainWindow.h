#pragma once

#include "app/AppTab.h"
#include "app/RecordingActions.h"
#include "app/WallpaperActions.h"
#include "views/TabActivity.h"

#include <QHash>
#include <QMainWindow>

#include <functional>

class QStackedWidget;

namespace velbrix {

class AppServices;
class NoticeDesk;
class Theme;

// The one window: sidebar, the chosen page, and the notices over both.
class MainWindow final : public QMainWindow {
public:
    // `shouldClose` answers whether the window may really close.
    MainWindow(AppServices &services, Theme &theme, std::function<bool()> shouldClose);
    ~MainWindow() override;

    void showPrivacyStatement();

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void showPage(AppTab tab);
    QWidget *makePage(AppTab tab);
    void addShortcuts();

    AppServices &_services;
    Theme &_theme;
    RecordingActions _recording;
    WallpaperActions _wallpaper;
    TabActivity _activity;
    std::function<bool()> _shouldClose;
    QStackedWidget *_pages;
    QHash<AppTab, QWidget *> _made;
    NoticeDesk *_notices;
};

} // namespace velbrix
