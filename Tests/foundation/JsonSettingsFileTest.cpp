#include "foundation/JsonSettingsFile.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace velbrix;

namespace {

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

class JsonSettingsFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { path = folder.filePath(u"%1/settings.json"_s.arg(++count)); }

    void storesPrivately()
    {
        JsonSettingsFile file(path);
        QCOMPARE(file.load(), QJsonObject());
        const QJsonObject all{{u"键"_s, u"值"_s}, {u"n"_s, 1}};
        QVERIFY(file.save(all, {u"n"_s}));
        QCOMPARE(JsonSettingsFile(path).load(), all);
        QVERIFY(!(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther)));
    }

    void setsAsideWhatItCannotRead_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("torn") << "{\"a\": 1, \"b\""_ba;
        QTest::newRow("empty") << ""_ba;
        QTest::newRow("a list") << "[1, 2]"_ba;
        QTest::newRow("binary") << QByteArray(100, '\0');
    }
    void setsAsideWhatItCannotRead()
    {
        QFETCH(QByteArray, bytes);
        QDir().mkpath(QFileInfo(path).path());
        for (const QString &kept : {path + u".damaged"_s, path + u".damaged-2"_s}) {
            write(path, bytes);
            JsonSettingsFile file(path);
            QCOMPARE(file.load(), QJsonObject());
            QCOMPARE(file.loadProblem(), u"设置文件已损坏，已恢复默认设置；原文件保留为 "_s + kept);
            QCOMPARE(read(kept), bytes);
            QVERIFY(!QFile::exists(path));
        }
    }

    void whatIsOutOfReachIsNotReplaced()
    {
        // A folder in the file's place cannot be opened, by root neither.
        QDir().mkpath(path + u"/inside"_s);
        JsonSettingsFile file(path);
        QCOMPARE(file.load(), QJsonObject());
        QVERIFY(file.loadProblem().startsWith(u"设置文件无法读取，本次修改不会保存："_s + path));
        QCOMPARE(file.save({{u"a"_s, 1}}, {}).error().message, file.loadProblem());
        QVERIFY(QDir(path + u"/inside"_s).exists());
    }

    void tidiesUpAfterKilledWritesOnly()
    {
        JsonSettingsFile file(path);
        QVERIFY(file.save({{u"a"_s, 1}}, {}));
        write(path + u".AbCdEf"_s, "{");
        write(path + u".backup"_s, "mine");
        write(path + u".damaged"_s, "kept");
        file.tidy();
        QCOMPARE(QFileInfo(path).dir().entryList(QDir::Files | QDir::Hidden, QDir::Name),
                 (QStringList{u"settings.json"_s, u"settings.json.backup"_s, u"settings.json.damaged"_s}));
    }

    void aFailedWriteKeepsTheFile()
    {
        JsonSettingsFile file(path);
        QVERIFY(file.save({{u"a"_s, 1}}, {}));
        JsonSettingsFile nowhere(path + u"/below/a/file.json"_s);
        QVERIFY(!nowhere.save({{u"a"_s, 2}}, {}));
        QCOMPARE(file.load().value(u"a"_s).toInt(), 1);
    }

    void survivesKillsDuringWrites()
    {
        JsonSettingsFile file(path);
        QVERIFY(file.save({{u"earlier"_s, 7}}, {}));
        for (int round = 0; round < 20; ++round) {
            const pid_t child = ::fork();
            if (child == 0) {
                for (int i = 0;; ++i)
                    (void)file.save({{u"earlier"_s, 7}, {u"i"_s, i}, {u"fill"_s, QString(5000, u'x')}}, {});
            }
            ::usleep(static_cast<useconds_t>(500 + 731 * round % 4000));
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            QCOMPARE(JsonSettingsFile(path).load().value(u"earlier"_s).toInt(), 7);
        }
    }

private:
    QTemporaryDir folder;
    QString path;
    int count = 0;
};

QTEST_GUILESS_MAIN(JsonSettingsFileTest)
#include "JsonSettingsFileTest.moc"
