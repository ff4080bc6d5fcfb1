#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QString>
#include <QVariant>

namespace velbrix::test {

// A message bus of this test alone, which ends with it.
class OwnBus {
public:
    OwnBus() = default;
    ~OwnBus()
    {
        _daemon.kill();
        _daemon.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(OwnBus)

    // Before the first connection; the variable tells where it listens.
    bool start(const char *variable, const QString &configuration = QStringLiteral("--session"))
    {
        _daemon.start(QStringLiteral("dbus-daemon"),
                      {configuration, QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        return _daemon.waitForReadyRead(10000) && qputenv(variable, _daemon.readLine().trimmed());
    }

private:
    QProcess _daemon;
};

// Another program on the session bus.
class BusPeer {
public:
    ~BusPeer() { QDBusConnection::disconnectFromBus(_bus.name()); }
    BusPeer() = default;
    Q_DISABLE_COPY_MOVE(BusPeer)

    bool serve(const QString &path, QObject *object)
    {
        return _bus.registerObject(path, object,
                                   QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties |
                                       QDBusConnection::ExportAllSignals);
    }
    bool take(const QString &name) { return _bus.registerService(name); }
    void leave(const QString &name) { _bus.unregisterService(name); }
    void emitSignal(const QString &path, const QString &interface, const QString &signal,
                    const QVariantList &arguments = {})
    {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, signal);
        message.setArguments(arguments);
        _bus.send(message);
    }

private:
    QDBusConnection _bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("another program"));
};

} // namespace velbrix::test
