#include "platform/linux/files/ExclusiveMove.h"

#include "support/FileTree.h"
#include "support/Test.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/syscall.h>

namespace {

int renameError = 0;   // of those that must not replace; 0: they work
QByteArray comesLater; // a file that appears when somebody has just looked for it

} // namespace

// In the C library's place: a file system that cannot rename without replacing,
// and another program that is quicker.
extern "C" int renameat2(int fromFolder, const char *from, int toFolder, const char *to,
                         unsigned flags) noexcept
{
    if (flags == 0 || renameError == 0)
        return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
    errno = renameError;
    return -1;
}
extern "C" int lstat(const char *path, struct stat *facts) noexcept
{
    const int found = ::fstatat(AT_FDCWD, path, facts, AT_SYMLINK_NOFOLLOW);
    if (path == comesLater) {
        const int error = errno;
        tree::file(std::exchange(comesLater, {}), "theirs");
        errno = error;
    }
    return found;
}

class ExclusiveMoveTest : public QObject {
    Q_OBJECT

    static void replacesNothing(int refusal, const QByteArray &item, const QByteArray &taken)
    {
        const QTemporaryDir home;
        const QByteArray top = home.path().toUtf8();
        const QByteArray from = top + "/from";
        const QByteArray to = top + "/to";
        const auto make = [](const QByteArray &kind, const QByteArray &path, const QByteArray &content) {
            if (kind.endsWith("folder"))
                tree::folder(path);
            if (kind == "folder")
                tree::file(path + "/inside", content);
            else if (kind == "link")
                tree::link("/nowhere/" + content, path);
            else if (kind == "file")
                tree::file(path, content);
        };
        make(item, from, "mine");
        make(taken, to, "theirs");
        const auto before = tree::snapshot(top);
        if (taken == "later")
            comesLater = to;
        renameError = refusal;
        const int error = moveExclusively(from, to);
        comesLater.clear();
        const auto after = tree::snapshot(top);
        if (taken.isEmpty() || (taken == "later" && refusal == 0)) {
            QCOMPARE(error, 0);
            QVERIFY(!after.contains("from") && after.value("to") == before.value("from"));
            QCOMPARE(after.value("to/inside"), before.value("from/inside"));
        } else if (taken == "later") {
            QCOMPARE(error, EEXIST);
            QVERIFY(after.value("from") == before.value("from") && after.value("to").endsWith(" theirs"));
        } else {
            QCOMPARE(error, EEXIST);
            QCOMPARE(after, before);
        }
    }

private Q_SLOTS:
    void cleanup() { renameError = 0; }

    void replacesNothing()
    {
        for (const int refusal : {0, EINVAL, ENOSYS}) { // the latter of old kernels
            for (const char *item : {"file", "folder", "link"}) {
                for (const char *taken : {"", "file", "folder", "empty folder", "link", "later"}) {
                    replacesNothing(refusal, item, taken);
                    if (QTest::currentTestFailed())
                        QFAIL(item + QByteArray(" to ") + taken + ' ' + QByteArray::number(refusal));
                }
            }
        }
    }

    void aFolderDoesNotGoIntoItself()
    {
        const QTemporaryDir home;
        const QByteArray folder = home.path().toUtf8() + "/folder";
        tree::file(folder + "/inside");
        QCOMPARE(moveExclusively(folder, folder + "/deeper"), EINVAL);
        renameError = EINVAL;
        QCOMPARE(moveExclusively(folder, folder + "/deeper"), EINVAL);
        QCOMPARE(moveExclusively(folder + "/nothing", home.path().toUtf8() + "/to"), ENOENT);
        QVERIFY(tree::exists(folder + "/inside") && !tree::exists(home.path().toUtf8() + "/to"));
    }
};

QTEST_APPLESS_MAIN(ExclusiveMoveTest)
#include "ExclusiveMoveTest.moc"
