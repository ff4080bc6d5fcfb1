#include "foundation/LocalChannel.h"

#include "foundation/RuntimeFolder.h"
#include "support/Files.h"
#include "support/Fuzz.h"
#include "support/PatientTest.h"
#include "support/VirtualClock.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace velbrix;
using namespace velbrix::test;

namespace {

QCoro::Task<QJsonObject> echo(QJsonObject request)
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
    using Answer = std::expected<QJsonObject, ChannelFailure>;

    Answer ask(const QJsonObject &request)
    {
        std::optional<Answer> answer;
        askLocalChannel(path, request).then([&](Answer got) { answer = std::move(got); });
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
