#pragma once

#include <QHash>
#include <QMainWindow>
#include <QString>

#include <functional>

class QStackedWidget;

namespace velbrix {

class AppServices;
class NoticeDesk;
class Theme;

// The one window: sidebar, the chosen page, and the notices over both. Nothing
// in it can be used while the program ends.
class MainWindow final : public QMainWindow {
public:
    struct Events {
        std::function<bool()> shouldClose; // whether it may really close
        std::function<void()> restored;    // it was minimised
    };
    MainWindow(AppServices &services, Theme &theme, Events events);
    ~MainWindow() override;

    void showPrivacyStatement();

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void showPage(const QString &tool);
    void addShortcuts();

    AppServices &_services;
    Theme &_theme;
    const Events _events;
    QStackedWidget *_pages;
    QHash<QString, QWidget *> _made; // by tool
    NoticeDesk *_notices;
};

} // namespace velbrix
