#pragma once

#include "platform/DesktopServices.h"

#include <memory>

namespace velbrix {

// NSApplication and NSWorkspace. The menu bar is always there, so a tray host
// is too.
class MacDesktopServices final : public DesktopServices {
public:
    MacDesktopServices();
    ~MacDesktopServices() override;

    void setAccessoryPresence() override;
    void resetPresence() override;
    void activate() override;

    void beep() override;
    Result<void> revealInFolder(const QString &path) override;

    bool hasTrayHost() const override;
    void observeTrayHost(std::function<void()> changed) override;

    bool prefersReducedMotion() const override;
    bool prefersDarkTheme() const override;
    void observeTheme(std::function<void()> changed) override;

    void observeUnhide(std::function<void()> unhidden) override;

private:
    struct Private;
    std::unique_ptr<Private> _d;
};

} // namespace velbrix
