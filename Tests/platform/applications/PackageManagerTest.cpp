#include "platform/linux/applications/PackageManager.h"
#include "support/Fuzz.h"
#include "support/Test.h"

namespace {

using Programs = PackagePrograms;

PackageManager managerOf(QString Programs::*query, QString Programs::*remover)
{
    PackagePrograms programs;
    programs.*query = programs.*remover = u"/usr/bin/it"_s;
    return systemPackageManager(programs).value_or(PackageManager());
}

const PackageManager apt = managerOf(&Programs::dpkgQuery, &Programs::aptGet);
const PackageManager dnf = managerOf(&Programs::rpm, &Programs::dnf);
const PackageManager zypper = managerOf(&Programs::rpm, &Programs::zypper);
const PackageManager pacman = managerOf(&Programs::pacman, &Programs::pacman);

using Owners = QHash<QString, QString>;

} // namespace

class PackageManagerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void takesTheOneThatCanRemove()
    {
        QCOMPARE(apt.name + dnf.name + zypper.name + pacman.name, u"APTDNFZypperPacman"_s);
        QVERIFY(!systemPackageManager({}));
        PackagePrograms onlyQuery;
        onlyQuery.dpkgQuery = u"dpkg-query"_s;
        QVERIFY(!systemPackageManager(onlyQuery));
    }

    void understandsApt()
    {
        QCOMPARE(apt.owners("gimp: /usr/share/applications/gimp.desktop\n"
                            "diversion by gimp from: /usr/share/applications/x.desktop\n"
                            "wine:i386, wine:amd64: /usr/share/applications/a: b.desktop\n"),
                 (Owners{{u"/usr/share/applications/gimp.desktop"_s, u"gimp"_s},
                         {u"/usr/share/applications/a: b.desktop"_s, u"wine:i386"_s}}));
        const auto facts = apt.facts("gimp\t2.10-1\t18000\tno\tno\toptional\nbash\t5\t\tyes\t\trequired\n"
                                     "init\t1\t2\tno\tyes\timportant\n");
        QCOMPARE(facts.value(u"gimp"_s), (PackageFacts{u"2.10-1"_s, 18000LL * 1024, false}));
        QCOMPARE(facts.value(u"bash"_s), (PackageFacts{u"5"_s, std::nullopt, true}));
        QVERIFY(facts.value(u"init"_s).isEssential);
        QCOMPARE(apt.removed("Reading package lists...\nRemv gimp [2.10-1] [plug:amd64 ]\nRemv plug [1]\n"),
                 (QStringList{u"gimp"_s, u"plug"_s}));
    }

    void understandsRpmsManagers()
    {
        QCOMPARE(dnf.owners("gimp\t/usr/bin/gimp\nfile /opt/x is not owned by any package\n"),
                 (Owners{{u"/usr/bin/gimp"_s, u"gimp"_s}}));
        QCOMPARE(dnf.facts("gimp\t2.10-3.fc40\t1234\n").value(u"gimp"_s),
                 (PackageFacts{u"2.10-3.fc40"_s, 1234, false}));
        QCOMPARE(dnf.removed("Dependencies resolved.\n=====\n Package  Arch\n=====\nRemoving:\n"
                             " gimp     x86_64  2:2.10  @fedora  100 M\nRemoving dependent packages:\n"
                             " gimp-data noarch 1 @fedora 1 M\n\nTransaction Summary\n=====\n"
                             "Remove  2 Packages\n"),
                 (QStringList{u"gimp"_s, u"gimp-data"_s}));
        QCOMPARE(
            zypper.removed("Resolving package dependencies...\n\nThe following 2 packages are going to be "
                           "REMOVED:\n  gimp gimp-data\n\n2 packages to remove.\n"),
            (QStringList{u"gimp"_s, u"gimp-data"_s}));
    }

    void understandsPacman()
    {
        QCOMPARE(pacman.owners("/usr/share/applications/gimp.desktop is owned by gimp 2.10-1\n"),
                 (Owners{{u"/usr/share/applications/gimp.desktop"_s, u"gimp"_s}}));
        QCOMPARE(pacman
                     .facts("Name            : gimp\nVersion         : 2.10-1\nDepends On : a: b\n"
                            "Installed Size  : 1.50 MiB\n")
                     .value(u"gimp"_s),
                 (PackageFacts{u"2.10-1"_s, 1572864, false}));
        QCOMPARE(pacman.removed("gimp\n"), QStringList{u"gimp"_s});
    }

    void readsFlatpaksAndSnaps()
    {
        const QList<FlatpakApplication> expected{{u"org.gimp.GIMP"_s, u"GIMP"_s, u"2.10"_s, 123400000, true},
                                                 {u"org.x.Y"_s, u"org.x.Y"_s, u""_s, std::nullopt, false}};
        QCOMPARE(flatpakApplications("org.gimp.GIMP\tGIMP\t2.10\t123.4\xc2\xa0MB\tuser\n"
                                     "org.x.Y\t\t\t?\tsystem\norg.extra.Z\tZ\t1\t1 MB\tlab\n"
                                     "--all\tBad\t1\t1 MB\tuser\nhalf\tline\n"),
                 expected);
        QCOMPARE(snapVersions("Name    Version  Rev  Tracking  Publisher  Notes\n"
                              "firefox 128.0-1  1    latest    mozilla    -\n"),
                 (Owners{{u"firefox"_s, u"128.0-1"_s}}));
    }

    void knowsSizesAndNames()
    {
        QCOMPARE(bytesOf(u"512 bytes"_s), 512);
        QCOMPARE(bytesOf(u"1.5 GB"_s), 1500000000);
        QVERIFY(!bytesOf(u""_s) && !bytesOf(u"inf MB"_s) && !bytesOf(u"-1 MB"_s) && !bytesOf(u"12"_s));
        QVERIFY(isPackageName(u"libstdc++6:amd64"_s) && isPackageName(u"org.gimp.GIMP"_s));
        QVERIFY(!isPackageName(u"-y"_s) && !isPackageName(u""_s) && !isPackageName(u"a*"_s) &&
                !isPackageName(u"a b"_s) && !isPackageName(u"a\n"_s));
    }

    void anyOutputIsRead()
    {
        const Fuzz fuzz{
            {"gimp: /usr/share/applications/gimp.desktop\nwine:i386, wine:amd64: /usr/a: b.desktop\n",
             "gimp\t2.10-1\t18000\tno\tno\toptional\ninit\t1\t2\tno\tyes\timportant\n",
             "Reading package lists...\nRemv gimp [2.10-1] [plug:amd64 ]\nRemv plug [1]\n",
             "=====\nRemoving:\n gimp     x86_64  2:2.10  @fedora  100 M\n\nTransaction Summary\n",
             "The following 2 packages are going to be REMOVED:\n  gimp gimp-data\n\n2 packages\n",
             "Name            : gimp\nVersion         : 2.10-1\nInstalled Size  : 1.50 MiB\n",
             "/usr/share/gimp.desktop is owned by gimp 2.10-1\n",
             "org.gimp.GIMP\tGIMP\t2.10\t123.4\xc2\xa0MB\tuser\norg.x.Y\t\t\t?\tsystem\n",
             "Name    Version  Rev  Tracking  Publisher  Notes\nfirefox 128.0-1  1  latest  mozilla  -\n"},
            {"\n", "\t", " ", ":", ": /", "Remv ", "9223372036854775807", "1e999", "-1", " GB"}};
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            for (const PackageManager &manager : {apt, dnf, zypper, pacman}) {
                static_cast<void>(manager.owners(bytes));
                static_cast<void>(manager.facts(bytes));
                static_cast<void>(manager.removed(bytes));
            }
            const auto isSound = [](const FlatpakApplication &each) {
                return isPackageName(each.id) && !each.name.isEmpty() && each.size.value_or(0) >= 0;
            };
            return std::ranges::all_of(flatpakApplications(bytes), isSound) &&
                   std::ranges::all_of(snapVersions(bytes).keys(), isPackageName);
        }));
    }
};

QTEST_GUILESS_MAIN(PackageManagerTest)
#include "PackageManagerTest.moc"
