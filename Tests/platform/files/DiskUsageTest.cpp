#include "platform/linux/files/TreeDiskUsage.h"

#include "foundation/SystemClock.h"
#include "platform/Programs.h"
#include "platform/macos/files/DuDiskUsage.h"
#include "support/FakeFiles.h"
#include "support/FileTree.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <fcntl.h>

namespace {

constexpr uid_t nobody = 65534;

// What du says, 0 when it says nothing; the path may be of any bytes.
qint64 du(const QByteArray &path)
{
    qputenv("MEASURED_PATH", path);
    return shell(u"/usr/bin/du -sk \"$MEASURED_PATH\" 2>/dev/null"_s).split('\t').value(0).toLongLong() *
           1024;
}

QHash<qsizetype, qint64> measured(DiskUsage &usage, const QList<QByteArray> &paths)
{
    QHash<qsizetype, qint64> told;
    const auto keep = [&](qsizetype index, qint64 bytes) {
        QVERIFY2(!told.contains(index), "told twice");
        told.insert(index, bytes);
    };
    QCoro::waitFor(usage.measure(paths, keep, Cancellation()));
    return told;
}

} // namespace

class DiskUsageTest : public QObject {
    Q_OBJECT

    SystemClock _clock;
    VirtualClock _virtual;
    QTemporaryDir _folder;
    QByteArray _base;

    // The walker and du itself tell du's figures.
    void compare(const QList<QByteArray> &paths)
    {
        TreeDiskUsage tree;
        DuDiskUsage duItself(_clock);
        for (DiskUsage *usage : {static_cast<DiskUsage *>(&tree), static_cast<DiskUsage *>(&duItself)}) {
            const auto told = measured(*usage, paths);
            QCOMPARE(told.size(), paths.size());
            for (qsizetype i = 0; i < paths.size(); ++i)
                QVERIFY2(told[i] == du(paths[i]), paths[i] + ": " + QByteArray::number(told[i]) +
                                                      " instead of " + QByteArray::number(du(paths[i])));
        }
    }

private Q_SLOTS:
    void init()
    {
        static int count = 0;
        _base = QFile::encodeName(_folder.path()) + '/' + QByteArray::number(++count);
        tree::folder(_base);
    }
    void cleanup() { std::filesystem::remove_all(tree::native(_base)); }

    void saysWhatDuSays()
    {
        for (int i = 0; i < 300; ++i)
            tree::file(_base + "/many/" + QByteArray::number(i % 20) + "/in/" + QByteArray::number(i),
                       QByteArray(i * 77, 'x'));
        tree::file(_base + "/plain file", QByteArray(70'000, 'x'));
        tree::file(_base + "/hard/one", QByteArray(20'000, 'x'));
        ::link((_base + "/hard/one").constData(), (_base + "/hard/two").constData());
        ::link((_base + "/hard/one").constData(), (_base + "/many/three").constData());
        tree::file(_base + "/sparse/file");
        QCOMPARE(::truncate((_base + "/sparse/file").constData(), 500'000'000), 0);
        tree::link(_base + "/many", _base + "/link");
        tree::link(_base + "/many", _base + "/hard/link");
        tree::folder(_base + "/空 folder\n");
        compare({_base, _base + "/many", _base + "/hard", _base + "/hard", _base + "/sparse",
                 _base + "/plain file", _base + "/link", _base + "/link/", _base + "/空 folder\n",
                 _base + "/missing", _base + "/plain file/in", "/proc/self/fd/9999"});
    }

    void readsNamesOfAnyBytes()
    {
        tree::file(_base + "/\xff\xfe/\xc3(", QByteArray(9000, 'x'));
        TreeDiskUsage usage;
        const QByteArray inside = _base + "/\xff\xfe/\xc3(";
        QCOMPARE(measured(usage, {_base, inside}),
                 (QHash<qsizetype, qint64>{{0, du(_base)}, {1, du(inside)}}));
    }

    void countsDeepTrees()
    {
        int at = ::open(_base.constData(), O_RDONLY | O_DIRECTORY);
        for (int i = 0; i < 60; ++i) { // paths of 15,000 bytes
            const QByteArray name(250, 'n');
            ::mkdirat(at, name.constData(), 0700);
            const int next = ::openat(at, name.constData(), O_RDONLY | O_DIRECTORY);
            ::close(at);
            at = next;
        }
        const int file = ::openat(at, "file", O_CREAT | O_WRONLY, 0600);
        QCOMPARE(::write(file, "x", 1), 1);
        ::close(file);
        ::close(at);
        compare({_base});
    }

    void countsWhatItCanRead()
    {
        for (const char *name : {"/open/a", "/unread/b", "/unsearched/c", "/unsearched/in/d"})
            tree::file(_base + name, QByteArray(10'000, 'x'));
        ::chmod((_base + "/unread").constData(), 0);
        ::chmod((_base + "/unsearched").constData(), 0600);
        if (::geteuid() == 0) {
            ::chmod(QFile::encodeName(_folder.path()).constData(), 0755);
            QProcess::execute(u"chown"_s, {u"-R"_s, u"65534"_s, QFile::decodeName(_base)});
            // The whole process, so that du is started as somebody without rights too.
            if (::setresuid(nobody, nobody, 0) != 0)
                QSKIP("root may read everything");
        }
        compare({_base, _base + "/unread", _base + "/unsearched"});
        if (::getuid() == nobody)
            QCOMPARE(::setresuid(0, 0, 0), 0);
        ::chmod((_base + "/unread").constData(), 0700);
        ::chmod((_base + "/unsearched").constData(), 0700);
    }

    void keepsTheContract()
    {
        FakeDiskUsage fake(_virtual);
        TreeDiskUsage tree;
        DuDiskUsage duItself(_clock);
        QList<QByteArray> paths;
        for (int i = 0; i < 40; ++i) {
            paths.append(_base + '/' + QByteArray::number(i));
            tree::file(paths.last() + "/file", QByteArray(9000, 'x'));
            fake.sizes.insert(paths.last(), du(paths.last()));
        }
        for (DiskUsage *usage : std::initializer_list<DiskUsage *>{&fake, &tree, &duItself}) {
            QHash<qsizetype, qint64> told;
            const auto keep = [&](qsizetype index, qint64 bytes) { told[index] += bytes; };
            QCoro::Task<> first = usage->measure(paths, keep, Cancellation());
            QCoro::Task<> second = usage->measure(paths, keep, Cancellation());
            QCoro::waitFor(usage->measure({}, keep, Cancellation()));
            QCoro::waitFor(std::move(first));
            QCoro::waitFor(std::move(second));
            for (qsizetype i = 0; i < paths.size(); ++i)
                QCOMPARE(told[i], 2 * du(paths[i]));

            Cancellation cancellation;
            int calls = 0;
            const auto cancelAtThird = [&](qsizetype, qint64) {
                if (++calls == 3)
                    cancellation.cancel();
            };
            for (int round = 0; round < 2; ++round) {
                QCoro::waitFor(usage->measure(paths, cancelAtThird, cancellation));
                QCOMPARE(calls, 3);
            }
        }
    }

    // The program may end while folders are still walked through.
    void endsInTheMiddle()
    {
        QObject context;
        auto usage = std::make_unique<TreeDiskUsage>();
        int told = 0;
        QCoro::Task<> task = usage->measure({"/usr"}, [&](qsizetype, qint64) { ++told; }, Cancellation());
        usage.reset();
        QCoro::waitFor(std::move(task));
        QCOMPARE(told, 0);
    }

    void readsDusOutput()
    {
        QCOMPARE(duBytes("12\t/a b\n"), 12 * 1024);
        QCOMPARE(duBytes(" \n 7 /a"), 7 * 1024);
        QCOMPARE(duBytes("5"), 5 * 1024);
        QCOMPARE(duBytes("4294967296\t/a"), qint64(1) << 42);
        for (const char *nothing : {"", " \n", "du: cannot access", "0x12 /a", "1.5 /a", "12K\t/a"})
            QVERIFY2(duBytes(nothing) == 0, nothing);
    }

    void withoutDuEverythingIsNothing()
    {
        DuDiskUsage usage(_clock, u"/nonexistent/du"_s);
        QCOMPARE(measured(usage, {"/usr/bin", "/etc"}), (QHash<qsizetype, qint64>{{0, 0}, {1, 0}}));
    }
};

QTEST_GUILESS_MAIN(DiskUsageTest)
#include "DiskUsageTest.moc"
