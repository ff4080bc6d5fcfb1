#pragma once

#include "platform/UserNotifications.h"

#include <QStringList>

namespace velbrix::test {

class FakeUserNotifications final : public UserNotifications {
public:
    Result<bool> authorization = true; // what the request answers
    NotificationSettings current{QStringLiteral("authorized"), QStringLiteral("enabled")};
    QStringList calls; // "register …", "requestAuthorization", "settings"

    void registerCategory(const QString identifier) override
    {
        calls.append(QStringLiteral("register ") + identifier);
    }
    QCoro::Task<Result<bool>> requestAuthorization() override
    {
        calls.append(QStringLiteral("requestAuthorization"));
        co_return authorization;
    }
    QCoro::Task<NotificationSettings> settings() override
    {
        calls.append(QStringLiteral("settings"));
        co_return current;
    }
};

} // namespace velbrix::test
