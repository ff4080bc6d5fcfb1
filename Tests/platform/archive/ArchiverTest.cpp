#include "ArchiveTools.h"
#include "foundation/ExcludeRules.h"
#include "platform/linux/archive/Archiving.h"
#include "platform/linux/archive/LargeFile.h"
#include "platform/macos/files/DittoArchiver.h"
#include "support/FakeFiles.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QStandardPaths>

#include <fcntl.h>
#include <sys/fsuid.h>
#include <unistd.h>

namespace {

// As far as an archiver asks it: "-c -k --keepParent FOLDER ARCHIVE" and "-x -k ARCHIVE FOLDER".
constexpr char dittoStandIn[] =
    "#!/bin/sh\n"
    "if [ \"$1\" = -c ]; then\n"
    "    cd \"$(dirname \"$4\")\" && exec zip -r -y -q \"$5\" \"./$(basename \"$4\")\"\n"
    "fi\n"
    "exec unzip -q \"$3\" -d \"$4\"\n";

} // namespace

class ArchiverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsItsPromises_data()
    {
        QTest::addColumn<QString>("host");
        for (const char *host : {"fake", "zip", "ditto"})
            QTest::newRow(host) << QString::fromLatin1(host);
    }
    void keepsItsPromises()
    {
        QFETCH(QString, host);
        ArchiveRig rig;
        VirtualClock clock;
        FakeArchiver fake(clock);
        DittoArchiver ditto(rig.clock, {.ditto = standIn(rig.path(u"ditto"_s), dittoStandIn),
                                        .zip = QStandardPaths::findExecutable(u"zip"_s),
                                        .unzip = QStandardPaths::findExecutable(u"unzip"_s),
                                        .zipinfo = QStandardPaths::findExecutable(u"zipinfo"_s)});
        if (host != u"zip")
            rig.archiver = host == u"fake" ? static_cast<Archiver *>(&fake) : &ditto;
        rig.in(u"mkdir s out; echo text > s/文件; chmod 755 s/文件; ln -s 文件 s/link; touch s/left.tmp; "
               "touch -h -d '2001-02-03 04:05:06' s/* s; echo mine > taken; echo torn > torn"_s);
        QCOMPARE(rig.create(u"s"_s, u"taken"_s).exitStatus, 15);
        QCOMPARE(readFile(rig.path(u"taken"_s)), "mine\n");
        const ArchiveOutcome nowhere = rig.create(u"s"_s, u"nowhere/a"_s);
        QVERIFY(nowhere.exitStatus != 0 && !nowhere.problem.isEmpty());
        QCOMPARE(rig.create(u"s"_s, u"a"_s).exitStatus, 0);
        QCOMPARE(rig.test(u"a"_s), QString());
        QVERIFY(!rig.test(u"torn"_s).isEmpty() && !rig.test(u"missing"_s).isEmpty());

        for (const QString &name : {u"torn"_s, u"missing"_s})
            QVERIFY(!rig.extract(name, u"out"_s).isEmpty());
        QCOMPARE(rig.in(u"ls -A out"_s), "");
        QVERIFY(!rig.extract(u"a"_s, u"nowhere"_s).isEmpty());
        QCOMPARE(rig.extract(u"a"_s, u"out"_s), QString());
        const QString look =
            u"cd out; find . -mindepth 1 -type d -printf '%p\\n' -o -printf '%p %Ts %s\\n' | sort"_s;
        const QByteArray unpacked = rig.in(look);
        if (host == u"zip") // the fake packs nothing, and unzip gives links no time
            QCOMPARE(rig.tree(u"out/s"_s), rig.tree(u"s"_s));
        QVERIFY(!rig.extract(u"a"_s, u"out"_s).isEmpty()); // nothing is replaced
        QCOMPARE(rig.in(look), unpacked);

        QCOMPARE(rig.create(u"s"_s, u"b"_s, {u"*.tmp"_s}).exitStatus, 0);
        if (host != u"fake")
            QCOMPARE(rig.in(u"zipinfo -1 b | sort"_s), "s/\ns/link\ns/文件");
        QVERIFY(rig.create(u"missing"_s, u"c"_s).exitStatus != 0);
        Cancellation cancelled;
        cancelled.cancel();
        const ArchiveOutcome outcome = rig.create(u"s"_s, u"d"_s, {}, cancelled);
        QVERIFY(outcome.cancelled);
        QCOMPARE(outcome.exitStatus, 9);
    }

    void keepsATree()
    {
        ArchiveRig rig;
        rig.in(u"mkdir -p 's/空 文件夹' s/sub/deep; cd s; printf '%65537s' x > sub/text; "
               "head -c 300000 /dev/urandom > sub/random; : > empty; printf a > \"$(printf 'new\\nline')\"; "
               "printf b > '中文.txt'; printf 'tool' > sub/tool; ln sub/tool sub/hard; ln -s sub/text link; "
               "ln -s nowhere dangling; ln -s sub folder-link; printf 'back' > 'back\\slash'; "
               "mkfifo pipe; mkdir shut; printf c > shut/in; "
               "chmod 755 sub/tool; chmod 600 sub/text; chmod 444 empty; chmod 555 shut; "
               "touch -h -d '2001-02-03 04:05:07' sub/text link; "
               "touch -d '2001-02-03 04:05:06' sub ."_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s), ArchiveOutcome{.files = 12});
        QCOMPARE(rig.test(u"a.zip"_s), QString());
        QCOMPARE(rig.in(u"unzip -tqq a.zip; echo $?"_s), "0");

        rig.in(
            u"rm s/pipe; touch -d '2001-02-03 04:05:06' s; mkdir ours theirs; bsdtar -xpf a.zip -C theirs; mkdir unzipped; unzip -q a.zip -d unzipped"_s);
        const QByteArray original = rig.tree(u"s"_s);
        QVERIFY(original.contains("./folder-link l") && original.contains("./中文.txt f"));
        QCOMPARE(rig.tree(u"theirs/s"_s), original);
        QCOMPARE(rig.extract(u"a.zip"_s, u"ours"_s), QString());
        QCOMPARE(rig.tree(u"ours/s"_s), original);
        // unzip drops the newline from a name.
        QCOMPARE(rig.in(u"diff -r --no-dereference -x 'new*' s unzipped/s; echo $?"_s), "0");
        QCOMPARE(rig.in(u"chmod 755 */s/shut s/shut"_s), ""); // else not every user can remove them
    }

    void keepsNamesThatAreNotUtf8AndVeryLongPaths()
    {
        ArchiveRig rig;
        rig.in(
            u"mkdir -p ours s/$(printf '%0250d/' $(seq 15))/$(printf '%0200d' 7); cd s; "
            "printf a > \"$(printf '\\377\\376')\"; touch -d 1969-12-31 *; cd $(printf '%0250d/' $(seq 15)); echo deep > 末"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s), ArchiveOutcome{.files = 2});
        QCOMPARE(rig.test(u"a.zip"_s), QString());
        QCOMPARE(rig.extract(u"a.zip"_s, u"ours"_s), QString());
        QCOMPARE(rig.tree(u"ours/s"_s), rig.tree(u"s"_s));
        QVERIFY(rig.tree(u"s"_s).contains("\377\376 f"));
        QVERIFY(rig.in(u"zipinfo -1 a.zip"_s).contains("\377\376"));
        rig.in(u"rm -rf s ours"_s); // too long for Qt
    }

    void packsLargeFilesInParts()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s ours; cd s; head -c 9000000 /dev/urandom > random; "
               "seq 1300000 > text; cat text random | head -c 16777216 > mixed; truncate -s 9M zeros"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s), ArchiveOutcome{.files = 4});
        QCOMPARE(rig.test(u"a.zip"_s), QString());
        QCOMPARE(rig.in(u"unzip -tqq a.zip; echo $?"_s), "0");
        QCOMPARE(rig.extract(u"a.zip"_s, u"ours"_s), QString());
        QCOMPARE(rig.tree(u"ours/s"_s), rig.tree(u"s"_s));
        rig.in(u"zip -q -r z.zip s"_s);
        const double ratio = static_cast<double>(QFileInfo(rig.path(u"a.zip"_s)).size()) /
                             static_cast<double>(QFileInfo(rig.path(u"z.zip"_s)).size());
        QVERIFY2(ratio < 1.01, qPrintable(QString::number(ratio)));
    }

    void endsAFileThatHasBecomeShorter()
    {
        ArchiveRig rig;
        rig.in(u"head -c 2500000 /dev/zero > file"_s);
        const FileDescriptor file(::open(rig.path(u"file"_s).toUtf8(), O_RDONLY));
        ZipOutput output;
        QVERIFY(output.create(rig.path(u"out"_s)));
        ArchiveWork work;
        LargeFile large(file.number(), 9 << 20, output, work);
        Deflater deflater;
        RawBytes buffer;
        large.deflateParts(deflater, buffer);
        QVERIFY(large.finish());
        QCOMPARE(large.size(), 2500000U);
        QCOMPARE(output.size(), large.packedSize());
    }

    void countsMoreThan65535Entries()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; cd s; seq 66000 | xargs touch"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s), ArchiveOutcome{.files = 66000});
        QCOMPARE(rig.test(u"a.zip"_s), QString());
        QCOMPARE(rig.in(u"unzip -tqq a.zip; echo $?; bsdtar -tf a.zip | wc -l"_s), "0\n66001");
    }

    void excludes()
    {
        const auto excludes = [](const QString &pattern, const char *path, bool isFolder = false) {
            return ExcludeRules({pattern}).excludes(path, isFolder);
        };
        QVERIFY(excludes(u"*.o"_s, "a/b.o") && !excludes(u"*.o"_s, "a.o/b.c"));
        QVERIFY(excludes(u"a/*.o"_s, "a/b.o") && !excludes(u"a/*.o"_s, "a/c/b.o"));
        QVERIFY(excludes(u"a/**.o"_s, "a/c/b.o") && !excludes(u"/b.o"_s, "a/b.o"));
        QVERIFY(excludes(u"build/"_s, "a/build", true) && !excludes(u"build/"_s, "a/build"));
        QVERIFY(excludes(u"缓存?"_s, "a/缓存一", true) && !excludes(u""_s, "a", true));
    }

    void leavesOutWhatIsExcludedAndItself()
    {
        ArchiveRig rig;
        rig.in(u"mkdir -p s/cache/deep s/kept/cache2; touch s/cache/deep/x s/kept/a.tmp s/kept/b"_s);
        QCOMPARE(rig.create(u"s"_s, u"s/kept/a.zip"_s, {u"cache"_s, u"*.tmp"_s}), ArchiveOutcome{.files = 1});
        QCOMPARE(rig.in(u"zipinfo -1 s/kept/a.zip"_s), "s/\ns/kept/\ns/kept/b\ns/kept/cache2/");
    }

    void countsWhatCannotBeRead()
    {
        ArchiveRig rig;
        rig.in(u"chmod 777 .; mkdir s s/shut; touch s/a s/b; chmod 000 s/b s/shut"_s);
        ArchiveWork work;
        const bool isRoot = ::geteuid() == 0;
        if (isRoot)
            ::setfsuid(65534); // of this thread and those that it starts
        const ArchiveOutcome outcome = Archiving(rig.path(u"s"_s), rig.path(u"a.zip"_s), {}, work).run();
        if (isRoot)
            ::setfsuid(0);
        QCOMPARE(outcome.exitStatus, 0);
        QCOMPARE(outcome.skippedCount, 2);
        QCOMPARE(outcome.files, std::optional<qint64>(1));
        QCOMPARE(outcome.skipped, (QStringList{u"shut"_s, u"b"_s}));
        QCOMPARE(rig.in(u"zipinfo -1 a.zip; chmod 755 s/shut"_s), "s/\ns/a\ns/shut/");
    }

    void saysThatTheDiskIsFull()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s disk; head -c 3000000 /dev/urandom > s/random"_s);
        if (rig.in(u"mount -t tmpfs -o size=1m tmpfs disk && echo yes"_s) != "yes")
            QSKIP("a small disk can be mounted only by root");
        const ArchiveOutcome outcome = rig.create(u"s"_s, u"disk/a.zip"_s);
        rig.in(u"rm disk/a.zip"_s);
        rig.create(u"s"_s, u"a.zip"_s);
        const QString unpacked = rig.extract(u"a.zip"_s, u"disk"_s);
        rig.in(u"umount disk"_s);
        QCOMPARE(outcome.exitStatus, 14);
        QCOMPARE(outcome.problem, u"磁盘空间不足，归档没有写完"_s);
        QCOMPARE(unpacked, u"磁盘空间不足：解压需要 3 MB，只剩 1 MB"_s);
    }

    void reportsAndEndsWhenToldTo()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; truncate -s 4G s/zeros; touch s/file"_s);
        ArchiveRequest request;
        request.source = rig.path(u"s"_s);
        request.archive = rig.path(u"a.zip"_s);
        ArchiveProgress seen;
        request.progress = [&](const ArchiveProgress &progress) {
            seen = progress;
            if (progress.bytes > 0)
                request.cancellation.cancel();
        };
        const auto outcome = QCoro::waitFor(rig.archiver->create(request));
        QCOMPARE_LT(seen.bytes, qint64(2) << 30);
        QCOMPARE(*outcome, (ArchiveOutcome{.exitStatus = 9, .problem = u"已取消"_s, .cancelled = true}));
        QCOMPARE(seen.totalFiles, 3);
        QCOMPARE(seen.files, 2);
    }

    void endsWithItsOwner()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; truncate -s 4G s/zeros"_s);
        auto archiver = std::make_unique<ZipArchiver>(rig.clock);
        ArchiveRequest request;
        request.source = rig.path(u"s"_s);
        request.archive = rig.path(u"a.zip"_s);
        bool hasEnded = false;
        auto task = archiver->create(request);
        archiver.reset();
        task.then([&](const Result<ArchiveOutcome> &outcome) { hasEnded = outcome->cancelled; });
        QTRY_VERIFY(hasEnded);
    }
};

QTEST_GUILESS_MAIN(ArchiverTest)
#include "ArchiverTest.moc"
