#pragma once

#include "platform/Permissions.h"

namespace velbrix {

// The privacy guards of macOS.
class MacPermissions final : public Permissions {
public:
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
};

} // namespace velbrix
