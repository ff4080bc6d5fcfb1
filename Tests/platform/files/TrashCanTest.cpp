#include "platform/linux/files/FreedesktopTrash.h"

#include "foundation/SystemClock.h"
#include "platform/macos/files/FinderTrash.h"
#include "support/FakeFiles.h"
#include "support/FileTree.h"
#include "support/Fuzz.h"
#include "support/Test.h"

#include <sched.h>
#include <sys/mount.h>

namespace {

bool isThere(const QString &path)
{
    return tree::exists(QFile::encodeName(path));
}

// Mounts made after this are seen by this process alone, which may have one thread.
bool ownMounts()
{
    const auto tell = [](const char *path, const std::string &text) {
        return bool(std::ofstream(path) << text << std::flush);
    };
    const auto same = [](uint id) { return std::to_string(id) + ' ' + std::to_string(id) + " 1"; };
    const uint user = ::getuid(), group = ::getgid();
    if (::unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    if (user != 0 && (!tell("/proc/self/setgroups", "deny") || !tell("/proc/self/uid_map", same(user)) ||
                      !tell("/proc/self/gid_map", same(group))))
        return false;
    return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

const bool hasOwnMounts = ownMounts(); // before main() and its threads

// A home with a trash and a second volume, both in a temporary folder.
class TrashRig {
    QTemporaryDir _folder;

public:
    SystemClock clock;
    RemovalRules rules;
    const QString data = path(u"data"_s);
    const QString trash = data + u"/Trash"_s;
    const QString volume = path(u"a volume"_s);
    const QString volumeTrash = volume + u"/.Trash-"_s + QString::number(::getuid());
    std::unique_ptr<FreedesktopTrash> can;

    TrashRig()
    {
        qputenv("XDG_DATA_HOME", QFile::encodeName(data));
        QDir().mkpath(volume);
        QString escaped = volume;
        const QString table = writeFile(
            path(u"mounts"_s), "40 27 8:1 / " + QFile::encodeName(escaped.replace(u' ', u"\\040"_s)) +
                                   " rw,relatime shared:1 - ext4 /dev/sda1 rw\n");
        can = std::make_unique<FreedesktopTrash>(clock, TrashPlaces(QFile::encodeName(table)));
    }
    ~TrashRig()
    {
        can.reset();
        if (_isMounted)
            ::umount(QFile::encodeName(volume).constData());
    }
    bool mountVolume()
    {
        _isMounted = hasOwnMounts &&
                     ::mount("none", QFile::encodeName(volume).constData(), "tmpfs", 0, "size=1m") == 0;
        return _isMounted;
    }
    QString path(const QString &name) const { return _folder.filePath(name); }
    Result<QString> throwAway(const QString &item) { return QCoro::waitFor(can->moveToTrash(item)); }
    Result<void> putBack(const QString &trashed, const QString &original)
    {
        return QCoro::waitFor(can->putBack(trashed, original));
    }
    RemovalReport empty() { return *QCoro::waitFor(can->empty(rules, {})); }

private:
    bool _isMounted = false;
};

// The Finder's part of a Mac's trash can, with one folder for a trash.
constexpr char finderStandIn[] =
    "#!/usr/bin/env python3\n"
    "import os, re, shutil, sys\n"
    "trash = os.path.join(os.path.dirname(sys.argv[0]), 'Trash')\n"
    "os.makedirs(trash, exist_ok=True)\n"
    "delete = 'tell application \"Finder\" to delete POSIX file \"'\n"
    "if sys.argv[2] == 'tell application \"Finder\" to empty trash':\n"
    "    shutil.rmtree(trash)\n"
    "else:\n"
    "    assert sys.argv[2].startswith(delete) and sys.argv[2].endswith('\"')\n"
    "    path = re.sub(r'\\\\(.)', r'\\1', sys.argv[2][len(delete):-1], flags=re.S)\n"
    "    os.rename(path, os.path.join(trash, os.path.basename(path)))\n";

} // namespace

class TrashCanTest : public QObject {
    Q_OBJECT

    // The same for every trash can; `empty` answers what went wrong.
    static void goesForGood(auto &can, const QString &folder, const QString &trash, const auto &empty)
    {
        const auto moveToTrash = [&](const QString &item) {
            return errorText(QCoro::waitFor(can.moveToTrash(item)));
        };
        const QString kept = folder + u"/kept/inside"_s;
        const QString item = folder + u"/item \"%1\" \\"_s;
        writeFile(kept);
        QVERIFY(QFile::link(folder + u"/kept"_s, item));
        QCOMPARE(moveToTrash(item), QString());
        QVERIFY(!isThere(item) && isThere(kept));
        QCOMPARE(moveToTrash(item), u"文件不存在"_s);
        const QString trashed = trash + u'/' + QFileInfo(item).fileName();
        QVERIFY(isThere(trashed));
        QCOMPARE(empty(), QString());
        QVERIFY(!isThere(trashed) && isThere(kept));
    }
    // Of those that tell where an item lies.
    void goesAndComesBack(TrashCan &can, const QString &folder, const QString &name)
    {
        const QString kept = folder + u"/kept/inside"_s;
        const QString item = folder + u"/deep/"_s + name;
        writeFile(kept);
        QVERIFY(QDir().mkpath(folder + u"/deep"_s));
        if (name == u"folder")
            writeFile(item + u"/inside"_s);
        else if (name.startsWith(u"link"))
            QVERIFY(QFile::link(name == u"link" ? folder + u"/kept"_s : u"/nowhere/at/all"_s, item));
        else
            writeFile(item);
        const bool isLink = QFileInfo(item).isSymLink();

        // Named as a folder, a link goes nevertheless itself.
        const auto trashed = QCoro::waitFor(can.moveToTrash(isLink ? item + u'/' : item));
        QCOMPARE(errorText(trashed), QString());
        QVERIFY(!isThere(item) && isThere(*trashed) && isThere(kept));
        QVERIFY(trashed->startsWith(can.folders().constFirst() + u'/'));
        QCOMPARE(QFileInfo(*trashed).isSymLink(), isLink);

        writeFile(item, "newer");
        QVERIFY(!QCoro::waitFor(can.putBack(*trashed, item)));
        QCOMPARE(readFile(item), "newer");
        QVERIFY(isThere(*trashed));

        // Its folder is made anew.
        QVERIFY(QDir(folder + u"/deep"_s).removeRecursively());
        QCOMPARE(errorText(QCoro::waitFor(can.putBack(*trashed, item))), QString());
        QVERIFY(isThere(item) && !isThere(*trashed));
        QCOMPARE(QFileInfo(item).isSymLink(), isLink);

        // Only what is in the trash is put back, and nothing is made for anything else.
        const QString made = folder + u"/made/target"_s;
        QCOMPARE(errorText(QCoro::waitFor(can.putBack(*trashed, made))), u"废纸篓里已经没有它了"_s);
        QCOMPARE(errorText(QCoro::waitFor(can.putBack(kept, made))), u"不在废纸篓里"_s);
        QVERIFY(!isThere(folder + u"/made"_s));

        const auto again = QCoro::waitFor(can.moveToTrash(item));
        Cancellation late;
        late.cancel();
        QVERIFY(again && QCoro::waitFor(can.empty(RemovalRules(), late))->removedFiles == 0);
        QVERIFY(isThere(*again));
        QVERIFY(QCoro::waitFor(can.empty(RemovalRules(), Cancellation()))->removedFiles > 0);
        QVERIFY(!isThere(*again) && isThere(kept));
    }

private Q_SLOTS:
    void itemsGoForGood()
    {
        TrashRig rig;
        FakeTrashCan fake;
        const auto check = [&](TrashCan &can, const QString &folder, const QString &inside) {
            goesForGood(can, rig.path(folder), can.folders().constFirst() + inside,
                        [&] { return errorText(QCoro::waitFor(can.empty(RemovalRules(), Cancellation()))); });
        };
        check(fake, u"for the fake"_s, u"/1"_s);
        check(*rig.can, u"for the real one"_s, u"/files"_s);
        const QString folder = rig.path(u"for the Finder"_s);
        FinderTrash finder(rig.clock, standIn(folder + u"/osascript"_s, finderStandIn));
        goesForGood(finder, folder, folder + u"/Trash"_s,
                    [&] { return errorText(QCoro::waitFor(finder.empty())); });
    }

    void itemsGoAndComeBack()
    {
        for (const QString &name : {u"a file.txt"_s, u"folder"_s, u"link"_s, u"link to nothing"_s,
                                    u"two\nlines %41"_s, QString(85, u'长')}) { // as long as names get
            TrashRig rig;
            FakeTrashCan fake;
            goesAndComesBack(fake, rig.path(u"for the fake"_s), name);
            goesAndComesBack(*rig.can, rig.path(u"for the real one"_s), name);
            QVERIFY2(QDir(rig.trash + u"/info"_s).isEmpty(), qPrintable(name));
        }
    }

    void saysWhereItCameFromAndWhen()
    {
        QCOMPARE(trashInfo("/a b/中%\n\xff", QDateTime({2026, 2, 3}, {4, 5, 6})),
                 "[Trash Info]\nPath=/a%20b/%E4%B8%AD%25%0A%FF\nDeletionDate=2026-02-03T04:05:06\n");
        TrashRig rig;
        for (const QString &name : {u"item"_s, u"item.2"_s, u"item.3"_s}) {
            const QString item = writeFile(rig.path(u"item"_s));
            QCOMPARE(rig.throwAway(item), Result<QString>(rig.trash + u"/files/"_s + name));
            QVERIFY(readFile(rig.trash + u"/info/"_s + name + u".trashinfo"_s)
                        .startsWith("[Trash Info]\nPath=" + QFile::encodeName(item) + '\n'));
        }
        QCOMPARE(QFileInfo(rig.trash).permissions() & QFile::Permissions(0x0077), QFile::Permissions());
    }

    void namesAreCutBetweenCharacters()
    {
        QCOMPARE(trashedName("short", 1), "short");
        QCOMPARE(trashedName("short", 12), "short.12");
        const QByteArray name = QString(85, u'长').toUtf8();
        QCOMPARE(trashedName(name, 1), name.first(243)); // of 245
        QCOMPARE(trashedName(name, 2), name.first(243) + ".2");
        QCOMPARE(trashedName(name, 10), name.first(240) + ".10");
    }

    void whatIsNoItemStays()
    {
        TrashRig rig;
        writeFile(rig.path(u"old"_s));
        writeFile(rig.path(u"kept/file"_s));
        QVERIFY(rig.throwAway(rig.path(u"old"_s)));
        const std::initializer_list<std::pair<QString, QString>> items{
            {u"nothing"_s, u"文件不存在"_s},
            {u"kept/."_s, u"文件不存在"_s},
            {u"kept/.."_s, u"文件不存在"_s},
            {u"data/Trash"_s, u"已经在废纸篓里"_s},
            {u"data/Trash/files/old"_s, u"已经在废纸篓里"_s},
            {u"data"_s, u"它里面就是废纸篓"_s}};
        for (const auto &[item, message] : items)
            QCOMPARE(errorText(rig.throwAway(rig.path(item))), message);
        QVERIFY(!rig.throwAway(u"relative"_s));
        QVERIFY(isThere(rig.trash + u"/files/old"_s) && isThere(rig.path(u"kept/file"_s)));
        QCOMPARE(entriesOf(rig.trash + u"/info"_s), QStringList{u"old.trashinfo"_s});
    }

    void aTrashByNameAloneIsNone()
    {
        TrashRig rig;
        const QString target = rig.path(u"made/target"_s);
        for (const QString &item :
             {u"elsewhere/files/item"_s, u"elsewhere/.Trash-%1/files/item"_s.arg(::getuid())})
            QVERIFY(!rig.putBack(writeFile(rig.path(item)), target));
        QVERIFY(!isThere(rig.path(u"made"_s)));
    }

    void emptyingLeavesNothingBehind()
    {
        TrashRig rig;
        writeFile(rig.path(u"kept/inside"_s));
        writeFile(rig.trash + u"/files/folder/file"_s, QByteArray(100000, 'x'));
        QVERIFY(QFile::link(rig.path(u"kept"_s), rig.trash + u"/files/link"_s));
        writeFiles(rig.trash, {u"info/folder.trashinfo"_s, u"info/orphan.trashinfo"_s, u"info/junk"_s,
                               u"expunged/1/file"_s, u"directorysizes"_s});
        writeFile(rig.volumeTrash + u"/files/other"_s);
        rig.rules.boundSockets = QSet<QByteArray>();
        const RemovalReport report = rig.empty();
        QCOMPARE(report.problemCount, 0);
        QCOMPARE_GE(report.freedBytes, 100000);
        for (const char *part : {"files", "info", "expunged"})
            QCOMPARE(entriesOf(rig.trash + u'/' + QString::fromLatin1(part)), QStringList());
        // A folder in a volume's place is no volume, so what is called a trash there is none.
        QVERIFY(!isThere(rig.trash + u"/directorysizes"_s) && isThere(rig.path(u"kept/inside"_s)) &&
                isThere(rig.volumeTrash + u"/files/other"_s));
        QCOMPARE(rig.empty(), RemovalReport());
    }

    void whatStaysKeepsItsInfo()
    {
        TrashRig rig;
        writeFiles(rig.trash, {u"files/stays/file"_s, u"files/goes"_s, u"info/stays.trashinfo"_s,
                               u"info/goes.trashinfo"_s});
        rig.rules.protectedPaths = {QFile::encodeName(rig.trash + u"/files/stays"_s)};
        QCOMPARE(rig.empty().problemCount, 1);
        QCOMPARE(filesBelow(rig.trash), (QStringList{u"files/stays/file"_s, u"info/stays.trashinfo"_s}));
    }

    void aLinkInsteadOfThePartIsNotFollowed()
    {
        TrashRig rig;
        writeFiles(rig.path(u"."_s), {u"kept/inside"_s, u"item"_s});
        QVERIFY(QDir().mkpath(rig.trash));
        for (const QString &part : {u"/files"_s, u"/info"_s})
            QVERIFY(QFile::link(rig.path(u"kept"_s), rig.trash + part));
        QCOMPARE(rig.empty(), RemovalReport());
        QVERIFY(!rig.throwAway(rig.path(u"item"_s)));
        QVERIFY(isThere(rig.path(u"kept/inside"_s)) && isThere(rig.path(u"item"_s)));
    }

    void otherVolumesHaveTheirOwnTrash()
    {
        TrashRig rig;
        if (!rig.mountVolume())
            QSKIP("nothing can be mounted here");
        const QString item = rig.volume + u"/deep/item"_s;
        writeFile(item);
        const auto trashed = rig.throwAway(item);
        QCOMPARE(trashed, Result<QString>(rig.volumeTrash + u"/files/item"_s));
        QVERIFY(readFile(rig.volumeTrash + u"/info/item.trashinfo"_s).contains("\nPath=deep/item\n"));
        QVERIFY(!isThere(rig.trash));
        QVERIFY(rig.can->folders().contains(rig.volumeTrash));

        QCOMPARE(errorText(rig.putBack(*trashed, rig.path(u"made/item"_s))),
                 u"原来的位置和废纸篓不在同一个磁盘上"_s);
        QVERIFY(!isThere(rig.path(u"made"_s)));
        QVERIFY(rig.putBack(*trashed, item));
        QVERIFY(isThere(item) && QDir(rig.volumeTrash + u"/info"_s).isEmpty());

        QVERIFY(rig.throwAway(item));
        QVERIFY(rig.empty().removedFiles == 1 && QDir(rig.volumeTrash + u"/files"_s).isEmpty());
    }

    void onAFullDiskNothingMoves()
    {
        TrashRig rig;
        if (!rig.mountVolume())
            QSKIP("nothing can be mounted here");
        const QString item = writeFile(rig.volume + u"/item"_s);
        QVERIFY(rig.throwAway(writeFile(rig.volume + u"/first"_s)));
        QFile rest(rig.volume + u"/rest"_s);
        QVERIFY(rest.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (rest.write(QByteArray(4096, 'x')) == 4096) {
        }
        QCOMPARE(errorText(rig.throwAway(item)), u"不能写入废纸篓：磁盘空间不足"_s);
        QVERIFY(isThere(item));
        QCOMPARE(entriesOf(rig.volumeTrash + u"/info"_s), QStringList{u"first.trashinfo"_s});
    }

    void aLinkInsteadOfAVolumesTrashIsNotUsed()
    {
        TrashRig rig;
        if (!rig.mountVolume())
            QSKIP("nothing can be mounted here");
        writeFile(rig.path(u"kept/files/inside"_s));
        QVERIFY(QFile::link(rig.path(u"kept"_s), rig.volumeTrash));
        writeFile(rig.volume + u"/item"_s);
        QCOMPARE(errorText(rig.throwAway(rig.volume + u"/item"_s)), u"所在的磁盘没有可用的废纸篓"_s);
        QCOMPARE(rig.empty(), RemovalReport());
        QVERIFY(isThere(rig.path(u"kept/files/inside"_s)) && isThere(rig.volume + u"/item"_s));

        // The administrator's shared folder comes first, where nobody can take away another's.
        const QString shared = rig.volume + u"/.Trash"_s;
        QVERIFY(QDir().mkpath(shared));
        QVERIFY(!rig.throwAway(rig.volume + u"/item"_s));
        QCOMPARE(::chmod(QFile::encodeName(shared).constData(), 01777), 0);
        QCOMPARE(rig.throwAway(rig.volume + u"/item"_s),
                 Result<QString>(u"%1/%2/files/item"_s.arg(shared).arg(::getuid())));
        QCOMPARE(rig.empty().removedFiles, 1);
    }

    void anyNameAndMountTableIsTaken()
    {
        const Fuzz names{{"a file.txt", "/a b/中%\n\xff", QString(85, u'长').toUtf8()},
                         {"/", "%", "%2F", "\n", "\r"}};
        QVERIFY(names.isSurvivedBy([](const QByteArray &bytes) {
            const QByteArray info = trashInfo(bytes, QDateTime({2026, 2, 3}, {4, 5, 6}));
            const QByteArray told = info.split('\n').value(1);
            const QByteArray name = trashedName(bytes, 12);
            return info.count('\n') == 3 && QByteArray::fromPercentEncoding(told.mid(5)) == bytes &&
                   name.size() <= 245 && name.endsWith(".12") && bytes.startsWith(name.chopped(3));
        }));
        const Fuzz tables{
            {"30 27 8:1 / /media/My\\040Disk\\134x rw,nosuid shared:4 master:2 - vfat /dev/a rw\n"
             "33 27 0:41 /home /home rw - btrfs /dev/b rw\n"},
            {" ", " - ", "\\", "\\777", "\\0", "\n", ","}};
        QVERIFY(tables.isSurvivedBy(
            [](const QByteArray &bytes) { return trashVolumes(bytes).size() <= bytes.count('\n') + 1; }));
    }

    void onlyDisksHaveATrash()
    {
        QCOMPARE(
            trashVolumes("22 27 0:21 / /proc rw - proc proc rw\n"
                         "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n"
                         "30 27 8:1 / /media/My\\040Disk\\134x rw,nosuid shared:4 master:2 - vfat /dev/a rw\n"
                         "31 27 8:2 / /media/cd ro - iso9660 /dev/sr0 ro\n"
                         "32 27 0:40 / /net rw - nfs4 server:/x rw\n"
                         "33 27 0:41 /home /home rw - btrfs /dev/b rw\n"
                         "34 27 0:41 /home /home rw - btrfs /dev/b rw\n"
                         "torn 1 2"),
            (QList<QByteArray>{"/", "/media/My Disk\\x", "/home"}));
    }
};

QTEST_GUILESS_MAIN(TrashCanTest)
#include "TrashCanTest.moc"
