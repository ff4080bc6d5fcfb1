#include "maintenance/backup/MirrorRun.h"

#include "foundation/SystemClock.h"
#include "maintenance/backup/BackupMark.h"
#include "maintenance/backup/BackupNames.h"
#include "maintenance/backup/RsyncOutput.h"
#include "maintenance/backup/TreeComparison.h"
#include "support/FileTree.h"
#include "support/Fuzz.h"
#include "support/MountedFolder.h"
#include "support/Test.h"

#include <QCoroTask>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// A source and a destination of their own, and real runs of rsync.
struct Rig {
    Rig()
    {
        for (const QString &name : {u"src"_s, u"dst"_s})
            QDir(folder.path()).mkpath(name);
        request.task.id = u"1"_s;
        request.task.name = u"t"_s;
        request.task.kind = BackupTaskKind::sync;
        request.task.sourcePath = path(u"src"_s);
        request.task.destPath = path(u"dst"_s);
        request.at = QDateTime(QDate(2026, 3, 1), QTime(9, 0));
        request.task.lastRunAt = request.at; // by a build that left no marks
        request.progress = [this](const QString &line, double) { lines.append(line); };
    }
    QString path(const QString &below) const { return folder.filePath(below); }
    QByteArray native(const QString &below) const { return QFile::encodeName(path(below)); }
    void write(const QStringList &files) const { writeFiles(folder.path(), files); }
    void writeMany(const QString &below, int count) const
    {
        for (int n = 0; n < count; ++n)
            write({u"%1/%2"_s.arg(below).arg(n)});
    }
    QStringList inMirror() const
    {
        QStringList files = filesBelow(request.task.destPath + u"/t_同步"_s);
        files.removeIf([](const QString &file) { return file.startsWith(mirrorMarkName()); });
        return files;
    }
    bool has(const QString &below) const { return QFile::exists(path(below)); }
    // Runs in rsync's place, with its arguments.
    void replaceRsync(const QString &script)
    {
        rsync = standIn(path(u"stand-in"_s), "#!/bin/sh\n" + script.toUtf8());
    }
    QString run()
    {
        outcome = QCoro::waitFor(runMirror(clock, request, rsync));
        return outcome.message;
    }
    // What begins like this it says of a run.
    bool says(const QString &beginning) { return run().startsWith(beginning); }

    QTemporaryDir folder;
    SystemClock clock;
    BackupRunRequest request;
    QString rsync = u"/usr/bin/rsync"_s;
    QStringList lines;
    BackupOutcome outcome;
};

QCoro::Task<bool> answering(bool answer)
{
    co_return answer;
}

} // namespace

class MirrorRunTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!QFile::exists(u"/usr/bin/rsync"_s))
            QSKIP("rsync is not installed");
    }

    void mirrorsEverything()
    {
        Rig rig;
        rig.write({u"src/a=one"_s, u"src/sub/中文.txt=two"_s, u"src/line\nbreak"_s, u"src/deleting me"_s,
                   u"src/empty="_s});
        QFile::link(u"/nowhere"_s, rig.path(u"src/link"_s));
        const QByteArray odd = "/bad\xff/in\xff";
        tree::file(rig.native(u"src"_s) + odd);
        QCOMPARE(rig.run(), u"✓ 同步完成 · 7 个文件"_s);
        QVERIFY(tree::exists(rig.native(u"dst/t_同步"_s) + odd));
        QCOMPARE(rig.inMirror(), filesBelow(rig.path(u"src"_s)));
        QCOMPARE(QFile::symLinkTarget(rig.path(u"dst/t_同步/link"_s)), u"/nowhere"_s);
        QCOMPARE(rig.lines.first(2), (QStringList{u"正在扫描目录…"_s, u"6 个文件，开始同步…"_s}));
        QCOMPARE(entriesOf(rig.path(u"dst"_s)), QStringList{u"t_同步"_s});
        rig.write({u"dst/t_同步/.a.Xy12ab=on"_s}); // what a killed run has left
        QCOMPARE(rig.run(), u"✓ 同步完成 · 0 个文件，删除 1 个"_s);
        QCOMPARE(rig.inMirror(), filesBelow(rig.path(u"src"_s)));
        // The temporary folder could not remove a name that is no UTF-8.
        for (const QString &folder : {u"dst"_s, u"src"_s})
            std::filesystem::remove_all(tree::native(rig.native(folder)));
    }

    void setsAsideWhatItDeletesAndReplaces()
    {
        Rig rig;
        rig.write({u"src/kept=new"_s, u"src/becomesFile=file"_s, u"src/becomesFolder/in"_s,
                   u"dst/t_同步/kept=old"_s, u"dst/t_同步/gone/deep/in=lost"_s,
                   u"dst/t_同步/becomesFile/in=was"_s, u"dst/t_同步/becomesFolder=was a file"_s});
        QCOMPARE(rig.run(), u"✓ 同步完成 · 3 个文件，删除 2 个"_s);
        QCOMPARE(rig.inMirror(), filesBelow(rig.path(u"src"_s)));
        // Another run in the same second has a folder of its own.
        rig.write({u"src/kept=newest"_s});
        QVERIFY(rig.says(u"✓"_s));
        const QStringList old = filesBelow(rig.path(u"dst/t_同步_旧文件"_s));
        QCOMPARE(old, (QStringList{u"20260301_090000/becomesFile/in=was"_s,
                                   u"20260301_090000/becomesFolder=was a file"_s,
                                   u"20260301_090000/gone/deep/in=lost"_s, u"20260301_090000/kept=old"_s,
                                   u"20260301_090001/kept=new"_s}));
    }

    void onlyItsOwnOldFoldersExpire()
    {
        Rig rig;
        const QString old = u"dst/t_同步_旧文件/"_s;
        rig.write({u"src/a"_s, old + u"20260129_090000/x"_s, old + u"20260131_090000/x"_s,
                   old + u"20260129_090000 mine/x"_s, old + u"20261329_090000/x"_s});
        const QStringList all = entriesOf(rig.path(old));
        QVERIFY(rig.says(u"✓"_s));
        QVERIFY(rig.says(u"✓"_s)); // the clock may be wrong today
        QCOMPARE(entriesOf(rig.path(old)), QStringList(u".expired"_s) + all);
        const QDateTime today = std::exchange(rig.request.at, rig.request.at.addDays(-1));
        QVERIFY(rig.says(u"✓"_s)); // it was wrong
        QCOMPARE(entriesOf(rig.path(old)), all);
        for (const int day : {0, 1}) {
            rig.request.at = today.addDays(day);
            QVERIFY(rig.says(u"✓"_s));
        }
        QCOMPARE(entriesOf(rig.path(old)),
                 (QStringList{u"20260129_090000 mine"_s, u"20260131_090000"_s, u"20261329_090000"_s}));
        rig.request.at = today.addYears(1);
        QVERIFY(QDir(rig.path(u"src"_s)).removeRecursively());
        QVERIFY(rig.says(u"源文件夹不在了"_s)); // what it refuses costs nothing
        QVERIFY(rig.has(old + u"20260131_090000/x"_s));
    }

    void refusesAnEmptyOrMissingSourceOrDisk()
    {
        Rig rig;
        rig.write({u"dst/t_同步/only"_s});
        QDir().mkpath(rig.path(u"src/empty"_s));
        QVERIFY(rig.says(u"源文件夹里没有文件"_s));
        rig.write({u"src/.DS_Store"_s, u"src/empty/Thumbs.db"_s, u"src/System Volume Information/id"_s});
        QVERIFY(rig.says(u"源文件夹里没有文件"_s));
        rig.write({u"src/a"_s});
        BackupTask &task = rig.request.task;
        // Another card with the same label.
        rig.request.volumes = [](const QString &) { return u"2"_s; };
        task.sourceVolumeId = u"1"_s;
        QVERIFY(rig.says(u"源文件夹现在位于另一个磁盘"_s));
        task.destVolumeId = u"1"_s;
        QVERIFY(rig.says(u"保存目录现在位于另一个磁盘"_s));
        task.sourceVolumeId = task.destVolumeId = QString();
        task.destVolume = u"/media/stick"_s;
        QVERIFY(rig.says(u"保存目录所在的磁盘没有连接"_s));
        task.destVolume.clear();
        task.sourceVolume = u"/media/stick"_s;
        QVERIFY(rig.says(u"源文件夹不在了"_s));
        task.sourceVolume.clear();
        task.sourcePath = rig.path(u"none"_s);
        QVERIFY(rig.says(u"源文件夹不在了"_s));
        QCOMPARE(rig.inMirror(), QStringList{u"only"_s});
        task.sourcePath = rig.path(u"src"_s);
        task.destPath = rig.path(u"unmounted"_s);
        QVERIFY(rig.says(u"保存目录所在的磁盘没有连接"_s));
        QVERIFY(!rig.has(u"unmounted"_s));
    }

    void doesNotWriteOrDeleteThroughALink()
    {
        for (const QString &place : {u"dst/t_同步"_s, u"dst/t_同步_旧文件"_s}) {
            Rig rig;
            rig.write({u"src/a"_s, u"elsewhere/20200101_000000/mine"_s});
            QFile::link(rig.path(u"elsewhere"_s), rig.path(place));
            QVERIFY(rig.says(u"创建同步目录失败: "_s));
            QVERIFY(rig.has(u"elsewhere/20200101_000000/mine"_s));
        }
        Rig rig;
        rig.write({u"src/a"_s, u"dst/t_同步"_s});
        QCOMPARE(rig.run(), u"创建同步目录失败: 已有同名的文件或文件夹"_s);
        QCOMPARE(filesBelow(rig.path(u"dst"_s)), QStringList{u"t_同步"_s});
        Rig inTheWay;
        inTheWay.write({u"src/a"_s, u"dst/t_同步_旧文件"_s});
        QVERIFY(inTheWay.says(u"创建同步目录失败: 已有同名的文件“"_s));
    }

    void disksThatTakeSpellingsForOne()
    {
        const MountedFolder disk(u"folding"_s);
        const MountedFolder decomposing(u"decomposing"_s);
        if (!disk.isMounted())
            QSKIP("no FUSE here");
        const QString decomposed = u"e\u0301"_s;
        const QString composed = u"\u00e9"_s;
        Rig rig;
        rig.request.task.destPath = disk.path();
        rig.write({u"src/Photos/in/A=1"_s, u"src/%1=2"_s.arg(composed), u"src/gone"_s});
        QCOMPARE(rig.run(), u"✓ 同步完成 · 3 个文件"_s);
        for (const auto &[from, to] : {std::pair(u"Photos"_s, u"photos"_s),
                                       {u"photos/in/A"_s, u"photos/in/a"_s},
                                       {composed, decomposed},
                                       {u"gone"_s, u"new"_s}})
            QVERIFY(QFile::rename(rig.path(u"src/"_s + from), rig.path(u"src/"_s + to)));
        QCOMPARE(rig.run(), u"✓ 同步完成 · 1 个文件，删除 1 个"_s);
        QCOMPARE(rig.inMirror(), filesBelow(rig.path(u"src"_s)));
        // Two that would be one, of which the mirror has one or neither.
        for (const QString &two : {u"src/NEW"_s, u"src/x/Foo"_s}) {
            const QStringList before = rig.inMirror();
            rig.write({two, u"src/x/foo"_s});
            QVERIFY(rig.says(u"保存目录所在的磁盘分不清“"_s));
            QCOMPARE(rig.inMirror(), before);
            QFile::remove(rig.path(two));
        }
        rig.request.task.sourcePath = disk.path() + u"/T_同步/photos"_s;
        rig.request.task.destPath = disk.path() + u"/t_同步/PHOTOS/in"_s;
        QVERIFY(rig.says(u"保存目录在源文件夹里面"_s));

        for (const bool isThere : {false, true}) {
            Rig other;
            other.request.task.destPath = decomposing.path();
            other.write({u"src/"_s + composed});
            if (isThere)
                writeFiles(decomposing.path() + u"/t_同步"_s, {composed});
            QVERIFY(other.says(u"保存目录所在的磁盘会改写文件名“"_s));
            QCOMPARE(other.inMirror().size(), isThere ? 1 : 0);
        }
    }

    void disksThatCannotBeWrittenTo()
    {
        const MountedFolder small(u"small"_s);
        const MountedFolder readOnly(u"folding"_s, {u"-oro"_s});
        if (!small.isMounted())
            QSKIP("no FUSE here");
        Rig rig;
        writeFile(rig.path(u"src/a"_s), QByteArray(9 << 20, 'x'));
        rig.request.task.destPath = readOnly.path();
        QVERIFY(rig.says(u"保存目录所在的磁盘是只读的"_s));
        rig.request.task.destPath = small.path();
        QCOMPARE(rig.run(), u"保存目录的可用空间不足：还需要 9.4 MB，只剩 8.4 MB"_s);
        // Set aside, the old one stays until the new one is there.
        writeFile(small.path() + u"/t_同步/a"_s, QByteArray(8 << 20, 'y'));
        QVERIFY(rig.says(u"保存目录的可用空间不足：还需要 9.4 MB"_s));
        rig.request.task.setsAside = false;
        // What a hole has needs no room.
        QFile hole(rig.path(u"src/hole"_s));
        QVERIFY(hole.open(QIODevice::WriteOnly) && hole.resize(1 << 24));
        QCOMPARE(rig.run(), u"✓ 同步完成 · 2 个文件"_s);
        struct stat facts{};
        QCOMPARE(::stat(QFile::encodeName(small.path() + u"/t_同步/hole"_s).constData(), &facts), 0);
        QVERIFY(facts.st_size == 1 << 24 && facts.st_blocks < 1000);
    }

    void manyDeletionsNeedAnAnswer()
    {
        // More than fifty, and more than a fifth of all.
        for (const auto &[kept, lost, isAsked] :
             {std::tuple(10, 50, false), {10, 51, true}, {240, 60, false}, {240, 61, true}}) {
            Rig rig;
            rig.writeMany(u"src/kept"_s, kept);
            rig.writeMany(u"dst/t_同步/kept"_s, kept);
            rig.writeMany(u"dst/t_同步/lost"_s, lost);
            const QString held = rig.run();
            QCOMPARE(rig.has(u"dst/t_同步/lost/0"_s), isAsked);
            if (!isAsked)
                continue;
            const QString words = u"同步会删除同步文件夹里 %1 个文件（共 %2 个），已暂停；请手动运行并确认"_s;
            QCOMPARE(held, words.arg(lost).arg(kept + lost));
            qint64 asked = 0;
            rig.request.approve = [&](BackupDoubt doubt) {
                asked = doubt.lost;
                return answering(false);
            };
            QVERIFY(rig.run().endsWith(u"未获确认，没有同步"_s));
            QCOMPARE(asked, lost);
            QCOMPARE(rig.inMirror().size(), kept + lost);
            rig.request.approve = [](BackupDoubt) { return answering(true); };
            QVERIFY(rig.says(u"✓ 同步完成"_s));
            QVERIFY(!rig.has(u"dst/t_同步/lost"_s));
        }
    }

    void asksBeforeItTakesAFolderOver()
    {
        Rig rig;
        rig.request.task.lastRunAt.reset();
        rig.write({u"src/a"_s, u"src/.velbrix-mirror=the source's own"_s, u"dst/t_同步/theirs"_s});
        const QString words =
            u"同步文件夹不是这个任务建立的，同步会覆盖里面的同名文件，删除 %1 个文件（共 1 个），已暂停"_s;
        QVERIFY(rig.says(words.arg(1)));
        QVERIFY(rig.has(u"dst/t_同步/theirs"_s));
        BackupDoubt asked;
        rig.request.approve = [&](BackupDoubt doubt) {
            asked = doubt;
            return answering(true);
        };
        QVERIFY(rig.says(u"✓"_s));
        QCOMPARE(asked, (BackupDoubt{BackupDoubt::Kind::foreignMirror, 1, 1}));
        rig.request.approve = {};
        rig.request.task.requiresMark = true;
        rig.write({u"dst/t_同步/stray"_s});
        QVERIFY(rig.says(u"✓"_s)); // from then on it is its own
        QCOMPARE(rig.inMirror().size(), 1);
        rig.request.installation = u"another computer"_s;
        QVERIFY(rig.says(words.arg(0)));
        rig.request.installation.clear();
        rig.request.task.id = u"2"_s;
        QVERIFY(rig.says(words.arg(0)));
    }

    void looksAgainAfterAQuestion()
    {
        Rig rig;
        rig.write({u"src/a"_s});
        rig.writeMany(u"dst/t_同步"_s, 60);
        rig.request.approve = [&](BackupDoubt) {
            QFile::remove(rig.path(u"src/a"_s));
            return answering(true);
        };
        QVERIFY(rig.says(u"源文件夹里没有文件"_s));
        QCOMPARE(rig.inMirror().size(), 60);
        rig.write({u"src/a"_s});
        rig.request.approve = [&](BackupDoubt) {
            QDir().rename(rig.path(u"dst"_s), rig.path(u"unmounted"_s));
            return answering(true);
        };
        QVERIFY(rig.says(u"保存目录所在的磁盘没有连接"_s));
        QVERIFY(!rig.has(u"dst"_s));
    }

    void whatIsExcludedStaysWhereItIs()
    {
        Rig rig;
        rig.request.task.excludes = {u"\u00e9/"_s, u"*.tmp"_s, u"/cache/deep"_s, u"+ odd"_s,
                                     u"!"_s,       u"#x"_s,    u"build/"_s,      u"b\n+ *"_s};
        rig.write({u"src/a"_s, u"src/b.tmp"_s, u"src/cache/deep/x"_s, u"src/in/cache/deep/y"_s,
                   u"src/+ odd"_s, u"src/!"_s, u"src/#x"_s, u"src/build/z"_s, u"src/in/build"_s,
                   u"src/e\u0301/x"_s, u"dst/t_同步/mine.tmp"_s, u"dst/t_同步/gone/other.tmp"_s});
        QCOMPARE(rig.run(), u"✓ 同步完成 · 3 个文件"_s);
        QCOMPARE(rig.inMirror(), (QStringList{u"a"_s, u"gone/other.tmp"_s, u"in/build"_s,
                                              u"in/cache/deep/y"_s, u"mine.tmp"_s}));
    }

    void anUnreadableFolderLosesNothing()
    {
        Rig rig;
        rig.request.task.setsAside = false;
        rig.write({u"src/a"_s, u"src/closed/in"_s, u"dst/t_同步/closed/in=kept"_s, u"dst/t_同步/gone"_s});
        ::chmod(rig.native(u"src/closed"_s).constData(), 0);
        if (::geteuid() == 0) { // who reads everything
            rig.replaceRsync(u"for a; do case $a in --exclude-from=*) chmod 644 \"${a#*=}\";; esac; done; "
                             "chown -R 65534 '%1' && chmod 755 '%1' && exec setpriv --reuid=65534 "
                             "--clear-groups /usr/bin/rsync \"$@\""_s.arg(rig.folder.path()));
        }
        QCOMPARE(rig.run(), u"✓ 同步完成（部分错误，exit 23）：“closed”没有同步"_s);
        QVERIFY(rig.outcome.isPartial);
        for (const QString &closed : {u"src/closed"_s, u"dst/t_同步/closed"_s})
            ::chmod(rig.native(closed).constData(), 0755);
        QCOMPARE(rig.inMirror(), (QStringList{u"a"_s, u"closed/in=kept"_s, u"gone"_s}));
    }

    void cancelledBeforeOrDuringTheCopy()
    {
        Rig rig;
        rig.writeMany(u"src"_s, 3000);
        rig.request.progress = [&](const QString &line, double) {
            if (line.startsWith(u"已同步"_s) || line.startsWith(u"3000 "_s))
                rig.request.cancellation.cancel();
        };
        QCOMPARE(rig.run(), u"已取消"_s);
        rig.request.cancellation = Cancellation();
        rig.write({u"src/new"_s});
        rig.replaceRsync(u"echo a; echo deleting b; sleep 100"_s);
        QCOMPARE(rig.run(), u"已取消（已同步 1 个文件，删除 1 个）"_s);
        rig.request.cancellation = Cancellation();
        rig.request.cancellation.cancel();
        QCOMPARE(rig.run(), u"已取消"_s);
        QCOMPARE(rig.outcome.state, BackupOutcome::State::cancelled);
    }

    void comparesWithoutFollowingLinks()
    {
        Rig rig;
        rig.writeMany(u"outside"_s, 5);
        rig.write({u"src/a=12345"_s, u"src/sub/b"_s, u"mirror/a"_s, u"mirror/link/in"_s, u"mirror/sub"_s});
        QFile::link(rig.path(u"outside"_s), rig.path(u"src/link"_s));
        QFile::link(rig.path(u"outside"_s), rig.path(u"mirror/away"_s));
        const Cancellation never;
        const auto compared = [&](const QString &source) {
            return compareTrees(rig.native(source), rig.native(u"mirror"_s), ExcludeRules({}), never);
        };
        QCOMPARE(compared(u"src"_s), (TreeFacts{.isReadable = true,
                                                .files = 2,
                                                .items = 3,
                                                .entries = 4,
                                                .bytes = 6,
                                                .allocated = 6,
                                                .mirrorFiles = 4,
                                                .deletions = 3,
                                                .deletedEntries = 4,
                                                .incoming = 1}));
        QCOMPARE(measureTree(rig.native(u"src"_s), ExcludeRules({}), never).bytes, 6);
        QVERIFY(!compared(u"none"_s).isReadable);
    }

    void countsFilesInRsyncsOutput()
    {
        const QByteArray output = "a\nsub/\nsub/b\ndeleting old\ncannot delete non-empty directory: x\n"
                                  "rsync: [sender] x failed\nIO error encountered -- skipping file deletion\n"
                                  "new\\#012line\nlast";
        const auto counted = [](const QByteArray &bytes, qsizetype size) {
            RsyncOutput made;
            for (qsizetype start = 0; start < bytes.size(); start += size)
                made.feed(bytes.mid(start, size));
            made.finish();
            return std::pair(made.files(), made.lastFile());
        };
        for (qsizetype size = 1; size < output.size(); ++size)
            QCOMPARE(counted(output, size), std::pair(qint64(4), QByteArray("last")));
        const Fuzz fuzz{{output}, {"\n", "/\n", "deleting ", "rsync: ", QByteArray(1 << 17, 'x')}, 500};
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            const auto whole = counted(bytes, bytes.size() + 1);
            return whole.first <= bytes.count('\n') + 1 &&
                   whole.first == counted(bytes, 1 + bytes.size() / 3).first;
        }));
    }

    void saysHowRsyncEnded()
    {
        Rig rig;
        rig.write({u"src/a"_s});
        const std::pair<QString, QString> endings[] = {
            {u"echo a; echo b/"_s, u"✓ 同步完成 · 1 个文件"_s},
            {u"exit 23"_s, u"✓ 同步完成（部分错误，exit 23）"_s},
            {uR"(exec >&2; printf '%s\n' 'rsync: [sender] send_files failed to open "%1/src/a\#012b": No' )"
             R"('rsync: [receiver] mkstemp "%1/.c.Xy12ab" failed: No' 'rsync error: some "x": y'; exit 23)"_s
                 .arg(rig.folder.path()),
             u"✓ 同步完成（部分错误，exit 23）：“a b”等 2 项没有同步"_s},
            {u"exit 12"_s, u"同步失败 (exit 12)"_s},
            {u"kill -9 $$"_s, u"同步失败 (exit 9)"_s}};
        for (const auto &[script, words] : endings) {
            rig.replaceRsync(script);
            QCOMPARE(rig.run(), words);
            QCOMPARE(rig.outcome.state == BackupOutcome::State::done, words.startsWith(u"✓"_s));
        }
        rig.rsync = rig.path(u"none"_s);
        QVERIFY(rig.says(u"同步失败：无法运行 "_s + rig.rsync));
    }

    void aSourceThatGoesOnTheWayTakesLittleWithIt()
    {
        Rig rig;
        rig.request.task.setsAside = false;
        rig.writeMany(u"src"_s, 200);
        rig.writeMany(u"dst/t_同步"_s, 200);
        rig.replaceRsync(u"rm '%1'/1*; exec /usr/bin/rsync \"$@\""_s.arg(rig.path(u"src"_s)));
        QCOMPARE(rig.run(), u"同步失败 (exit 25)"_s);
        QCOMPARE(rig.inMirror().size(), 150);
        QCOMPARE(entriesOf(rig.path(u"dst"_s)), QStringList{u"t_同步"_s});
    }

    void replacesWhatOnlyLooksTheSame()
    {
        Rig rig;
        rig.write({u"src/a=new"_s, u"dst/t_同步/a=old"_s});
        rig.replaceRsync(u"touch -r '%1' '%2'; exec /usr/bin/rsync \"$@\""_s.arg(
            rig.path(u"src/a"_s), rig.path(u"dst/t_同步/a"_s)));
        QCOMPARE(rig.run(), u"✓ 同步完成 · 1 个文件"_s);
        QCOMPARE(rig.inMirror(), QStringList{u"a=new"_s});
    }
};

QTEST_GUILESS_MAIN(MirrorRunTest)
#include "MirrorRunTest.moc"
