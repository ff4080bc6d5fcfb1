#include "platform/linux/dbus/FreedesktopNotifications.h"

#include "foundation/Log.h"
#include "platform/linux/dbus/SessionBus.h"

#include <QCoroDBusPendingReply>
#include <QDBusMessage>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QDBusPendingReply<QStringList> askBus(const QDBusConnection &bus, const QString &method)
{
    return bus.asyncCall(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                        u"org.freedesktop.DBus"_s, method));
}

QDBusMessage callOf(const QString &method)
{
    return QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_s,
                                          u"/org/freedesktop/Notifications"_s,
                                          u"org.freedesktop.Notifications"_s, method);
}

QCoro::Task<Result<bool>> isServiceThere()
{
    const auto bus = sessionBus();
    if (!bus)
        co_return failure(u"没有会话总线，无法显示系统通知"_s);
    // Both questions travel together.
    const auto running = askBus(*bus, u"ListNames"_s);
    const auto startable = askBus(*bus, u"ListActivatableNames"_s);
    for (QDBusPendingReply<QStringList> names : {running, startable}) {
        co_await names;
        if (names.isError())
            co_return failure(names.error().message());
        if (names.value().contains(u"org.freedesktop.Notifications"_s))
            co_return true;
    }
    co_return failure(u"桌面没有通知服务（org.freedesktop.Notifications）"_s);
}

} // namespace

void FreedesktopNotifications::registerCategory(QString identifier)
{
    log::line(u"Notify"_s, u"category "_s + identifier);
}

QCoro::Task<Result<bool>> FreedesktopNotifications::requestAuthorization()
{
    return isServiceThere();
}

QCoro::Task<NotificationSettings> FreedesktopNotifications::settings()
{
    const Result<bool> isThere = co_await isServiceThere();
    if (isThere)
        co_return NotificationSettings{u"authorized"_s, u"enabled"_s};
    co_return NotificationSettings{u"denied"_s, u"notSupported"_s};
}

QCoro::Task<Result<void>> FreedesktopNotifications::post(const UserNotice notice)
{
    const auto bus = sessionBus();
    if (!bus)
        co_return failure(u"没有会话总线，无法显示系统通知"_s);
    // Every time: another service may have taken the place of the last one.
    QDBusPendingReply<QStringList> capabilities = bus->asyncCall(callOf(u"GetCapabilities"_s));
    co_await capabilities;
    const bool takesMarkup = capabilities.isError() || capabilities.value().contains(u"body-markup"_s);
    QDBusMessage call = callOf(u"Notify"_s);
    constexpr int serversChoice = -1;
    call << u"Velbrix"_s << _shown.value(notice.identifier) << u"velbrix"_s << notice.title
         << (takesMarkup ? notice.body.toHtmlEscaped() : notice.body) << QStringList() << QVariantMap()
         << serversChoice;
    QDBusPendingReply<uint> shown = bus->asyncCall(call);
    co_await shown;
    if (shown.isError())
        co_return failure(shown.error().message());
    _shown[notice.identifier] = shown.value();
    co_return Result<void>();
}

} // namespace velbrix
