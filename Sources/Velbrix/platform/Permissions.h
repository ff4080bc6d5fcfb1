#pragma once

#include <QCoroTask>
#include <QString>

namespace velbrix {

enum class AuthorizationStatus { notDetermined, restricted, denied, authorized };

enum class PrivacyPane { screenCapture, microphone, camera, accessibility, notifications };

// What the system lets this program see and hear. On a host without such a
// guard the answers are "yes", or "no" with the reason in words. Main thread.
class Permissions {
public:
    virtual ~Permissions() = default;

    virtual bool preflightScreenCapture() = 0;
    // May show the system's prompt; answers what holds at that moment.
    virtual bool requestScreenCapture() = 0;

    virtual AuthorizationStatus microphone() const = 0;
    virtual QCoro::Task<bool> requestMicrophone() = 0;
    virtual AuthorizationStatus camera() const = 0;
    virtual QCoro::Task<bool> requestCamera() = 0;

    virtual bool accessibilityTrusted() const = 0;
    virtual void promptForAccessibility() = 0;

    // Why the permission is missing or does not exist here; empty when it is
    // an ordinary matter of the user's choice.
    virtual QString explanation(PrivacyPane pane) const = 0;
    // False where the system has no such page.
    virtual bool openSettings(PrivacyPane pane) = 0;
};

} // namespace velbrix
