#include "foundation/ExcludeRules.h"
#include "foundation/SystemClock.h"
#include "platform/Programs.h"
#include "platform/linux/archive/Archiving.h"
#include "platform/linux/archive/LargeFile.h"
#include "platform/linux/archive/ZipArchiver.h"
#include "platform/linux/archive/ZipFile.h"
#include "platform/macos/files/DittoArchiver.h"
#include "platform/macos/files/ZipWalk.h"
#include "support/FakeFiles.h"
#include "support/Fuzz.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QRegularExpression>
#include <QStandardPaths>
#include <QtEndian>

#include <atomic>
#include <fcntl.h>
#include <libdeflate.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

// A temporary folder, and the archiver that is tested in it.
class ArchiveRig {
    QTemporaryDir _folder;

public:
    SystemClock clock;
    ZipArchiver zip{clock};
    Archiver *archiver = &zip;

    QString path(const QString &name) const { return _folder.filePath(name); }
    // A line for the shell in the folder.
    QByteArray in(const QString &line) const
    {
        return shell(u"cd '%1' || exit; export LC_ALL=C.UTF-8; %2"_s.arg(_folder.path(), line));
    }
    ArchiveOutcome create(const QString &source, const QString &archive, const QStringList &excludes = {},
                          const Cancellation &cancellation = {})
    {
        const ArchiveRequest request{path(source), path(archive), excludes, {}, cancellation};
        return QCoro::waitFor(archiver->create(request)).value_or(ArchiveOutcome{.exitStatus = -1});
    }
    // The words of a failure, or nothing.
    QString test(const QString &archive)
    {
        return errorText(QCoro::waitFor(archiver->test(path(archive), {})));
    }
    QString extract(const QString &archive, const QString &folder)
    {
        return errorText(QCoro::waitFor(archiver->extract({path(archive), path(folder), {}, {}})));
    }
    // What a backup must keep of a tree, and its contents.
    QByteArray tree(const QString &folder) const
    {
        return in(u"cd '"_s + folder +
                  u"' && find . \\( -type d -printf '%p d %m %Ts\\n' -o -type l -printf "
                  "'%p l %Ts %l\\n' -o -printf '%p %y %m %Ts %s\\n' \\) | LC_ALL=C sort; find . "
                  "-type f -print0 | LC_ALL=C sort -z | xargs -0 md5sum"_s);
    }
};

struct Part {
    ZipEntry entry;
    QByteArray content;
};

Part part(const QByteArray &name, const QByteArray &content = "x", std::uint32_t mode = S_IFREG | 0644)
{
    Part made{.entry = {.name = name}, .content = content};
    made.entry.mode = mode;
    made.entry.size = made.entry.packedSize = static_cast<std::uint64_t>(content.size());
    made.entry.crc = ::libdeflate_crc32(0, content.constData(), static_cast<std::size_t>(content.size()));
    return made;
}

QByteArray archiveOf(const QList<Part> &parts)
{
    QByteArray bytes;
    QByteArray records;
    for (Part item : parts) {
        item.entry.offset = static_cast<std::uint64_t>(bytes.size());
        bytes += localHeader(item.entry, false) + item.content;
        records += centralRecord(item.entry);
    }
    return bytes + records +
           endRecords(static_cast<std::uint64_t>(parts.size()), static_cast<std::uint64_t>(bytes.size()),
                      static_cast<std::uint64_t>(records.size()));
}

std::span<const std::uint8_t> bytesOf(const QByteArray &bytes)
{
    return {reinterpret_cast<const std::uint8_t *>(bytes.constData()),
            static_cast<std::size_t>(bytes.size())};
}

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
                                        .zip = QStandardPaths::findExecutable(u"zip"_s)});
        if (host != u"zip")
            rig.archiver = host == u"fake" ? static_cast<Archiver *>(&fake) : &ditto;
        rig.in(u"mkdir s out; echo text > s/文件; chmod 755 s/文件; ln -s 文件 s/link; touch s/left.tmp; "
               "touch -h -d '2001-02-03 04:05:06' s/* s; echo mine > taken; echo torn > torn"_s);
        QCOMPARE(rig.create(u"s"_s, u"taken"_s).exitStatus, 15);
        QCOMPARE(readFile(rig.path(u"taken"_s)), "mine\n");
        const ArchiveOutcome nowhere = rig.create(u"s"_s, u"nowhere/a"_s);
        QVERIFY(nowhere.exitStatus != 0 && !nowhere.problem.isEmpty());
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s).exitStatus, 0);
        QCOMPARE(rig.test(u"a.zip"_s), QString());
        QVERIFY(!rig.test(u"torn"_s).isEmpty() && !rig.test(u"missing"_s).isEmpty());

        for (const QString &name : {u"torn"_s, u"missing"_s})
            QVERIFY(!rig.extract(name, u"out"_s).isEmpty());
        QCOMPARE(rig.in(u"ls -A out"_s), "");
        QVERIFY(!rig.extract(u"a.zip"_s, u"nowhere"_s).isEmpty());
        QCOMPARE(rig.extract(u"a.zip"_s, u"out"_s), QString());
        const QString look =
            u"cd out; find . -mindepth 1 -type d -printf '%p\\n' -o -printf '%p %Ts %s\\n' | sort"_s;
        const QByteArray unpacked = rig.in(look);
        if (host == u"zip") // the fake packs nothing, and unzip gives links no time
            QCOMPARE(rig.tree(u"out/s"_s), rig.tree(u"s"_s));
        QVERIFY(!rig.extract(u"a.zip"_s, u"out"_s).isEmpty()); // nothing is replaced
        QCOMPARE(rig.in(look), unpacked);

        const ArchiveOutcome without = rig.create(u"s"_s, u"b.zip"_s, {u"*.tmp"_s});
        QCOMPARE(without.exitStatus, 0);
        if (host != u"fake")
            QCOMPARE(without.files, 2);
        if (host != u"fake")
            QCOMPARE(rig.in(u"zipinfo -1 b.zip | sort"_s), "s/\ns/link\ns/文件");
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
               "seq 1300000 > text; cat text random | head -c 16777216 > mixed; truncate -s 9M zeros; "
               "dd if=text of=holes bs=100k count=1 seek=120 status=none; truncate -s 20M holes"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s), ArchiveOutcome{.files = 5});
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
        for (const std::uint64_t left : {2500000U, 2U << 20, 0U}) { // within a part, between two
            ArchiveRig rig;
            rig.in(u"head -c %1 /dev/zero > file"_s.arg(left));
            const FileDescriptor file(::open(rig.path(u"file"_s).toUtf8(), O_RDONLY));
            ZipOutput output;
            QVERIFY(output.create(rig.path(u"out"_s)));
            ArchiveWork work;
            LargeFile large(file.number(), 9 << 20, output, work);
            Deflater deflater;
            RawBytes buffer;
            large.deflateParts(deflater, buffer);
            QVERIFY(large.finish());
            QCOMPARE(large.size(), left);
            QCOMPARE(output.size(), large.packedSize());
        }
    }

    void packsWhatIsWrittenMeanwhileAsItWasRead()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; seq 3000000 > s/busy; touch s/still"_s);
        std::atomic<bool> isPacked = false;
        std::jthread writer([&] {
            const FileDescriptor file(::open(rig.path(u"s/busy"_s).toUtf8(), O_RDWR));
            QByteArray page(4096, 'x');
            for (int n = 0; !isPacked; ++n) {
                page.fill(static_cast<char>('a' + n % 26));
                std::ignore = ::pwrite(file.number(), page, 4096, (n * 7919 % 5000) * 4096);
                if (n % 1000 == 999)
                    std::ignore = ::ftruncate(file.number(), 10 << 20);
            }
        });
        ArchiveOutcome outcome;
        QStringList problems;
        for (const QString &archive : {u"a.zip"_s, u"b.zip"_s, u"c.zip"_s}) {
            outcome = rig.create(u"s"_s, archive);
            problems << rig.test(archive);
        }
        isPacked = true;
        QCOMPARE(problems, (QStringList{QString(), QString(), QString()}));
        QCOMPARE(outcome, (ArchiveOutcome{.changed = {u"busy"_s}, .changedCount = 1, .files = 2}));
    }

    void countsMoreThan65535Entries()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; cd s; seq 66000 | xargs touch"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s), ArchiveOutcome{.files = 66000});
        QCOMPARE(rig.test(u"a.zip"_s), QString());
        QCOMPARE(rig.in(u"unzip -tqq a.zip; echo $?; bsdtar -tf a.zip | wc -l"_s), "0\n66001");
        QVERIFY(checkZip(rig.path(u"a.zip"_s), {}));
        // ditto writes no records of 64 bits (76 bytes) and as much of the number as fits.
        QByteArray bytes = readFile(rig.path(u"a.zip"_s));
        bytes.remove(bytes.size() - 22 - 76, 76);
        for (const qsizetype place : {14, 12})
            qToLittleEndian<quint16>(66001 % 65536, bytes.data() + bytes.size() - place);
        writeFile(rig.path(u"a.zip"_s), bytes);
        QCOMPARE(errorText(checkZip(rig.path(u"a.zip"_s), {})), QString());
        QCOMPARE(zipNames(rig.path(u"a.zip"_s))->size(), 66001);
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
        QCOMPARE(outcome, (ArchiveOutcome{.skipped = {u"shut"_s, u"b"_s}, .skippedCount = 2, .files = 1}));
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
        QCOMPARE(outcome.problem, u"归档没有写完：磁盘空间不足"_s);
        QVERIFY(outcome.isDiskFull);
        QCOMPARE(unpacked, u"磁盘空间不足：解压需要 3 MB，只剩 1 MB"_s);
    }

    void reportsAndEndsWhenToldTo()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; truncate -s 4T s/zeros; touch s/file"_s);
        ArchiveRequest request{rig.path(u"s"_s), rig.path(u"a.zip"_s), {}, {}, {}};
        ArchiveProgress seen;
        request.progress = [&](const ArchiveProgress &progress) {
            seen = progress;
            if (progress.bytes > 0)
                request.cancellation.cancel();
        };
        const auto outcome = QCoro::waitFor(rig.archiver->create(request));
        QCOMPARE_LT(seen.bytes, qint64(2) << 40);
        QCOMPARE(*outcome, (ArchiveOutcome{.exitStatus = 9, .problem = u"已取消"_s, .cancelled = true}));
        QCOMPARE(seen.totalFiles, 3);
        QCOMPARE(seen.files, 2);
    }

    void endsWithItsOwner()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; truncate -s 4T s/zeros"_s);
        auto archiver = std::make_unique<ZipArchiver>(rig.clock);
        ArchiveRequest request{rig.path(u"s"_s), rig.path(u"a.zip"_s), {}, {}, {}};
        bool hasEnded = false;
        auto task = archiver->create(request);
        archiver.reset();
        task.then([&](const Result<ArchiveOutcome> &outcome) { hasEnded = outcome->cancelled; });
        QTRY_VERIFY(hasEnded);
    }

    void writesNumbersOf64Bits()
    {
        ZipEntry entry = part("large").entry;
        entry.size = 5'000'000'000;
        entry.packedSize = 4'500'000'000;
        entry.offset = 6'000'000'000;
        entry.time = 981173107;
        const QByteArray record = centralRecord(entry);
        RecordReader reader(bytesOf(record));
        const auto read = readCentralRecord(reader);
        QVERIFY(read && reader.left() == 0);
        QVERIFY(read->size == entry.size && read->packedSize == entry.packedSize);
        QVERIFY(read->offset == entry.offset && read->time == entry.time);
        const QByteArray header = localHeader(entry, true);
        RecordReader headerReader(bytesOf(header));
        const auto local = readLocalRecord(headerReader);
        QVERIFY(local && local->length == static_cast<std::size_t>(header.size()));
        QVERIFY(local->entry.size == entry.size && local->entry.packedSize == entry.packedSize);
    }

    void testingNoticesDamage()
    {
        ArchiveRig rig;
        rig.in(u"mkdir s; seq 3000 > s/text; head -c 500 /dev/urandom > s/random; ln -s text s/link"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s).exitStatus, 0);
        const QByteArray whole = readFile(rig.path(u"a.zip"_s));
        ZipFile archive;
        QVERIFY(archive.open(rig.path(u"a.zip"_s)));
        QByteArray isData(whole.size(), '\0');
        for (const ZipEntry &entry : archive.entries()) {
            const auto offset = static_cast<qsizetype>(*archive.dataOffset(entry));
            isData.replace(offset, static_cast<qsizetype>(entry.packedSize),
                           QByteArray(static_cast<qsizetype>(entry.packedSize), '\1'));
        }
        QFile damaged(rig.path(u"a.zip"_s));
        QVERIFY(damaged.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        const auto put = [&](qsizetype place, int mask) {
            const char byte = static_cast<char>(whole[place] ^ mask);
            return damaged.seek(place) && damaged.write(&byte, 1) == 1;
        };
        qsizetype unnoticed = 0; // in times, modes and the like
        for (qsizetype i = 0; i < whole.size(); i += isData[i] ? 7 : 1) {
            QVERIFY(put(i, 0x40));
            const bool isNoticed = !rig.test(u"a.zip"_s).isEmpty();
            QVERIFY2(isNoticed || !isData[i], qPrintable(QString::number(i)));
            QVERIFY2(!checkZip(rig.path(u"a.zip"_s), {}) || !isData[i], qPrintable(QString::number(i)));
            unnoticed += isNoticed ? 0 : 1;
            QVERIFY(put(i, 0));
        }
        QVERIFY2(unnoticed < 230, qPrintable(QString::number(unnoticed)));
        for (qsizetype size = whole.size() - 1; size >= 0; size -= size > 100 ? 97 : 1) {
            QVERIFY(damaged.resize(size));
            const QString problem = rig.test(u"a.zip"_s);
            QVERIFY2(problem.startsWith(u"归档已损坏："_s), qPrintable(problem));
        }
    }

    void unpacksWhatOthersMade()
    {
        for (const QString &command :
             {u"zip -q -r -y a.zip s"_s, u"zip -q -r -y -0 a.zip s"_s, // packed and stored
              u"rm s/link; touch -d '2001-02-03 04:05:07' s; zip -q -r - s | cat > a.zip"_s,
              u"bsdtar --format zip -cf a.zip s"_s}) {
            ArchiveRig rig;
            rig.in(u"mkdir -p out s/空; seq 3000 > s/中文; ln -s 中文 s/link; chmod 750 s/中文; "
                   "touch -h -d '2001-02-03 04:05:07' s/中文 s/link s/空 s; "_s +
                   command);
            QCOMPARE(rig.test(u"a.zip"_s), QString());
            QCOMPARE(errorText(checkZip(rig.path(u"a.zip"_s), {})), QString());
            QCOMPARE(rig.extract(u"a.zip"_s, u"out"_s), QString());
            QCOMPARE(rig.tree(u"out/s"_s), rig.tree(u"s"_s));
        }
    }

    void extractionRefuses_data()
    {
        QTest::addColumn<QByteArray>("archive");
        QTest::addColumn<QString>("words");
        const auto hostile = [](const char *row, const QList<Part> &parts, const QString &words) {
            QTest::newRow(row) << archiveOf(parts) << words;
        };
        const QString unsafe = u"归档中有不安全的路径"_s;
        hostile("up", {part("fine"), part("../evil")}, unsafe);
        hostile("up in the middle", {part("a/../../evil")}, unsafe);
        hostile("absolute", {part("/tmp/evil")}, unsafe);
        hostile("zero byte", {part(QByteArray("fine\0/../evil", 13))}, unsafe);
        hostile("through a link", {part("a", "..", S_IFLNK | 0777), part("a/evil")},
                u"无法写入“a”|“a”已经存在"_s);
        hostile("through a link, first", {part("a/evil"), part("a", "..", S_IFLNK | 0777)}, u"“a”已经存在"_s);
        hostile("twice", {part("a"), part("./a")}, u"归档中有两个“./a”"_s);
        hostile("below a file", {part("a"), part("a/b")}, u"无法写入“a/b”"_s);
        Part item = part("bomb");
        item.entry.size = std::uint64_t(1) << 60;
        item.entry.method = zip::deflated;
        hostile("bomb", {item}, u"磁盘空间不足：解压需要"_s);
        item = part("lies", "\x4b\x4c\x44\xa5\x3d\x00\x00");
        item.entry.size = 2;
        item.entry.method = zip::deflated;
        hostile("longer than it says", {item}, u"归档已损坏：“lies”"_s);
        item = part("method");
        item.entry.method = 12;
        hostile("method", {item}, u"“method”的压缩方法（12）不受支持"_s);
        item = part("secret");
        item.entry.flags = zip::encryptedFlag;
        hostile("encrypted", {item}, u"“secret”已加密"_s);
        QTest::newRow("backslashes")
            << archiveOf({part("..\\evil")}).replace(QByteArray("\x14\3\x14"), QByteArray("\x14\0\x14", 3))
            << unsafe;
    }
    void extractionRefuses()
    {
        QFETCH(QByteArray, archive);
        QFETCH(QString, words);
        ArchiveRig rig;
        rig.in(u"mkdir -p in/out"_s);
        writeFile(rig.path(u"in/a.zip"_s), archive);
        const QString problem = rig.extract(u"in/a.zip"_s, u"in/out"_s);
        QVERIFY2(QRegularExpression(words).match(problem).capturedStart() == 0, qPrintable(problem));
        QCOMPARE(rig.in(u"ls; ls in; find . -name evil ! -path './in/out/a/*'"_s),
                 "in\na.zip\nout"); // a real folder may have it
        QVERIFY(!QFileInfo::exists(u"/tmp/evil"_s));
    }

    void dittoIsGivenNothingThatLeadsOut()
    {
        ArchiveRig rig;
        DittoArchiver ditto(rig.clock, {.ditto = u"/bin/true"_s});
        rig.archiver = &ditto;
        rig.in(u"mkdir out"_s);
        for (const QList<Part> &parts : {QList{part("s/../../evil")}, QList{part("/evil")},
                                         QList{part("链", "..", S_IFLNK | 0777), part("链/evil")}}) {
            writeFile(rig.path(u"a.zip"_s), archiveOf(parts));
            QVERIFY(rig.extract(u"a.zip"_s, u"out"_s).startsWith(u"归档中有不安全的路径"_s));
        }
    }

    void refusesOverlappingData()
    {
        ArchiveRig rig;
        Part first = part("a", "1234567890");
        ZipEntry second = part("b", "12").entry;
        second.offset = 35; // inside the first one's data
        const QByteArray data = localHeader(first.entry, false) + first.content;
        const QByteArray records = centralRecord(first.entry) + centralRecord(second);
        writeFile(rig.path(u"a.zip"_s), data + records +
                                            endRecords(2, static_cast<std::uint64_t>(data.size()),
                                                       static_cast<std::uint64_t>(records.size())));
        QCOMPARE(rig.test(u"a.zip"_s), u"归档已损坏：“a”的位置不对"_s);
    }

    void extractionReplacesNothing()
    {
        ArchiveRig rig;
        rig.in(
            u"mkdir -p s out/s; echo new > s/b; echo new > s/a; echo old > out/s/b; touch -d 2001-01-01 out/s"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s).exitStatus, 0);
        const QByteArray before = rig.tree(u"out"_s);
        QCOMPARE(rig.extract(u"a.zip"_s, u"out"_s), u"“s/b”已经存在，没有替换"_s);
        QCOMPARE(rig.tree(u"out"_s), before);
        rig.in(u"rm -r out/s; mkdir elsewhere; ln -s ../elsewhere out/s"_s);
        QVERIFY(!rig.extract(u"a.zip"_s, u"out"_s).isEmpty());
        QCOMPARE(rig.in(u"ls elsewhere"_s), "");
    }

    void whateverTheBytesNothingLandsOutside()
    {
        ArchiveRig rig;
        rig.in(
            u"mkdir -p s/sub in around/in; seq 300 > s/text; seq 9 > s/sub/b; ln -s ../text s/sub/link; echo kept > around/kept"_s);
        QCOMPARE(rig.create(u"s"_s, u"a.zip"_s).exitStatus, 0);
        const QByteArray around = rig.path(u"around"_s).toUtf8();
        const Fuzz fuzz{
            {readFile(rig.path(u"a.zip"_s)),
             archiveOf({part("a", "..", S_IFLNK | 0777), part("b/", {}, S_IFDIR | 0755), part("b/c")})},
            {"../", "/", "..", "a/", QByteArray(1, '\0'), around + "/evil", "PK\1\2", "PK\5\6"},
            800};
        int unpacked = 0;
        int round = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            writeFile(rig.path(u"a.zip"_s), bytes);
            const QString folder = u"around/in/%1"_s.arg(++round);
            QDir().mkpath(rig.path(folder));
            const QString problem = rig.extract(u"a.zip"_s, folder);
            unpacked += problem.isEmpty() ? 1 : 0;
            return true;
        }));
        QVERIFY2(unpacked > 20 && unpacked < round, qPrintable(QString::number(unpacked)));
        QCOMPARE(entriesOf(rig.path(u"around"_s)), (QStringList{u"in"_s, u"kept"_s}));
        QCOMPARE(entriesOf(rig.path(u"around/in"_s)).size(), round);
        QCOMPARE(readFile(rig.path(u"around/kept"_s)), "kept\n");
        rig.in(u"chmod -R u+rwx around; rm -rf around"_s); // Qt does not know every name
    }
};

QTEST_GUILESS_MAIN(ArchiverTest)
#include "ArchiverTest.moc"
