#include "capture/RecordingFile.h"
#include "support/Test.h"

#include <sys/stat.h>
#include <unistd.h>

Q_DECLARE_METATYPE(velbrix::MovieFacts)

class RecordingFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesTheFileAfterItsStart()
    {
        QCOMPARE(recordingFileName(QDateTime(QDate(2026, 3, 1), QTime(9, 5, 7))),
                 u"录制_20260301_090507.mp4"_s);
    }

    void judges_data()
    {
        QTest::addColumn<MovieFacts>("facts");
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<bool>("system");
        QTest::addColumn<QString>("line");
        const MovieFacts good{true, 5.004, true, 1};
        const QString bad = u"不可播放 playable=%1 duration=%2 size=%3 mode=%4"_s;
        QTest::newRow("good") << good << qint64(10'001) << false
                              << u"可播放 duration=5.00 a.mp4 size=10001"_s;
        QTest::newRow("too small") << good << qint64(10'000) << false
                                   << bad.arg(u"true"_s, u"5.004"_s, u"10000"_s, u"manual"_s);
        QTest::newRow("too short") << MovieFacts{true, 0.05, true, 0} << qint64(50'000) << true
                                   << bad.arg(u"true"_s, u"0.050"_s, u"50000"_s, u"system"_s);
        QTest::newRow("does not play") << MovieFacts{false, 5, true, 0} << qint64(50'000) << false
                                       << bad.arg(u"false"_s, u"5.000"_s, u"50000"_s, u"manual"_s);
    }
    void judges()
    {
        QFETCH(MovieFacts, facts);
        QFETCH(qint64, bytes);
        QFETCH(bool, system);
        QFETCH(QString, line);
        const MovieVerdict verdict = judgeMovie(facts, u"a.mp4"_s, bytes, system);
        QCOMPARE(verdict.text, line);
        QCOMPARE(verdict.isGood, line.startsWith(u"可"_s));
    }

    void checksTheFolder()
    {
        QTemporaryDir home;
        qputenv("HOME", home.path().toUtf8());
        QVERIFY(checkOutputFolder(home.path()));
        // The Desktop is made, any other folder is not.
        QVERIFY(checkOutputFolder(home.filePath(u"Desktop"_s)));
        QVERIFY(QDir(home.filePath(u"Desktop"_s)).exists());
        const QString missing = home.filePath(u"gone"_s);
        QCOMPARE(checkOutputFolder(missing).error().message, u"输出目录不存在，请重新选择："_s + missing);
        QVERIFY(!QDir(missing).exists());

        const QString file = writeFile(home.filePath(u"file"_s));
        QCOMPARE(checkOutputFolder(file).error().message, u"输出目录不是文件夹，请重新选择："_s + file);
    }

    void refusesAReadOnlyFolder()
    {
        if (::geteuid() == 0)
            QSKIP("root may write everywhere");
        QTemporaryDir folder;
        QVERIFY(::chmod(folder.path().toUtf8().constData(), 0500) == 0);
        QCOMPARE(checkOutputFolder(folder.path()).error().message,
                 u"没有写入权限，请换一个输出目录："_s + folder.path());
        ::chmod(folder.path().toUtf8().constData(), 0700);
    }
};

QTEST_GUILESS_MAIN(RecordingFileTest)
#include "RecordingFileTest.moc"
