#include "platform/linux/dbus/FreedesktopNotifications.h"

#include "foundation/Log.h"
#include "platform/linux/dbus/Bus.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString notifications = u"org.freedesktop.Notifications"_s;
const QString category = u"Notify"_s;

const BusObject service{.service = notifications,
                        .path = u"/org/freedesktop/Notifications"_s,
                        .interface = notifications,
                        .category = category,
                        .deadline = startDeadline};
const BusObject daemon{.service = u"org.freedesktop.DBus"_s,
                       .path = u"/org/freedesktop/DBus"_s,
                       .interface = u"org.freedesktop.DBus"_s,
                       .category = category};

QCoro::Task<Result<bool>> isServiceThere()
{
    if (!busConnection(Bus::session))
        co_return failure(u"没有会话总线，无法显示系统通知"_s);
    const QVariantList none;
    for (const QString &question : {u"ListNames"_s, u"ListActivatableNames"_s}) {
        const auto names = co_await callBus(daemon, question, none);
        if (!names)
            co_return std::unexpected(names.error());
        if (names->value(0).toStringList().contains(notifications))
            co_return true;
    }
    co_return failure(u"桌面没有通知服务（org.freedesktop.Notifications）"_s);
}

} // namespace

void FreedesktopNotifications::registerCategory(QString identifier)
{
    log::line(category, u"category "_s + identifier);
}

QCoro::Task<Result<bool>> FreedesktopNotifications::requestAuthorization()
{
    return isServiceThere();
}

QCoro::Task<NotificationSettings> FreedesktopNotifications::settings()
{
    const Result<bool> isThere = co_await isServiceThere();
    if (isThere)
        co_return NotificationSettings{true, u"authorized"_s, u"enabled"_s};
    co_return NotificationSettings{false, u"denied"_s, u"notSupported"_s};
}

QCoro::Task<Result<void>> FreedesktopNotifications::post(const UserNotification notification)
{
    if (!busConnection(Bus::session))
        co_return failure(u"没有会话总线，无法显示系统通知"_s);
    // Every time: another service may have taken the place of the last one.
    const QVariantList none;
    const auto capabilities = co_await callBus(service, u"GetCapabilities"_s, none);
    const bool takesMarkup =
        !capabilities || capabilities->value(0).toStringList().contains(u"body-markup"_s);
    constexpr int serversChoice = -1;
    const QVariantList arguments{u"Velbrix"_s,
                                 _shown.value(notification.identifier),
                                 u"velbrix"_s,
                                 notification.title,
                                 takesMarkup ? notification.body.toHtmlEscaped() : notification.body,
                                 QStringList(),
                                 QVariantMap(),
                                 serversChoice};
    const auto shown = co_await callBus(service, u"Notify"_s, arguments);
    if (!shown)
        co_return std::unexpected(shown.error());
    _shown[notification.identifier] = shown->value(0).toUInt();
    co_return Result<void>();
}

} // namespace velbrix
