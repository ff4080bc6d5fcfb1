#include "foundation/LocalChannel.h"

#include "foundation/RuntimeFolder.h"
#include "foundation/SystemClock.h"
#include "support/Fuzz.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QLocalServer>
#include <QLocalSocket>

namespace {

QCoro::Task<QJsonObject> echo(QJsonObject request, LocalChannelServer::Progress, Cancellation)
{
    request[u"echo"_s] = true;
    co_return request;
}

ChannelAnswer ask(const QString &path, const QJsonObject &request = {})
{
    SystemClock clock;
    return QCoro::waitFor(askLocalChannel(path, request, clock));
}

// A server, where a dead program has left its socket.
struct Rig {
    explicit Rig(LocalChannelServer::Handler handler = echo) : server(std::move(handler), clock)
    {
        if (!server.listen(writeFile(path)))
            qFatal("cannot listen");
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"s"_s);
    VirtualClock clock;
    LocalChannelServer server;
};

} // namespace

class LocalChannelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersEachRequest()
    {
        const Rig rig;
        QVERIFY(!(QFile::permissions(rig.path) & (QFile::ReadOther | QFile::WriteOther | QFile::ReadGroup)));
        for (const QString &text : {u"一"_s, QString(20000, u'x')})
            QCOMPARE(ask(rig.path, {{u"text"_s, text}}).value(),
                     (QJsonObject{{u"text"_s, text}, {u"echo"_s, true}}));
        QVERIFY(ask(rig.folder.filePath(u"none"_s)).error().nobodyListens);
    }

    void progressComesBeforeTheAnswer()
    {
        VirtualClock clock;
        Rig rig([&](QJsonObject, LocalChannelServer::Progress progress,
                    Cancellation) -> QCoro::Task<QJsonObject> {
            progress({{u"share"_s, 0.5}});
            co_await Pause(clock, 1min);
            co_return QJsonObject{{u"done"_s, true}};
        });
        QList<QJsonObject> told;
        std::optional<ChannelAnswer> answer;
        askLocalChannel(rig.path, {}, clock, [&](const QJsonObject &now) {
            told.append(now);
        }).then([&](ChannelAnswer got) { answer = std::move(got); });
        const QJsonObject half = {{u"share"_s, 0.5}};
        QTRY_COMPARE(told, QList<QJsonObject>{half});
        // A server that works on it is not taken for one that has gone.
        QVERIFY(waitFor([&] { return rig.clock.advance(1s), clock.advance(1s), answer.has_value(); }));
        QCOMPARE(answer->value(), (QJsonObject{{u"done"_s, true}}));
    }

    void aSilentServerIsGivenUp()
    {
        const QTemporaryDir folder;
        VirtualClock clock;
        QLocalServer mute;
        QVERIFY(mute.listen(folder.filePath(u"s"_s)));
        std::optional<ChannelAnswer> answer;
        askLocalChannel(mute.fullServerName(), {}, clock).then([&](ChannelAnswer got) {
            answer = std::move(got);
        });
        QTRY_VERIFY(mute.hasPendingConnections());
        clock.advance(19s);
        QCoreApplication::processEvents();
        QVERIFY(!answer);
        clock.advance(1s);
        QTRY_VERIFY(answer);
        QCOMPARE(answer->error().message, u"Velbrix 没有答复"_s);
    }

    void theWorkGoesOnWithoutTheClient()
    {
        VirtualClock clock;
        bool isDone = false, isCancelled = false;
        const Rig rig([&](QJsonObject, LocalChannelServer::Progress progress,
                          Cancellation work) -> QCoro::Task<QJsonObject> {
            co_await Pause(clock, 10s);
            progress({{u"share"_s, 1}});
            isDone = true;
            isCancelled = work.isCancelled();
            co_return QJsonObject();
        });
        auto socket = std::make_unique<QLocalSocket>();
        socket->connectToServer(rig.path);
        socket->write("{}\n");
        QTRY_VERIFY(clock.pendingCount() > 0); // it has begun
        socket.reset();
        QCoreApplication::processEvents();
        QVERIFY(waitFor([&] { return clock.advance(1s), isDone; }));
        QVERIFY(isCancelled);
    }

    void theClientCanCancelAndStillGetsTheAnswer()
    {
        VirtualClock clock;
        const Rig rig([&](QJsonObject, LocalChannelServer::Progress progress,
                          Cancellation work) -> QCoro::Task<QJsonObject> {
            progress({{u"share"_s, 0}});
            while (!work.isCancelled())
                co_await Pause(clock, 1s);
            co_return QJsonObject{{u"cancelled"_s, true}};
        });
        Cancellation cancellation;
        std::optional<ChannelAnswer> answer;
        askLocalChannel(
            rig.path, {}, clock, [&](const QJsonObject &) { cancellation.cancel(); }, cancellation)
            .then([&](ChannelAnswer got) { answer = std::move(got); });
        QVERIFY(waitFor([&] { return clock.advance(1s), answer.has_value(); }));
        QCOMPARE(answer->value(), (QJsonObject{{u"cancelled"_s, true}}));
    }

    void tooLongARequestIsRefused()
    {
        const Rig rig;
        QCOMPARE(ask(rig.path, {{u"text"_s, QString(70'000, u'x')}}).error().message,
                 u"命令太长（超过 64 KB），没有执行"_s);
    }

    void badClientsAreHungUpOn()
    {
        const QList<QByteArray> lines{"hello\n", QByteArray(70'000, 'x'),
                                      "{\"text\":\"" + QByteArray(70'000, 'x') + "\"}\n"};
        for (const QByteArray &bytes : lines + QList<QByteArray>{"", "{\"text\":"}) {
            Rig rig;
            QLocalSocket socket;
            socket.connectToServer(rig.path);
            QTRY_COMPARE(socket.state(), QLocalSocket::ConnectedState);
            socket.write(bytes);
            if (!lines.contains(bytes)) { // more may come
                QTRY_COMPARE(rig.clock.pendingCount(), 1);
                rig.clock.advance(4999ms);
                QCOMPARE(socket.state(), QLocalSocket::ConnectedState);
                rig.clock.advance(1ms);
            }
            QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
            QCOMPARE(socket.readAll(), QByteArray());
            QVERIFY(ask(rig.path));
        }
    }

    void anyBytesGetAnAnswerOrNone()
    {
        const Rig rig;
        const Fuzz fuzz{{"{\"words\":\"record "
                         "start\",\"arguments\":[\"a\",\"中\\n\"],\"options\":{\"--display\":\"1\"}}\n",
                         "{\"text\":\"" + QByteArray(500, 'x') + "\"}\n"},
                        {"\n", "{", "}", "\"", "\\u0000", "null", QByteArray(70'000, ' ')},
                        300};
        int answers = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            QLocalSocket socket;
            socket.connectToServer(rig.path);
            socket.write(bytes);
            if (!bytes.contains('\n'))
                socket.disconnectFromServer();
            while (socket.state() != QLocalSocket::UnconnectedState)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            answers += socket.readAll().isEmpty() ? 0 : 1;
            return true;
        }));
        QVERIFY2(answers > 20, qPrintable(QString::number(answers)));
        QVERIFY(ask(rig.path));
    }

    void runtimeFolderIsPrivate()
    {
        const QTemporaryDir folder;
        qputenv("XDG_CACHE_HOME", folder.filePath(u"cache"_s).toUtf8());
        // The session's own folder is used where nobody else can look into it, and found without its name.
        const QString users = folder.filePath(u"users"_s);
        const QString own = users + u'/' + QString::number(::geteuid());
        QVERIFY(QDir().mkpath(own));
        for (const auto &[mode, isNamed] :
             {std::pair(0x7700, true), {0x7777, true}, {0x7700, false}, {0x7777, false}}) {
            qunsetenv("XDG_RUNTIME_DIR");
            QFile::setPermissions(own, QFile::Permissions(mode));
            if (isNamed)
                qputenv("XDG_RUNTIME_DIR", own.toUtf8());
            const auto runtime = runtimeFolder(isNamed ? QString() : users);
            QVERIFY(runtime);
            QCOMPARE(runtime->startsWith(own), mode == 0x7700);
            QCOMPARE(QFile::permissions(*runtime) & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther),
                     QFile::Permissions());
        }
    }
};

QTEST_GUILESS_MAIN(LocalChannelTest)
#include "LocalChannelTest.moc"
