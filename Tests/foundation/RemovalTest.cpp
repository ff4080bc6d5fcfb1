#include "foundation/Removal.h"

#include "foundation/Paths.h"

#include "support/FileTree.h"
#include "support/Test.h"

#include <QElapsedTimer>
#include <QProcess>

#include <atomic>
#include <random>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

namespace {

constexpr uid_t nobody = 65534;

// A folder to empty, and one beside it that must stay as it is.
struct Ground {
    QTemporaryDir folder;
    QByteArray base = QFile::encodeName(QFileInfo(folder.path()).canonicalFilePath());
    QByteArray root = base + "/root";
    QByteArray outside = base + "/outside";

    explicit Ground(const QString &where = QDir::tempPath()) : folder(where + u"/RemovalTest-XXXXXX"_s)
    {
        tree::file(outside + "/deep/in/kept", "outside");
        tree::file(outside + "/kept");
        tree::folder(root);
    }
    // Qt cannot remove every name.
    ~Ground() { std::filesystem::remove_all(tree::native(base)); }
    Ground(const Ground &) = delete;
};

RemovalRules rules(QList<QByteArray> places = {})
{
    RemovalRules rules;
    rules.protectedPaths = std::move(places);
    rules.boundSockets = QSet<QByteArray>();
    return rules;
}

RemovalReport empty(const RemovalRoot &root)
{
    RemovalReport report;
    for (const QByteArray &entry : root.entries())
        report.add(root.remove(entry, Cancellation()));
    return report;
}

qint64 diskUsage(const QByteArray &path)
{
    QProcess du;
    du.start(u"/usr/bin/du"_s, {u"-sk"_s, QFile::decodeName(path)});
    du.waitForFinished();
    return du.readAllStandardOutput().split('\t').value(0).toLongLong() * 1024;
}

// A disk of its own there, and the folder shown a second time; false where
// this may not be done.
#ifdef __linux__
bool mountOver(const QByteArray &disk, const QByteArray &folder, const QByteArray &second)
{
    return ::mount("none", disk.constData(), "tmpfs", 0, "size=1m") == 0 &&
           ::mount(folder.constData(), second.constData(), nullptr, MS_BIND, nullptr) == 0;
}
void unmount(const QByteArray &folder)
{
    ::umount2(folder.constData(), MNT_DETACH);
}
#else
bool mountOver(const QByteArray &, const QByteArray &, const QByteArray &)
{
    return false;
}
void unmount(const QByteArray &) {}
#endif

void setAge(const QByteArray &path, qint64 modified)
{
    const timespec times[] = {{.tv_sec = modified, .tv_nsec = 0}, {.tv_sec = modified, .tv_nsec = 0}};
    ::utimensat(AT_FDCWD, path.constData(), times, AT_SYMLINK_NOFOLLOW);
}

qint64 changed(const QByteArray &path)
{
    struct stat facts{};
    ::lstat(path.constData(), &facts);
    return facts.st_ctime;
}

// A tree of any shape with traps in it, and what must be left of it.
class TrappedTree {
public:
    TrappedTree(Ground &ground, unsigned seed, bool mounts) : _ground(ground), _random(seed)
    {
        grow(ground.root, 0);
        for (int i = 0; i < 2; ++i)
            places.append(add(ground.root + '/' + QByteArray::number(i) + "place", 'f'));
        if (mounts)
            addMount();
    }
    ~TrappedTree()
    {
        for (const QByteArray &mount : std::as_const(_mounts))
            unmount(mount);
    }

    QList<QByteArray> places;    // protected
    QSet<QByteArray> boundPaths; // of sockets

    // By their paths in the root.
    QSet<QByteArray> remains() const
    {
        QSet<QByteArray> kept;
        for (const QByteArray &path : tree::snapshot(_ground.root).keys()) {
            const QByteArray whole = _ground.root + '/' + path;
            const QByteArray entry = _ground.root + '/' + path.split('/').first();
            const auto holds = [&](const QByteArray &mount) { return isWithin(whole, mount); };
            const auto isInEntry = [&](const QByteArray &place) { return isWithin(place, entry); };
            const bool isKept = boundPaths.contains(whole) || std::ranges::any_of(_mounts, holds) ||
                                std::ranges::any_of(places, isInEntry);
            for (QByteArray above = whole; isKept && above != _ground.root; above = splitPath(above).first)
                kept.insert(above.sliced(_ground.root.size() + 1));
        }
        return kept;
    }

private:
    int below(int end) { return std::uniform_int_distribution(0, end - 1)(_random); }
    QByteArray name()
    {
        static const QList<QByteArray> odd{"n\nl", "\xff\xc3(",    " ",  "-rf", "*",
                                           "...",  "\xe4\xb8\xad", "a b"};
        return odd[below(int(odd.size()))] + QByteArray::number(++_count);
    }
    QByteArray add(const QByteArray &path, char kind)
    {
        const QByteArray outside = _ground.outside;
        switch (kind) {
        case 'd':
            tree::folder(path);
            break;
        case 'l': // the whole way, a relative way, to nothing, upwards
            tree::link(QList<QByteArray>{outside, "../outside/deep", "none", "..", "/"}[below(5)], path);
            break;
        case 'h':
            ::link((outside + (below(2) == 0 ? "/kept" : "/deep/in/kept")).constData(), path.constData());
            break;
        case 's':
            if (path.size() < 100 && below(3) == 0) {
                ::close(tree::socket(path));
                boundPaths.insert(path);
            }
            break;
        case 'p':
            ::mkfifo(path.constData(), 0600);
            break;
        default:
            tree::file(path, QByteArray(below(9000), 'x'));
        }
        return path;
    }
    void grow(const QByteArray &folder, int depth)
    {
        for (int i = 2 + below(6); i > 0; --i) {
            const char kind = "ddffflhsp"[below(9)];
            const QByteArray path = add(folder + '/' + name(), kind);
            if (kind == 'd' && depth < 4)
                grow(path, depth + 1);
            if (kind == 'd' && depth > 0 && below(40) == 0)
                places.append(path);
        }
    }
    void addMount()
    {
        const QByteArray disk = _ground.root + "/m" + name(), second = disk + "second/in";
        tree::folder(disk);
        tree::folder(second);
        _mounts = {disk, second};
        if (mountOver(disk, _ground.outside, second))
            tree::file(disk + "/kept");
    }

    Ground &_ground;
    std::mt19937 _random;
    int _count = 0;
    QList<QByteArray> _mounts;
};

} // namespace

class RemovalTest : public QObject {
    Q_OBJECT

    bool _hasOwnMounts = false;
    QTemporaryDir _quick; // in memory where that can be had, for many changes

private Q_SLOTS:
    void initTestCase()
    {
#ifdef __linux__
        // Mounts of this test are seen by nobody else and end with it.
        _hasOwnMounts =
            ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
            ::mount("none", QFile::encodeName(_quick.path()).constData(), "tmpfs", 0, nullptr) == 0;
#endif
    }

    void cleanupTestCase()
    {
        if (_hasOwnMounts)
            unmount(QFile::encodeName(_quick.path()));
    }

    void removesWhatIsThere()
    {
        Ground ground;
        tree::file(ground.root + "/a/b/one", QByteArray(100'000, 'x'));
        tree::file(ground.root + "/a/line\nbreak \xff\xfe", "x");
        tree::file(ground.root + "/two");
        const qint64 size = diskUsage(ground.root + "/a") + diskUsage(ground.root + "/two");
        RemovalRoot root(ground.root, rules());
        QVERIFY(root.isOpen());
        QCOMPARE(root.canonicalPath(), ground.root);
        QCOMPARE(root.entries(), (QList<QByteArray>{"a", "two"}));
        QCOMPARE(root.ownSize("two"), 1);
        QCOMPARE(root.ownSize("none"), 0);
        QCOMPARE(empty(root), (RemovalReport{size, 3, {}, 0}));
        QVERIFY(tree::snapshot(ground.root).isEmpty());
        QVERIFY(tree::exists(ground.root));
    }

    void countsFilesOfSeveralNamesWithTheLast()
    {
        Ground ground;
        tree::file(ground.root + "/one", QByteArray(50'000, 'x'));
        const qint64 size = diskUsage(ground.root + "/one");
        ::link((ground.root + "/one").constData(), (ground.root + "/two").constData());
        ::link((ground.outside + "/kept").constData(), (ground.root + "/third").constData());
        QCOMPARE(empty(RemovalRoot(ground.root, rules())), (RemovalReport{size, 3, {}, 0}));
    }

    void refusesRoots()
    {
        Ground ground;
        tree::folder(ground.base + "/home/cache");
        tree::folder(ground.base + "/around/inner");
        tree::folder(ground.base + "/own/deep/er");
        tree::link("root", ground.base + "/link");
        tree::link(ground.base + "/home", ground.base + "/homelink");
        RemovalRules some = rules(protectedHostPaths());
        some.protectedPaths += {ground.base + "/home", ground.base + "/around/inner"};
        some.sealedPaths = {ground.base + "/own"};
        const auto verify = [&](const QList<QByteArray> &paths, const QString &obstacle) {
            for (QByteArray path : paths) {
                path.replace("BASE", ground.base);
                QVERIFY2(RemovalRoot::obstacle(path, some) == obstacle, path);
                QVERIFY2(RemovalRoot(path, some).isOpen() == obstacle.isEmpty(), path);
            }
        };
        verify({"BASE/root", "BASE/link", "BASE/home/cache", "BASE/around", "/tmp"}, {});
        verify({"BASE/none"}, u"文件夹不存在"_s);
        verify({"", "root"}, u"不是完整的路径"_s);
        verify({"BASE/outside/kept"}, u"不是文件夹"_s);
        verify({"BASE/home", "BASE/root/../home/./", "BASE/homelink", "BASE/own", "BASE/own/deep/er", "/",
                "/usr", "/usr/share", "/bin", "/etc/..", "/var", "/home",
                QFile::encodeName(QDir::homePath())},
               u"是受保护的位置"_s);
    }

    void refusesWhatIsNoEntry()
    {
        Ground ground;
        tree::file(ground.root + "/a/b");
        const auto before = tree::snapshot(ground.base);
        for (const char *name : {"", ".", "..", "../outside", "a/b", "/etc"}) {
            const RemovalReport report = RemovalRoot(ground.root, rules()).remove(name, Cancellation());
            QCOMPARE(report.problems.value(0).reason, u"不在可以清理的文件夹里"_s);
            QVERIFY2(tree::snapshot(ground.base) == before, name);
        }
    }

    void keepsProtectedPlacesByAnyName()
    {
        Ground ground;
        const QByteArray place = ground.root + "/a/b/own";
        for (const char *name : {"/a/b/own/kept", "/a/also kept", "/c"})
            tree::file(ground.root + name);
        RemovalRoot root(ground.root, rules({place, ground.root + "/later"}));
        tree::file(ground.root + "/later"); // made when the rules were settled
        QCOMPARE(::rename(place.constData(), (ground.root + "/moved").constData()), 0);
        const RemovalReport report = empty(root);
        QCOMPARE(report.removedFiles, 1);
        QCOMPARE(report.problems, (QList<RemovalProblem>{{ground.root + "/a", u"里面有受保护的位置"_s},
                                                         {ground.root + "/later", u"是受保护的位置"_s},
                                                         {ground.root + "/moved", u"是受保护的位置"_s}}));
        QVERIFY(tree::exists(ground.root + "/moved/kept") && tree::exists(ground.root + "/a/also kept"));
    }

    void keepsSocketsInUse()
    {
        Ground ground;
        tree::folder(ground.root + "/a");
        tree::link(ground.root, ground.base + "/alias");
        const QList<QByteArray> names{"/a/s", "/direct", "/relative", "/left"};
        for (const QByteArray &name : names)
            ::close(tree::socket(ground.root + name));
        tree::file(ground.root + "/a/file");
        RemovalRules some = rules();
        some.boundSockets = {ground.root + "/direct", ground.base + "/alias/a/s", "run/relative"};
        const RemovalReport report = empty(RemovalRoot(ground.root, some));
        const QString reason = u"套接字正在使用"_s;
        QCOMPARE(report.problems, (QList<RemovalProblem>{{ground.root + "/a/s", reason},
                                                         {ground.root + "/direct", reason},
                                                         {ground.root + "/relative", reason}}));
        QCOMPARE(tree::snapshot(ground.root).keys(), (QList<QByteArray>{"a", "a/s", "direct", "relative"}));
        some.boundSockets.reset();
        QCOMPARE(empty(RemovalRoot(ground.root, some)).problemCount, 3);
        QCOMPARE(empty(RemovalRoot(ground.root, rules())).removedFiles, 3);
    }

    void takesOldThingsOnlyWhole()
    {
        Ground ground;
        for (const char *name : {"/old/a", "/old/b/c", "/mixed/old", "/mixed/new", "/single", "/twins/one"})
            tree::file(ground.root + name);
        ::link((ground.root + "/twins/one").constData(), (ground.root + "/twins/two").constData());
        RemovalRules some = rules();
        some.minimumAge = 24h;
        some.now = changed(ground.root + "/twins/two") + 24 * 3600 + 10;
        setAge(ground.root + "/mixed/new", some.now - 24 * 3600 + 1);
        const RemovalReport report = empty(RemovalRoot(ground.root, some));
        QCOMPARE(report.problemCount, 0);
        QCOMPARE(report.removedFiles, 5);
        QCOMPARE(tree::snapshot(ground.root).keys(), (QList<QByteArray>{"mixed", "mixed/new", "mixed/old"}));
        // A file just changed is young, whatever time it claims to be from.
        setAge(ground.root + "/mixed/new", 1000);
        some.now = changed(ground.root + "/mixed/new") + 24 * 3600 - 1;
        QCOMPARE(empty(RemovalRoot(ground.root, some)), RemovalReport());
    }

    void leavesOthersOldThings()
    {
        if (::geteuid() != 0)
            QSKIP("only root can give files away");
        Ground ground;
        tree::file(ground.root + "/mixed/mine");
        tree::file(ground.root + "/mixed/theirs");
        ::chown((ground.root + "/mixed/theirs").constData(), nobody, nobody);
        RemovalRules some = rules();
        some.minimumAge = 24h;
        some.now = changed(ground.root + "/mixed/theirs") + 48 * 3600;
        QCOMPARE(empty(RemovalRoot(ground.root, some)), RemovalReport());
        QCOMPARE(tree::snapshot(ground.root).size(), 3);
    }

    void saysWhatItMayNotRemove()
    {
        Ground ground;
        for (const char *name : {"/fixed/one", "/fixed/two", "/fixed/in/three", "/unread/four", "/good"})
            tree::file(ground.root + name);
        tree::folder(ground.root + "/empty");
        ::chmod((ground.root + "/fixed").constData(), 0500);
        ::chmod((ground.root + "/unread").constData(), 0);
        ::chmod((ground.root + "/empty").constData(), 0);
        RemovalRoot root(ground.root, rules());
        if (::geteuid() == 0) {
            QProcess::execute(u"chown"_s, {u"-R"_s, u"65534"_s, QFile::decodeName(ground.root)});
            QCOMPARE(::seteuid(nobody), 0);
        }
        const RemovalReport report = empty(root);
        if (::getuid() == 0)
            QCOMPARE(::seteuid(0), 0);
        QCOMPARE(report.removedFiles, 2);
        QCOMPARE(report.problems, (QList<RemovalProblem>{{ground.root + "/fixed", u"没有权限"_s},
                                                         {ground.root + "/unread", u"没有权限"_s}}));
        ::chmod((ground.root + "/fixed").constData(), 0700);
        ::chmod((ground.root + "/unread").constData(), 0700);
        QCOMPARE(tree::snapshot(ground.root).keys(),
                 (QList<QByteArray>{"fixed", "fixed/in", "fixed/one", "fixed/two", "unread", "unread/four"}));
    }

    void stopsWhenCancelled()
    {
        Ground ground;
        tree::file(ground.root + "/a/b");
        Cancellation cancelled;
        cancelled.cancel();
        QCOMPARE(RemovalRoot(ground.root, rules()).remove("a", cancelled), RemovalReport());
        QVERIFY(tree::exists(ground.root + "/a/b"));
    }

    void keepsTheFirstHundredProblems()
    {
        RemovalReport all;
        for (int i = 0; i < 150; ++i)
            all.add({.problems = {{QByteArray::number(i), u"x"_s}}, .problemCount = 1});
        QCOMPARE(all.problemCount, 150);
        QCOMPARE(all.problems.size(), 100);
        QCOMPARE(all.problems.last().path, "99");
    }

    void deepTreesNeedFewDescriptors()
    {
        // Many levels, and longer paths than the system takes.
        for (const auto &[levels, nameLength] : {std::pair(5000, 8), {60, 255}}) {
            Ground ground(_quick.path());
            const QByteArray name(nameLength, 'n');
            int at = ::open(ground.root.constData(), O_RDONLY | O_DIRECTORY);
            for (int i = 0; i < levels; ++i) {
                QCOMPARE(::mkdirat(at, name.constData(), 0700), 0);
                ::close(::openat(at, "file", O_WRONLY | O_CREAT, 0600));
                const int next = ::openat(at, name.constData(), O_RDONLY | O_DIRECTORY);
                ::close(at);
                at = next;
            }
            ::close(at);
            rlimit before{};
            ::getrlimit(RLIMIT_NOFILE, &before);
            const rlimit few{.rlim_cur = 128, .rlim_max = before.rlim_max};
            ::setrlimit(RLIMIT_NOFILE, &few);
            const RemovalReport report = empty(RemovalRoot(ground.root, rules()));
            ::setrlimit(RLIMIT_NOFILE, &before);
            QCOMPARE(report.problems, QList<RemovalProblem>());
            QCOMPARE(report.removedFiles, levels);
            QVERIFY(tree::snapshot(ground.root).isEmpty());
        }
    }

    void stopsAtMounts()
    {
        if (!_hasOwnMounts)
            QSKIP("mounts cannot be made here");
        Ground ground;
        const auto outside = tree::snapshot(ground.outside);
        for (const char *name : {"/disk", "/a/second", "/a/b"})
            tree::folder(ground.root + name);
        tree::file(ground.root + "/a/file");
        QVERIFY(mountOver(ground.root + "/disk", ground.outside, ground.root + "/a/second"));
        tree::file(ground.root + "/disk/kept");
        const RemovalReport report = empty(RemovalRoot(ground.root, rules()));
        const QString reason = u"是另一个磁盘的挂载点"_s;
        QCOMPARE(report.problems, (QList<RemovalProblem>{{ground.root + "/a/second", reason},
                                                         {ground.root + "/disk", reason}}));
        QCOMPARE(report.removedFiles, 1);
        QVERIFY(tree::exists(ground.root + "/disk/kept") && !tree::exists(ground.root + "/a/b"));
        QCOMPARE(tree::snapshot(ground.outside), outside);
        unmount(ground.root + "/disk");
        unmount(ground.root + "/a/second");
        QCOMPARE(empty(RemovalRoot(ground.root, rules())).problemCount, 0);
    }

    void whateverIsThereTheOutsideStays()
    {
        for (unsigned seed = 1; seed <= 120; ++seed) {
            Ground ground;
            const TrappedTree trapped(ground, seed, _hasOwnMounts && seed > 60);
            RemovalRules some = rules(trapped.places);
            some.boundSockets = trapped.boundPaths;
            const QSet<QByteArray> remains = trapped.remains();
            const auto outside = tree::snapshot(ground.outside);
            const auto inside = tree::snapshot(ground.root);
            empty(RemovalRoot(ground.root, some));
            const QByteArray which = "seed " + QByteArray::number(seed);
            QVERIFY2(tree::snapshot(ground.outside) == outside, which);
            const auto left = tree::snapshot(ground.root);
            QVERIFY2(QSet<QByteArray>(left.keyBegin(), left.keyEnd()) == remains, which);
            for (const QByteArray &place : trapped.places) {
                const QByteArray path = place.sliced(ground.root.size() + 1);
                QVERIFY2(left.value(path) == inside.value(path), which);
            }
        }
    }

    // Somebody keeps exchanging the folders for links to the outside.
    void exchangedFoldersLeadNowhere()
    {
        Ground ground(_quick.path());
        const QByteArray folder = ground.root + "/a", inner = folder + "/in";
        const QByteArray parked = ground.base + "/parked", innerParked = ground.base + "/inner";
        // The same as inside, so that a wrong turn finds something.
        const QList<QByteArray> names{"/in/kept", "/in/other", "/in/more/kept", "/kept"};
        for (const QByteArray &name : names)
            tree::file(ground.outside + "/deep" + name);
        const auto outside = tree::snapshot(ground.outside);
        std::atomic_bool ends = false;
        std::atomic_int exchanges = 0;
        std::thread exchanger([&] {
            const auto exchange = [&](const QByteArray &path, const QByteArray &away,
                                      const QByteArray &target) {
                if (::rename(path.constData(), away.constData()) != 0)
                    return;
                tree::link(target, path);
                ++exchanges;
                ::unlink(path.constData());
                // The way back is barred when the folder has been made again.
                if (::rename(away.constData(), path.constData()) != 0)
                    std::filesystem::remove_all(tree::native(away));
            };
            while (!ends) {
                exchange(inner, innerParked, ground.outside + "/deep/in");
                exchange(folder, parked, ground.outside + "/deep");
            }
        });
        const RemovalRoot root(ground.root, rules());
        QElapsedTimer time;
        qint64 removed = 0;
        for (time.start(); time.elapsed() < 3000;) {
            for (const QByteArray &name : names) {
                ::mkdir(folder.constData(), 0700);
                ::mkdir(inner.constData(), 0700);
                ::mkdir((inner + "/more").constData(), 0700);
                const int file =
                    ::open((folder + name).constData(), O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW, 0600);
                if (file >= 0)
                    ::close(file);
            }
            removed += root.remove("a", Cancellation()).removedFiles;
        }
        ends = true;
        exchanger.join();
        QVERIFY2(exchanges > 100 && removed > 100,
                 QByteArray::number(exchanges) + ' ' + QByteArray::number(removed));
        QCOMPARE(tree::snapshot(ground.outside), outside);
    }
};

QTEST_GUILESS_MAIN(RemovalTest)
#include "RemovalTest.moc"
