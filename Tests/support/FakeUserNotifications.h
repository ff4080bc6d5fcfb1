#pragma once

#include "platform/UserNotifications.h"
#include "support/AnswerTime.h"

#include <QStringList>

#include <utility>

namespace velbrix::test {

// Shows banners as long as the user has granted them.
class FakeUserNotifications final : public UserNotifications {
public:
    Result<bool> authorization = true; // what the request answers
    NotificationSettings current{true, QStringLiteral("authorized"), QStringLiteral("enabled")};
    QStringList calls;              // "register …", "requestAuthorization", "settings"
    QList<UserNotification> posted; // in their order; refused ones are not among them

    void registerCategory(const QString identifier) override
    {
        calls.append(QStringLiteral("register ") + identifier);
    }
    QCoro::Task<Result<bool>> requestAuthorization() override
    {
        calls.append(QStringLiteral("requestAuthorization"));
        co_await _answer.after();
        co_return std::as_const(authorization);
    }
    QCoro::Task<NotificationSettings> settings() override
    {
        calls.append(QStringLiteral("settings"));
        co_await _answer.after();
        co_return std::as_const(current);
    }
    QCoro::Task<Result<void>> post(const UserNotification notification) override
    {
        co_await _answer.after();
        if (!authorization)
            co_return std::unexpected(authorization.error());
        if (!*authorization || !current.mayNotify)
            co_return failure(QStringLiteral("系统没有允许通知"));
        posted.append(notification);
        co_return Result<void>();
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test
