#include "foundation/AtomicFile.h"

#include "support/Test.h"

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

#include <QProcess>

class AtomicFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void replacesWhatIsThere()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath(u"a/b/kept"_s);
        const QString link = folder.filePath(u"link"_s);
        QVERIFY(replaceFile(file, "one"));
        QVERIFY(!(QFile::permissions(file) & (QFile::ReadGroup | QFile::ReadOther)));
        QVERIFY(QFile::setPermissions(file, QFile::permissions(file) | QFile::ReadGroup));
        QVERIFY(QFile::link(file, link));
        QVERIFY(replaceFile(link, "two\0three"_ba));
        QCOMPARE(readFile(file), "two\0three"_ba);
        QVERIFY(QFileInfo(link).isSymLink());
        QVERIFY(QFile::permissions(file) & QFile::ReadGroup);
        QCOMPARE(entriesOf(folder.filePath(u"a/b"_s)), QStringList{u"kept"_s});
    }

    void whatCannotBeWrittenLeavesNothing()
    {
        const QTemporaryDir folder;
        const QString taken = folder.filePath(u"taken"_s);
        writeFile(taken + u"/inside"_s);
        QCOMPARE(errorText(replaceFile(taken, "x")), u"无法写入 %1：已有同名的文件或文件夹"_s.arg(taken));
        QVERIFY(!replaceFile(taken + u"/inside/below"_s, "x"));
        QVERIFY(!replaceFile(folder.filePath(u"picture"_s), QImage(), "PNG"));
        QCOMPARE(entriesOf(folder.path()), QStringList{u"taken"_s});
        QCOMPARE(entriesOf(taken), QStringList{u"inside"_s});
    }

    void aFullDiskKeepsTheOldContent_data()
    {
        QTest::addColumn<QString>("mounting");
        QTest::addColumn<QString>("whyNot");
        QTest::newRow("tmpfs") << u"mount -t tmpfs -o size=1m none disk"_s << u"mounts cannot be made here"_s;
        QTest::newRow("ext4") << u"truncate -s 4M i && mkfs.ext4 -q -F i && mount -o loop i disk"_s
                              << u"no loop device here"_s;
    }

    void aFullDiskKeepsTheOldContent()
    {
        QFETCH(QString, mounting);
        QFETCH(QString, whyNot);
        const QTemporaryDir outside;
        const QDir folder(outside.filePath(u"disk/in"_s));
#ifdef __linux__
        // The mount of this test is seen by nobody else and ends with it.
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            QSKIP("mounts cannot be made here");
        QProcess shell;
        shell.setWorkingDirectory(outside.path());
        shell.start(u"/bin/sh"_s, {u"-c"_s, u"mkdir disk && "_s + mounting + u" && mkdir disk/in"_s});
        if (!shell.waitForFinished() || shell.exitCode() != 0)
#endif
            QSKIP(qPrintable(whyNot));
        const QString file = folder.filePath(u"kept"_s);
        const QString ballast = folder.filePath(u"ballast"_s);
        QVERIFY(replaceFile(file, "old"));
        QFile filling(ballast);
        QVERIFY(filling.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        // A disk has some room again when what was written has reached it.
        for (const qsizetype chunk : {4096, 4096, 1, 1}) {
            while (filling.write(QByteArray(chunk, 'x')) > 0) {
            }
            QCOMPARE(synced(filling.handle()), 0);
        }
        for (const qsizetype size : {1, 5000, 2'000'000}) {
            QCOMPARE(errorText(replaceFile(file, QByteArray(size, 'n'))),
                     u"无法写入 %1：磁盘空间不足"_s.arg(file));
            QCOMPARE(readFile(file), "old"_ba);
            QCOMPARE(entriesOf(folder.path()), (QStringList{u"ballast"_s, u"kept"_s}));
        }
        QVERIFY(filling.remove());
        QVERIFY(replaceFile(file, "new"));
        QCOMPARE(readFile(file), "new"_ba);
#ifdef __linux__
        ::umount2(QFile::encodeName(outside.filePath(u"disk"_s)).constData(), MNT_DETACH);
#endif
    }
};

QTEST_GUILESS_MAIN(AtomicFileTest)
#include "AtomicFileTest.moc"
