#pragma once

#include "platform/DesktopServices.h"

namespace velbrix {

// Before the QApplication is made: has the system wait for the program's own end
// where it wants to end it, at a logout too, instead of being refused by Qt.
void installApplicationDelegate();

// NSApplication and NSWorkspace. The menu bar is always there, so a tray host
// is too.
class MacDesktopServices final : public DesktopServices {
public:
    void setAccessoryPresence() override;
    void resetPresence() override;
    void allowSystemToEnd() override;
    void activate() override;

    void beep() override;
    Result<void> revealInFolder(const QString &path) override;
    Result<void> openFile(const QString &path) override;

    bool hasTrayHost() const override;
    Observation observeTrayHost(std::function<void()> changed) override;

    bool prefersReducedMotion() const override;
    bool prefersDarkTheme() const override;
    Observation observeTheme(std::function<void()> changed) override;

    Observation observeUnhide(std::function<void()> unhidden) override;
    Observation observeReopen(std::function<void()> reopened) override;
};

} // namespace velbrix
