#pragma once

#include "app/UserInterface.h"
#include "views/FocusRings.h"
#include "views/Theme.h"

#include <functional>
#include <memory>

namespace velbrix {

class AppDelegate;
class AppServices;
class MainWindow;
class StatusItem;
class ToastStack;

// The windows and the tray icon on a real desktop. The window is made when it
// is first shown.
class WidgetInterface final : public UserInterface {
public:
    // Needs a QApplication; the services must outlive it.
    explicit WidgetInterface(AppServices &services);
    ~WidgetInterface() override;

    // Asked when the user closes the window, and told when they restore it;
    // without one the window closes. It must live as long as events are handled.
    void setDelegate(AppDelegate &delegate) { _delegate = &delegate; }

    void showMainWindow(const std::optional<QRect> &frame) override;
    void hideMainWindow() override;
    void minimizeMainWindow(const std::optional<QRect> &frame) override;
    bool isMainWindowVisible() const override;
    std::optional<QRect> mainWindowFrame() const override;

    void createTray(const QList<TrayMenuItem> &menu, std::function<void()> clicked,
                    std::function<void(const QString &id)> chosen) override;
    void updateTray(const QList<TrayMenuItem> &menu, bool isRecording) override;
    void removeTray() override;

    void showPrivacyStatement() override;

    // Null before the first showing.
    MainWindow *mainWindow() const { return _window.get(); }
    StatusItem *statusItem() const { return _statusItem.get(); }

private:
    MainWindow &window();
    void placeWindow(const std::optional<QRect> &frame);
    void shareKeys();
    QRect usableScreen() const;

    AppServices &_services;
    Theme _theme;
    FocusRings _focusRings;
    AppDelegate *_delegate = nullptr;
    std::unique_ptr<MainWindow> _window;
    std::unique_ptr<StatusItem> _statusItem;
    std::unique_ptr<ToastStack> _toasts;
    bool _wasShown = false;
};

// Whether enough of the window's top can be seen to take hold of it.
bool liesOnAScreen(const QRect &frame, const QList<QRect> &screens);

} // namespace velbrix
