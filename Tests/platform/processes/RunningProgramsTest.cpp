#include "platform/linux/processes/ProcPrograms.h"

#include "platform/Programs.h"
#include "support/FakeApplications.h"
#include "support/FileTree.h"
#include "support/Test.h"

#include <QCoroTask>

class RunningProgramsTest : public QObject {
    Q_OBJECT

    QTemporaryDir _temporary;
    QString _folder;

    QString program(const QString &name) const
    {
        return standIn(_folder + u'/' + name, readFile(u"/bin/sleep"_s));
    }
    static QSet<QString> runningOf(const RunningPrograms &programs, const QStringList &names)
    {
        return QCoro::waitFor(programs.running(names));
    }
    bool runsFrom(const RunningPrograms &programs, const QString &path) const
    {
        return QCoro::waitFor(programs.runsFrom({_folder + u"/absent"_s, path}));
    }
    // The same for the fake and the real one, while "app/velb-sleeper" runs.
    void knowsTheSleeper(const RunningPrograms &programs)
    {
        QCOMPARE(runningOf(programs, {u"velb-sleeper"_s, u"velb-nobody"_s, u""_s}),
                 QSet<QString>{u"velb-sleeper"_s});
        QVERIFY(runningOf(programs, {}).isEmpty());
        QVERIFY(runsFrom(programs, _folder + u"/app/velb-sleeper"_s));
        QVERIFY(runsFrom(programs, _folder + u"/app"_s));
        QVERIFY(!runsFrom(programs, _folder + u"/ap"_s));
        QVERIFY(!runsFrom(programs, _folder + u"/app/velb"_s));
    }

private Q_SLOTS:
    void initTestCase() { _folder = QDir(_temporary.path()).canonicalPath(); }

    void findsProgramsByNameAndPlace()
    {
        FakeRunningPrograms fake;
        fake.names = {u"velb-sleeper"_s};
        fake.executables = {_folder + u"/app/velb-sleeper"_s};
        knowsTheSleeper(fake);
        const ProcPrograms programs;
        QVERIFY(!runsFrom(programs, _folder + u"/app"_s));
        {
            const RunningProgram sleeper(program(u"app/velb-sleeper"_s), {u"600"_s});
            QTRY_VERIFY(runsFrom(programs, _folder + u"/app"_s));
            knowsTheSleeper(programs);
            QVERIFY(QFile::link(_folder + u"/app"_s, _folder + u"/link"_s));
            QVERIFY(runsFrom(programs, _folder + u"/link"_s));
            // Replaced while it runs, as updates do.
            QVERIFY(QFile::remove(_folder + u"/app/velb-sleeper"_s));
            knowsTheSleeper(programs);
        }
        QVERIFY(runningOf(programs, {u"velb-sleeper"_s}).isEmpty());
    }

    void aScriptGoesByItsOwnName()
    {
        const QString script =
            standIn(_folder + u"/scripts/velb-script-of-a-long-name"_s, "#!/bin/sh\nread line\n");
        const RunningProgram running(script);
        // Names it only, and does not run it.
        const RunningProgram other(program(u"velb-other"_s), {u"600"_s, u"velb-named"_s});
        const ProcPrograms programs;
        QTRY_COMPARE(runningOf(programs, {u"velb-script-of-a-long-name"_s, u"velb-named"_s}),
                     QSet<QString>{u"velb-script-of-a-long-name"_s});
        QVERIFY(runsFrom(programs, _folder + u"/scripts"_s));
    }

    void javaAndSandboxesGoByWhatTheyRun()
    {
        const QString java = standIn(_folder + u"/jbr/java"_s, readFile(u"/bin/sh"_s));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"FLATPAK_ID"_s, u"org.velb.App"_s);
        environment.insert(u"SNAP_INSTANCE_NAME"_s, u"velb_2"_s);
        const QString archive = _folder + u"/tools/velb.jar"_s;
        const RunningProgram running(
            java,
            {u"-c"_s, u"read line"_s, u"-jar"_s, archive, u"-Didea.paths.selector=Velb2024.1"_s, u"-cp"_s,
             u"/nowhere/a.jar:"_s + _folder + u"/library/b.jar:"_s + _folder + u"/tool/lib/c.jar"_s},
            environment);
        const QSet<QString> names{u"velb.jar"_s, u"Velb2024.1"_s, u"org.velb.App"_s, u"snap.velb_2"_s};
        const ProcPrograms programs;
        QTRY_COMPARE(runningOf(programs, names.values() + QStringList{u"b.jar"_s, u"velb_2"_s}), names);
        QVERIFY(runsFrom(programs, archive) && runsFrom(programs, _folder + u"/library"_s));
        QVERIFY(!runsFrom(programs, _folder + u"/librar"_s));
        QVERIFY(runsFrom(programs, _folder + u"/tool/bin/start.sh"_s));
        QVERIFY(!runsFrom(programs, _folder + u"/other/bin/start.sh"_s));
    }

    void readsTheSandboxFromTheControlGroups()
    {
        const QByteArray slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
        QCOMPARE(sandboxName(slice + "app-flatpak-org.mozilla.firefox-4711.scope\n"), "org.mozilla.firefox");
        QCOMPARE(sandboxName("1:cpu:/\n" + slice + "app-flatpak-org.a\\x2db-1.scope\n"), "org.a-b");
        QCOMPARE(sandboxName(slice + "snap.firefox.firefox-0a1b.scope\n"), "snap.firefox");
        QCOMPARE(sandboxName(slice + "snap.\n" + slice + "app-gnome-firefox-1.scope\n"), QByteArray());
    }

    void anAppImageRunsFromItsMount()
    {
        const QString image = writeFile(_folder + u"/Velb.AppImage"_s);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"APPIMAGE"_s, image);
        environment.insert(u"APPDIR"_s, _folder + u"/.mount_Velb"_s);
        const ProcPrograms programs;
        // What it starts is not the image.
        const RunningProgram child(program(u"velb-child"_s), {u"600"_s}, environment);
        QTRY_VERIFY(runsFrom(programs, _folder + u"/velb-child"_s));
        QVERIFY(!runsFrom(programs, image));
        const RunningProgram inside(program(u".mount_Velb/usr/bin/velb-inside"_s), {u"600"_s}, environment);
        QTRY_VERIFY(runsFrom(programs, image));
    }

    void knowsTheSocketsInUse()
    {
        const QByteArray base = QFile::encodeName(_folder);
        const int open[] = {tree::socket(base + "/stream"), tree::socket(base + "/line\nbreak \xff")};
        ::close(tree::socket(base + "/closed"));
        const auto sockets = QCoro::waitFor(ProcPrograms().boundSockets());
        for (const int descriptor : open)
            ::close(descriptor);
        QVERIFY(sockets && sockets->contains(base + "/stream") &&
                sockets->contains(base + "/line\nbreak \xff"));
        QVERIFY(QFile::exists(_folder + u"/closed"_s) && !sockets->contains(base + "/closed"));
    }

    void readsTheTableOfSockets()
    {
        QCOMPARE(
            socketPaths("Num       RefCount Protocol Flags    Type St Inode Path\n"
                        "0000000000000000: 00000002 00000000 00010000 0001 01    77 /run/a b\n"
                        "ffff8881234abcd0: 00000003 00000000 00000000 0001 03 12345\n"
                        "0000000000000000: 00000002 00000000 00010000 0001 01 12346 @/tmp/abstract\n"
                        "0000000000000000: 00000002 00000000 00000000 0002 01 123467 relative\n"
                        "0000000000000000: 00000002 00000000 00010000 0005 01 12348 /tmp/one\n\nthree: x\n"
                        "0000000000000000: 00000002 00000000 00010000 0001 01 12349 /tmp/last\n"),
            (QSet<QByteArray>{"/run/a b", "relative", "/tmp/one\n\nthree: x", "/tmp/last"}));
        QVERIFY(socketPaths("").isEmpty());
    }
};

QTEST_GUILESS_MAIN(RunningProgramsTest)
#include "RunningProgramsTest.moc"
