#pragma once

#include "platform/UserNotifications.h"
#include <utility>

#include <QStringList>

namespace velbrix::test {

class FakeUserNotifications final : public UserNotifications {
public:
    Result<bool> authorization = true; // what the request answers
    NotificationSettings current{QStringLiteral("authorized"), QStringLiteral("enabled")};
    QStringList calls; // "register …", "requestAuthorization", "settings"
    QList<UserNotice> posted;

    void registerCategory(const QString identifier) override
    {
        calls.append(QStringLiteral("register ") + identifier);
    }
    QCoro::Task<Result<bool>> requestAuthorization() override
    {
        calls.append(QStringLiteral("requestAuthorization"));
        co_return std::as_const(authorization);
    }
    QCoro::Task<NotificationSettings> settings() override
    {
        calls.append(QStringLiteral("settings"));
        co_return std::as_const(current);
    }
    QCoro::Task<Result<void>> post(const UserNotice notice) override
    {
        posted.append(notice);
        co_return Result<void>();
    }
};

} // namespace velbrix::test
