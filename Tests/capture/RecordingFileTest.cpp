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
        qunsetenv("XDG_CONFIG_HOME");
        QVERIFY(checkOutputFolder(home.path()));
        // The desktop's folder is made, whatever the user calls it; any other is not.
        for (const QString &name : {u"Desktop"_s, u"桌面"_s}) {
            QCOMPARE(desktopFolder(), home.filePath(name));
            QVERIFY(checkOutputFolder(home.filePath(name)));
            QVERIFY(QDir(home.filePath(name)).exists());
            QVERIFY(QDir(home.path()).mkpath(u".config"_s));
            writeFile(home.filePath(u".config/user-dirs.dirs"_s), "XDG_DESKTOP_DIR=\"$HOME/桌面\"\n");
        }
        const QString missing = home.filePath(u"gone"_s);
        QCOMPARE(checkOutputFolder(missing).error().message, u"输出目录不存在，请重新选择："_s + missing);
        QVERIFY(!QDir(missing).exists());

        const QString file = writeFile(home.filePath(u"file"_s));
        QCOMPARE(checkOutputFolder(file).error().message, u"输出目录不是文件夹，请重新选择："_s + file);
    }

    void renames()
    {
        QTemporaryDir folder;
        writeFile(folder.filePath(u"有了.mp4"_s));
        const std::pair<QString, QString> rows[] = {{u" 会议 1.5 "_s, u"会议 1.5.mp4"_s},
                                                    {u"a.MP4"_s, u"a.MP4"_s},
                                                    {u"录制"_s, u"录制.mp4"_s},
                                                    {u" "_s, u"请输入名称"_s},
                                                    {u"a/b"_s, u"名称不能以点开头，也不能包含 / 或换行"_s},
                                                    {u".a"_s, u"名称不能以点开头，也不能包含 / 或换行"_s},
                                                    {QString(84, u'长'), u"名称太长"_s},
                                                    {u"有了"_s, u"这里已经有“有了.mp4”"_s}};
        for (const auto &[name, outcome] : rows) {
            const QString before = writeFile(folder.filePath(u"录制.mp4"_s), "movie");
            const auto renamed = renameMovie(before, name);
            QCOMPARE(renamed ? QFileInfo(*renamed).fileName() : renamed.error().message, outcome);
            QCOMPARE(readFile(renamed.value_or(before)), QByteArray("movie"));
        }
        QCOMPARE(readFile(folder.filePath(u"有了.mp4"_s)), QByteArray("x"));
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
