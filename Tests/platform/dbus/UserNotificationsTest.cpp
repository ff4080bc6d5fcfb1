#include "platform/linux/dbus/FreedesktopNotifications.h"

#include "support/Bus.h"
#include "support/FakeSystem.h"
#include "support/Test.h"

namespace {

const QString serviceName = u"org.freedesktop.Notifications"_s;

// A bus that can start nothing, so that a service exists only when the test makes it.
class BareBus {
public:
    BareBus()
    {
        const QString configuration = writeFile(
            _folder.path() + u"/bus.conf"_s,
            "<busconfig><type>session</type><listen>unix:tmpdir=" + QFile::encodeName(_folder.path()) +
                "</listen><servicedir>" + QFile::encodeName(_folder.path()) +
                "</servicedir><policy context=\"default\"><allow send_destination=\"*\" "
                "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
        if (!_bus.start("DBUS_SESSION_BUS_ADDRESS", u"--config-file="_s + configuration))
            qFatal("no bus");
    }
    void allowStarting(const QString &name)
    {
        writeFile(_folder.path() + u'/' + name + u".service"_s,
                  "[D-BUS Service]\nName=" + name.toUtf8() + "\nExec=/bin/false\n");
        QDBusConnection::sessionBus().call(
            QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                           u"org.freedesktop.DBus"_s, u"ReloadConfig"_s));
    }

private:
    QTemporaryDir _folder;
    OwnBus _bus;
};

// What a desktop shows: one notice per number, newest text.
class NotificationService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    QMap<uint, QString> shown; // title and body
    QStringList capabilities{u"body"_s, u"body-markup"_s};
public Q_SLOTS:
    QStringList GetCapabilities() const { return capabilities; }
    uint Notify(const QString &, uint replaced, const QString &, const QString &title, const QString &body,
                const QStringList &, const QVariantMap &, int)
    {
        const uint number = replaced ? replaced : ++_last;
        shown.insert(number, title + u'|' + body);
        return number;
    }

private:
    uint _last = 0;
};

} // namespace

class UserNotificationsTest : public QObject {
    Q_OBJECT

    BareBus _bus; // there before anybody connects to it
    FreedesktopNotifications _notifications;

    Result<bool> ask() { return QCoro::waitFor(_notifications.requestAuthorization()); }
    NotificationSettings askSettings() { return QCoro::waitFor(_notifications.settings()); }

private Q_SLOTS:
    void withoutAServiceTheReasonIsGiven()
    {
        const QString reason = u"桌面没有通知服务（org.freedesktop.Notifications）"_s;
        QCOMPARE(errorText(ask()), reason);
        QCOMPARE(askSettings(), (NotificationSettings{false, u"denied"_s, u"notSupported"_s}));
        FakeUserNotifications fake;
        fake.authorization = failure(reason);
        for (UserNotifications *host :
             {static_cast<UserNotifications *>(&_notifications), static_cast<UserNotifications *>(&fake)})
            QVERIFY(!QCoro::waitFor(host->post({u"x"_s, u"title"_s, u"body"_s})));
        QVERIFY(fake.posted.isEmpty());
    }

    void aRunningServiceGrantsPostsAndReplaces()
    {
        BusPeer desktop;
        NotificationService service;
        QVERIFY(desktop.serve(u"/org/freedesktop/Notifications"_s, &service) && desktop.take(serviceName));
        QCOMPARE(ask(), Result<bool>(true));
        QCOMPARE(askSettings(), (NotificationSettings{true, u"authorized"_s, u"enabled"_s}));
        const auto post = [](UserNotifications &notifications, const UserNotification &notification) {
            return QCoro::waitFor(notifications.post(notification));
        };
        const UserNotification first{u"backup.1"_s, u"备份失败"_s, u"磁盘已满"_s};
        const UserNotification hostile{u"backup.2"_s, u"<b>x</b>"_s, u"<img src=\"/etc/passwd\"/>&amp; ok"_s};
        const UserNotification newer{u"backup.1"_s, u"备份完成"_s, u""_s};
        FakeUserNotifications fake;
        for (const UserNotification &notification : {first, hostile, newer}) {
            QVERIFY(post(_notifications, notification));
            QVERIFY(post(fake, notification));
        }
        QCOMPARE(service.shown.values(),
                 (QStringList{u"备份完成|"_s,
                              u"<b>x</b>|&lt;img src=&quot;/etc/passwd&quot;/&gt;&amp;amp; ok"_s}));
        QCOMPARE(fake.posted, (QList<UserNotification>{first, hostile, newer}));
        service.capabilities = {u"body"_s}; // shows it as it is
        QVERIFY(post(_notifications, hostile));
        QCOMPARE(service.shown.last(), u"<b>x</b>|<img src=\"/etc/passwd\"/>&amp; ok"_s);
    }

    void aServiceTheBusCanStartGrants()
    {
        _bus.allowStarting(serviceName);
        QCOMPARE(ask(), Result<bool>(true));
    }

    void withoutABusTheReasonIsGiven()
    {
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        qunsetenv("XDG_RUNTIME_DIR");
        QCOMPARE(errorText(ask()), u"没有会话总线，无法显示系统通知"_s);
    }
};

QTEST_GUILESS_MAIN(UserNotificationsTest)
#include "UserNotificationsTest.moc"
