#include "foundation/LocalChannel.h"

#include "foundation/RuntimeFolder.h"
#include "foundation/SystemClock.h"
#include "support/Fuzz.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QLocalServer>
#include <QLocalSocket>

namespace {

QCoro::Task<QJsonObject> echo(QJsonObject request, LocalChannelServer::Progress)
{
    request[u"echo"_s] = true;
    co_return request;
}

} // namespace

class LocalChannelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { path = folder.filePath(u"s%1"_s.arg(++count)); }

    void answersEachRequest()
    {
        VirtualClock clock;
        LocalChannelServer server(echo, clock);
        QVERIFY(server.listen(path));
        QVERIFY(!(QFile::permissions(path) & (QFile::ReadOther | QFile::WriteOther | QFile::ReadGroup)));
        for (const QString &text : {u"一"_s, QString(20000, u'x')}) {
            QCOMPARE(ask({{u"text"_s, text}}).value(), (QJsonObject{{u"text"_s, text}, {u"echo"_s, true}}));
        }
    }

    void nobodyListensIsAFailure() { QVERIFY(!ask({})); }

    void aDeadProgramsSocketIsReplaced()
    {
        VirtualClock clock;
        writeFile(path);
        LocalChannelServer server(echo, clock);
        QVERIFY(server.listen(path));
        QVERIFY(ask({}));
    }

    void progressComesBeforeTheAnswer()
    {
        VirtualClock clock;
        const auto inSteps = [&clock](QJsonObject,
                                      LocalChannelServer::Progress progress) -> QCoro::Task<QJsonObject> {
            progress({{u"share"_s, 0.5}});
            co_await Pause(clock, 1min);
            co_return QJsonObject{{u"done"_s, true}};
        };
        LocalChannelServer server(inSteps, clock);
        QVERIFY(server.listen(path));
        QList<QJsonObject> told;
        std::optional<ChannelAnswer> answer;
        askLocalChannel(path, {}, clock, [&](const QJsonObject &now) {
            told.append(now);
        }).then([&](ChannelAnswer got) { answer = std::move(got); });
        const QJsonObject half = {{u"share"_s, 0.5}};
        QTRY_COMPARE(told, QList<QJsonObject>{half});
        // A server that works on it is not taken for one that has gone.
        QVERIFY(waitFor([&] { return clock.advance(1s), answer.has_value(); }));
        QCOMPARE(answer->value(), (QJsonObject{{u"done"_s, true}}));
    }

    void aSilentServerIsGivenUp()
    {
        VirtualClock clock;
        QLocalServer mute;
        QVERIFY(mute.listen(path));
        std::optional<ChannelAnswer> answer;
        askLocalChannel(path, {}, clock).then([&](ChannelAnswer got) { answer = std::move(got); });
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
        bool isDone = false;
        const auto work = [&](QJsonObject,
                              LocalChannelServer::Progress progress) -> QCoro::Task<QJsonObject> {
            co_await Pause(clock, 10s);
            progress({{u"share"_s, 1}});
            isDone = true;
            co_return QJsonObject();
        };
        LocalChannelServer server(work, clock);
        QVERIFY(server.listen(path));
        auto socket = std::make_unique<QLocalSocket>();
        socket->connectToServer(path);
        socket->write("{}\n");
        QTRY_VERIFY(clock.pendingCount() > 1); // it has begun
        socket.reset();
        QVERIFY(waitFor([&] { return clock.advance(1s), isDone; }));
    }

    void badClientsAreHungUpOn_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("waits");
        QTest::newRow("no JSON") << "hello\n"_ba << false;
        QTest::newRow("endless line") << QByteArray(70'000, 'x') << false;
        QTest::newRow("too long") << "{\"text\":\""_ba + QByteArray(70'000, 'x') + "\"}\n" << false;
        QTest::newRow("silence") << QByteArray() << true;
        QTest::newRow("half a line") << "{\"text\":"_ba << true;
    }
    void badClientsAreHungUpOn()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, waits);
        VirtualClock clock;
        LocalChannelServer server(echo, clock);
        QVERIFY(server.listen(path));
        QLocalSocket socket;
        socket.connectToServer(path);
        QTRY_COMPARE(socket.state(), QLocalSocket::ConnectedState);
        socket.write(bytes);
        if (waits) {
            QTRY_COMPARE(clock.pendingCount(), 1);
            clock.advance(4999ms);
            QCOMPARE(socket.state(), QLocalSocket::ConnectedState);
            clock.advance(1ms);
        }
        QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
        QCOMPARE(socket.readAll(), QByteArray());
        QVERIFY(ask({}));
    }

    void anyBytesGetAnAnswerOrNone()
    {
        VirtualClock clock;
        LocalChannelServer server(echo, clock);
        QVERIFY(server.listen(path));
        const Fuzz fuzz{{"{\"words\":\"record "
                         "start\",\"arguments\":[\"a\",\"中\\n\"],\"options\":{\"--display\":\"1\"}}\n",
                         "{\"text\":\"" + QByteArray(500, 'x') + "\"}\n"},
                        {"\n", "{", "}", "\"", "\\u0000", "null", QByteArray(70'000, ' ')},
                        300};
        int answers = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            QLocalSocket socket;
            socket.connectToServer(path);
            socket.write(bytes);
            if (!bytes.contains('\n'))
                socket.disconnectFromServer();
            while (socket.state() != QLocalSocket::UnconnectedState)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            answers += socket.readAll().isEmpty() ? 0 : 1;
            return true;
        }));
        QVERIFY2(answers > 20, qPrintable(QString::number(answers)));
        QVERIFY(ask({}));
    }

    void runtimeFolderIsPrivate_data()
    {
        QTest::addColumn<int>("mode"); // of the session's folder; 0: no such variable
        QTest::addColumn<bool>("used");
        QTest::newRow("private session folder") << 0x7700 << true;
        QTest::newRow("shared session folder") << 0x7777 << false;
        QTest::newRow("no session folder") << 0 << false;
    }
    void runtimeFolderIsPrivate()
    {
        QFETCH(int, mode);
        QFETCH(bool, used);
        const QString session = folder.filePath(u"session%1"_s.arg(mode));
        QDir().mkpath(session);
        QFile::setPermissions(session, QFile::Permissions(mode ? mode : 0x7700));
        qputenv("XDG_CACHE_HOME", folder.filePath(u"cache"_s).toUtf8());
        if (mode)
            qputenv("XDG_RUNTIME_DIR", session.toUtf8());
        else
            qunsetenv("XDG_RUNTIME_DIR");
        const auto runtime = runtimeFolder();
        QVERIFY(runtime);
        QCOMPARE(runtime->startsWith(session), used);
        QCOMPARE(QFile::permissions(*runtime) & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther),
                 QFile::Permissions());
    }

private:
    ChannelAnswer ask(const QJsonObject &request)
    {
        SystemClock clock;
        std::optional<ChannelAnswer> answer;
        askLocalChannel(path, request, clock).then([&](ChannelAnswer got) { answer = std::move(got); });
        if (!waitFor([&] { return answer.has_value(); }))
            return std::unexpected(ChannelFailure{false, u"no answer"_s});
        return *answer;
    }

    QTemporaryDir folder;
    QString path;
    int count = 0;
};

QTEST_GUILESS_MAIN(LocalChannelTest)
#include "LocalChannelTest.moc"
