#pragma once

#include "app/PrivacyConsent.h"
#include "foundation/Clock.h"
#include "foundation/Published.h"

#include <QObject>
#include <QSet>

#include <memory>
#include <optional>

namespace velbrix {

class Permissions;
class SettingsStore;
class UserNotifications;

// Remembers what the user has agreed to, and asks before a feature does for
// the first time what needs their consent.
class PrivacyManager final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(PrivacyManager, bool, hasAcceptedFirstLaunchNotice, false)
    VELB_PUBLISHED(PrivacyManager, std::optional<FeaturePrivacyNotice>, pendingFeatureNotice)
    VELB_PUBLISHED(PrivacyManager, int, firstLaunchCountdown, firstLaunchSeconds) // seconds left

public:
    static constexpr int firstLaunchSeconds = 10;

    PrivacyManager(Permissions &permissions, UserNotifications &notifications, SettingsStore &settings,
                   Clock &clock, QObject *parent = nullptr);
    ~PrivacyManager() override;

    bool hasConsent(PrivacyConsentKind kind) const { return _consented.contains(rawValue(kind)); }
    void grant(PrivacyConsentKind kind);
    void acceptFirstLaunch();

    // Whether the statement is accepted; asks for it when it is not. For what
    // must not even be asked for before.
    bool requireStatement();
    // Runs the action, after the notice has been confirmed if that is needed.
    // A newer notice takes the place of one still waiting, which is cancelled.
    void guard(FeaturePrivacyNotice notice, std::function<void()> action);
    void confirmPendingNotice();
    void cancelPendingNotice();
    // What the user has to agree to in the window before a guarded action of
    // this kind can be done; empty when nothing is open.
    QString missingConsent(PrivacyConsentKind kind) const;

    // Counts the seconds down while the statement is visible.
    void startFirstLaunchCountdown();
    // The statement's confirm button; does nothing before the countdown ends.
    void confirmFirstLaunch();

    // Once per installation: asks for every system permission in turn.
    void promptAllSystemPermissions();

Q_SIGNALS:
    // The user wants what needs the statement, and has not accepted it yet.
    void statementNeeded();

private:
    void set(const QString &name, const QJsonValue &value);

    Permissions &_permissions;
    UserNotifications &_notifications;
    SettingsStore &_settings;
    Clock &_clock;
    QSet<QString> _consented;
    std::unique_ptr<Alarm> _countdown;
    std::unique_ptr<Alarm> _screenPrompt;
    std::unique_ptr<Alarm> _accessibilityPrompt;
};

} // namespace velbrix
