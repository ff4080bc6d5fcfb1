#include "capture/RecordingFile.h"
#include "support/Test.h"

#include <sys/stat.h>
#include <unistd.h>

class RecordingFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void judges()
    {
        const auto verify = [](const MovieFacts &facts, qint64 bytes, bool isGood, const QString &text) {
            const MovieVerdict verdict{isGood, text};
            QCOMPARE(judgeMovie(facts, u"a.mp4"_s, bytes, false), verdict);
        };
        const MovieFacts good{true, 5.004, true, 1};
        verify(good, 10'001, true, u"可播放 duration=5.00 a.mp4 size=10001"_s);
        verify(good, 10'000, false, u"不可播放 playable=true duration=5.004 size=10000 mode=manual"_s);
        verify({true, 0.05, true, 0}, 50'000, false,
               u"不可播放 playable=true duration=0.050 size=50000 mode=manual"_s);
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
