#pragma once

#include "platform/Permissions.h"

namespace velbrix {

// X11 guards nothing of this, so the answers are "yes"; in a session of another
// kind the screen cannot be seen at all.
class LinuxPermissions final : public Permissions {
public:
    LinuxPermissions();

    bool preflightScreenCapture() override;
    bool requestScreenCapture() override;
    AuthorizationStatus microphone() const override;
    QCoro::Task<bool> requestMicrophone() override;
    AuthorizationStatus camera() const override;
    QCoro::Task<bool> requestCamera() override;
    bool accessibilityTrusted() const override;
    void promptForAccessibility() override;
    QString explanation(PrivacyPane pane) const override;
    bool openSettings(PrivacyPane pane) override;

private:
    enum class Session { x11, xwayland, other };
    Session _session = Session::other;
};

} // namespace velbrix
