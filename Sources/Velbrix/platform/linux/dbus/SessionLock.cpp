#include "platform/linux/dbus/SessionLock.h"

#include "platform/linux/dbus/SessionBus.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <array>
#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString login = u"org.freedesktop.login1"_s;
const QString loginSession = u"org.freedesktop.login1.Session"_s;
const QString properties = u"org.freedesktop.DBus.Properties"_s;

struct Saver {
    QString name; // of the service and of its interface
    QString path;
};

const std::array<Saver, 5> &savers()
{
    static const std::array<Saver, 5> all{{
        {u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s},
        {u"org.gnome.ScreenSaver"_s, u"/org/gnome/ScreenSaver"_s},
        {u"org.xfce.ScreenSaver"_s, u"/org/xfce/ScreenSaver"_s},
        {u"org.mate.ScreenSaver"_s, u"/org/mate/ScreenSaver"_s},
        {u"org.cinnamon.ScreenSaver"_s, u"/org/cinnamon/ScreenSaver"_s},
    }};
    return all;
}

// Calls back only with a value, and never after the owner's death.
template <typename Value>
void ask(QObject *owner, const QDBusConnection &bus, QDBusMessage call, std::function<void(Value)> answered)
{
    call.setAutoStartService(false);
    auto *pending = new QDBusPendingCallWatcher(bus.asyncCall(call), owner);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, owner,
                     [pending, answered = std::move(answered)] {
                         pending->deleteLater();
                         const QDBusPendingReply<Value> reply = *pending;
                         if (reply.isValid())
                             answered(reply.value());
                     });
}

} // namespace

SessionLock::SessionLock()
{
    watchLoginSession();
    watchSavers();
}

void SessionLock::watchLoginSession()
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return;
    const QString session = qEnvironmentVariable("XDG_SESSION_ID");
    QDBusMessage call = QDBusMessage::createMethodCall(
        login, u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s,
        session.isEmpty() ? u"GetSessionByPID"_s : u"GetSession"_s);
    if (session.isEmpty())
        call.setArguments({static_cast<uint>(QCoreApplication::applicationPid())});
    else
        call.setArguments({session});
    ask<QDBusObjectPath>(this, bus, call,
                         [this](const QDBusObjectPath &path) { followLoginSession(path.path()); });
}

void SessionLock::followLoginSession(const QString &path)
{
    _sessionPath = path;
    // No service name here: Qt would wait for the bus to name its owner.
    QDBusConnection::systemBus().connect({}, path, properties, u"PropertiesChanged"_s, this,
                                         SLOT(sessionChanged(QDBusMessage)));
    askLoginSession();
}

void SessionLock::askLoginSession()
{
    QDBusMessage call = QDBusMessage::createMethodCall(login, _sessionPath, properties, u"Get"_s);
    call.setArguments({loginSession, u"LockedHint"_s});
    ask<QDBusVariant>(this, QDBusConnection::systemBus(), call,
                      [this](const QDBusVariant &value) { setLocked(value.variant().toBool()); });
}

void SessionLock::sessionChanged(const QDBusMessage &message)
{
    if (message.arguments().value(0).toString() == loginSession)
        askLoginSession();
}

void SessionLock::watchSavers()
{
    auto bus = sessionBus();
    if (!bus)
        return;
    auto *watcher = new QDBusServiceWatcher(this);
    watcher->setConnection(*bus);
    watcher->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString &name) { setSaver(name, false); });
    for (const auto &[name, path] : savers()) {
        watcher->addWatchedService(name);
        // Whatever path the saver has chosen.
        bus->connect({}, {}, name, u"ActiveChanged"_s, this, SLOT(saverChanged(QDBusMessage)));
        askSaver(name, path);
    }
}

void SessionLock::askSaver(const QString &name, const QString &path)
{
    ask<bool>(this, *sessionBus(), QDBusMessage::createMethodCall(name, path, name, u"GetActive"_s),
              [this, name](bool active) { setSaver(name, active); });
}

void SessionLock::saverChanged(const QDBusMessage &message)
{
    setSaver(message.interface(), message.arguments().value(0).toBool());
}

void SessionLock::setLocked(bool locked)
{
    const bool before = isLocked();
    _isLocked = locked;
    if (isLocked() != before)
        Q_EMIT changed();
}

void SessionLock::setSaver(const QString &name, bool active)
{
    const bool before = isLocked();
    if (active)
        _activeSavers.insert(name);
    else
        _activeSavers.remove(name);
    if (isLocked() != before)
        Q_EMIT changed();
}

} // namespace velbrix
