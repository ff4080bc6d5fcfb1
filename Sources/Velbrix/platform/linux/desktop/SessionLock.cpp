#include "platform/linux/desktop/SessionLock.h"

#include "platform/linux/dbus/Bus.h"
#include "platform/linux/desktop/Desktop.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString sessionInterface = u"org.freedesktop.login1.Session"_s;

BusObject loginManager(const QString &path, const QString &interface)
{
    return {.bus = Bus::system,
            .service = u"org.freedesktop.login1"_s,
            .path = path,
            .interface = interface,
            .mayStart = false,
            .deadline = startDeadline};
}

BusObject saver(const QString &service, const QString &path)
{
    return {
        .service = service, .path = path, .interface = service, .mayStart = false, .deadline = startDeadline};
}

} // namespace

SessionLock::SessionLock()
{
    followLoginSession();
    followSavers();
}

QCoro::Task<> SessionLock::followLoginSession()
{
    const QPointer self(this);
    const QString session = qEnvironmentVariable("XDG_SESSION_ID");
    const BusObject manager = loginManager(u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s);
    const QString question = session.isEmpty() ? u"GetSessionByPID"_s : u"GetSession"_s;
    const QVariantList which{session.isEmpty()
                                 ? QVariant(static_cast<uint>(QCoreApplication::applicationPid()))
                                 : QVariant(session)};
    const auto answer = co_await callBus(manager, question, which);
    if (!self || !answer)
        co_return;
    const QString path = answer->value(0).value<QDBusObjectPath>().path();
    _signals.push_back(observeBus(loginManager(path, u"org.freedesktop.DBus.Properties"_s),
                                  u"PropertiesChanged"_s, [this, path](const QDBusMessage &message) {
                                      if (message.arguments().value(0).toString() == sessionInterface)
                                          askLoginSession(path);
                                  }));
    askLoginSession(path);
}

QCoro::Task<> SessionLock::askLoginSession(const QString path)
{
    const QPointer self(this);
    const auto hint = co_await busProperty(loginManager(path, sessionInterface), u"LockedHint"_s);
    if (self && hint)
        setLocked(hint->toBool());
}

void SessionLock::followSavers()
{
    const auto bus = busConnection(Bus::session);
    if (!bus)
        return;
    _saverEnds.setConnection(*bus);
    _saverEnds.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&_saverEnds, &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString &service) { setSaver(service, false); });
    const auto follow = [this](const QString &service, const QString &path) {
        _saverEnds.addWatchedService(service);
        // Whatever path the saver has chosen.
        _signals.push_back(
            observeBus(saver(service, {}), u"ActiveChanged"_s, [this, service](const QDBusMessage &message) {
                setSaver(service, message.arguments().value(0).toBool());
            }));
        askSaver(service, path);
    };
    follow(u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s);
    for (const Desktop &desktop : desktops()) {
        if (!desktop.saverService.isEmpty())
            follow(desktop.saverService, desktop.saverPath);
    }
}

QCoro::Task<> SessionLock::askSaver(const QString service, const QString path)
{
    const QPointer self(this);
    const QVariantList none;
    const auto active = co_await callBus(saver(service, path), u"GetActive"_s, none);
    if (self && active)
        setSaver(service, active->value(0).toBool());
}

void SessionLock::setLocked(bool locked)
{
    const bool before = isLocked();
    _isLocked = locked;
    if (isLocked() != before)
        Q_EMIT changed();
}

void SessionLock::setSaver(const QString &service, bool active)
{
    const bool before = isLocked();
    if (active)
        _activeSavers.insert(service);
    else
        _activeSavers.remove(service);
    if (isLocked() != before)
        Q_EMIT changed();
}

} // namespace velbrix
