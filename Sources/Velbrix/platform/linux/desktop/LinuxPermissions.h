#pragma once

#include "platform/Permissions.h"

namespace velbrix {

// Nothing of this is guarded, so the answers are "yes", except where the screen
// cannot be seen at all.
class LinuxPermissions final : public Permissions {
public:
    // Why the screen cannot be captured, in words; empty when it can.
    explicit LinuxPermissions(QString screenObstacle);

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
    const QString _screenObstacle;
};

} // namespace velbrix
