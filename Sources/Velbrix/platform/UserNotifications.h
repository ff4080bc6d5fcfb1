#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QString>

namespace velbrix {

struct NotificationSettings {
    bool mayNotify = false;
    // For the log: notDetermined, denied, authorized, provisional, ephemeral, unknown …
    QString authorization;
    QString alert; // … and notSupported, disabled, enabled, unknown

    bool operator==(const NotificationSettings &) const = default;
};

struct UserNotification {
    QString identifier; // a newer notice of the same identifier takes its place
    QString title;
    QString body;

    bool operator==(const UserNotification &) const = default;
};

// The system's notification banners. Main thread.
class UserNotifications {
public:
    virtual ~UserNotifications() = default;

    // Once, before anything else.
    virtual void registerCategory(const QString identifier) = 0;
    // For alerts, sounds and badges; true when granted.
    virtual QCoro::Task<Result<bool>> requestAuthorization() = 0;
    virtual QCoro::Task<NotificationSettings> settings() = 0;
    virtual QCoro::Task<Result<void>> post(const UserNotification notification) = 0;
};

} // namespace velbrix
