#pragma once

#include "platform/DesktopServices.h"
#include "platform/linux/dbus/StatusNotifierHost.h"
#include "platform/linux/desktop/DesktopAppearance.h"

class QWindow;

namespace velbrix {

// What the desktops of freedesktop.org have in common; the window system adds
// the rest.
class LinuxDesktopServices : public DesktopServices {
public:
    LinuxDesktopServices();

    // A task bar lists a program's visible windows and nothing else, so hiding
    // them is all there is to being a program of the tray.
    void setAccessoryPresence() override {}
    void resetPresence() override {}
    // The end of a session waits for the program's own end.
    void allowSystemToEnd() override {}
    void activate() override;

    // The file manager is asked without waiting for it; when it cannot select
    // the file, its folder is opened.
    Result<void> revealInFolder(const QString &path) override;
    Result<void> openFile(const QString &path) override;

    // False until the session bus has answered, unless there is another tray.
    bool hasTrayHost() const override;
    Observation observeTrayHost(std::function<void()> changed) override;

    bool prefersReducedMotion() const override;
    bool prefersDarkTheme() const override;
    Observation observeTheme(std::function<void()> changed) override;

    // Windows are hidden one by one, never a whole program.
    Observation observeUnhide(std::function<void()> unhidden) override;
    // A second start is another process here.
    Observation observeReopen(std::function<void()> reopened) override;

protected:
    // The program's own window, if it is open.
    static QWindow *firstWindow();
    // Whether there is a tray that is not reached over the session bus.
    void setOtherTray(bool isPresent);

private:
    void tellObservers(bool hadTrayHost) const;

    ObserverList<void()> _trayObservers;
    bool _hasOtherTray = false;
    bool _hasItemHost = false; // as last told
    StatusNotifierHost _itemHost;
    DesktopAppearance _appearance;
};

} // namespace velbrix
