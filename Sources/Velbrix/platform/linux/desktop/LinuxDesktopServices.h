#pragma once

#include "platform/DesktopServices.h"
#include "platform/linux/dbus/TrayHost.h"
#include "platform/linux/desktop/DesktopAppearance.h"

namespace velbrix {

class LinuxDesktopServices final : public DesktopServices {
public:
    // An X11 task bar lists a program's visible windows and nothing else, so
    // hiding them is all there is to being a program of the tray.
    void setAccessoryPresence() override;
    void resetPresence() override;
    void activate() override;

    void beep() override;
    // The file manager is asked without waiting for it; when it cannot select
    // the file, its folder is opened.
    Result<void> revealInFolder(const QString &path) override;

    // False until the session bus has answered, unless there is an XEmbed tray.
    bool hasTrayHost() const override;
    Observation observeTrayHost(std::function<void()> changed) override;

    bool prefersReducedMotion() const override;
    bool prefersDarkTheme() const override;
    Observation observeTheme(std::function<void()> changed) override;

    // X11 hides windows one by one, never a whole program.
    Observation observeUnhide(std::function<void()> unhidden) override;

private:
    TrayHost _trayHost;
    DesktopAppearance _appearance;
};

} // namespace velbrix
