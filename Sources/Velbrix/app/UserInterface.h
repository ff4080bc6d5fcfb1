#pragma once

#include "app/TrayMenu.h"

#include <QList>
#include <QRect>

#include <functional>
#include <optional>

namespace velbrix {

// The windows and the tray icon as the application's delegate moves them.
class UserInterface {
public:
    virtual ~UserInterface() = default;

    // Shows the window before all others, at the frame when there is one that
    // still lies on a screen.
    virtual void showMainWindow(const std::optional<QRect> &frame) = 0;
    virtual void hideMainWindow() = 0;
    // In the task bar; at the frame when the user restores it from there.
    virtual void minimizeMainWindow(const std::optional<QRect> &frame) = 0;
    virtual bool isMainWindowVisible() const = 0;
    // Empty until the window was shown once.
    virtual std::optional<QRect> mainWindowFrame() const = 0;

    // The icon appears with its menu; `clicked` is called before the menu
    // opens, `chosen` with the entry that the user picked.
    virtual void createTray(const QList<TrayMenuItem> &menu, std::function<void()> clicked,
                            std::function<void(const QString &id)> chosen) = 0;
    virtual void updateTray(const QList<TrayMenuItem> &menu, bool isRecording) = 0;
    virtual void removeTray() = 0;

    virtual void showPrivacyStatement() = 0;
};

} // namespace velbrix
