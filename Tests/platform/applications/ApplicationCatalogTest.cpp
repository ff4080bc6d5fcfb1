#include "platform/linux/applications/LinuxApplicationCatalog.h"

#include "foundation/SystemClock.h"
#include "support/FileTree.h"
#include "support/UninstallRig.h"

namespace {

using Kind = InstalledApplication::Kind;

// A home, a system's data folder and package managers that are shell scripts.
struct HostRig {
    const QString own = u"home/.local/share/applications/"_s; // the user's entries
    QTemporaryDir folder;
    SystemClock clock;
    ApplicationPlaces places;
    PackagePrograms programs;

    HostRig()
    {
        places.home = at(u"home"_s);
        places.dataHome = at(u"home/.local/share"_s);
        places.dataFolders = {at(u"local"_s), at(u"system"_s)};
        places.flatpakFolder = at(u"flatpak"_s);
        places.executable = at(u"bin/velbrix"_s);
        programs.env = u"/usr/bin/env"_s;
    }
    QString at(const QString &path) const { return folder.filePath(path); }
    QString write(const QString &path, const QByteArray &text = "x") const
    {
        return writeFile(at(path), text);
    }
    QString entry(const QString &path, const QByteArray &name, const QByteArray &more = "Exec=true") const
    {
        return write(path, "[Desktop Entry]\nType=Application\nName=" + name + '\n' + more + '\n');
    }
    // Each call is noted in the file "calls".
    QString script(const QString &name, const QByteArray &body) const
    {
        return standIn(at(u"bin/"_s + name), "#!/bin/sh\nprintf '%s\\n' \"" + name.toUtf8() + " $*\" >> '" +
                                                 at(u"calls"_s).toUtf8() + "'\n" + body);
    }
    // GIMP is a package; its removal takes a plug-in with it.
    void installApt()
    {
        const QByteArray gimp = entry(u"system/applications/gimp.desktop"_s, "GIMP").toUtf8();
        programs.dpkgQuery =
            script(u"dpkg-query"_s, "if [ $1 = -S ]; then [ -f '" + gimp + "' ] && echo 'gimp: " + gimp +
                                        "'\nexit 1; fi\n"
                                        "printf 'gimp\\t2.10\\t4\\tno\\tno\\toptional\\n'\n");
        programs.aptGet =
            script(u"apt-get"_s,
                   "if [ $1 = -s ]; then echo 'Remv gimp [2.10]'; echo 'Remv gimp-plug [1]'; exit 0; fi\n"
                   "echo \"$DEBIAN_FRONTEND $LC_ALL\" >> '" +
                       at(u"calls"_s).toUtf8() + "'\nrm '" + gimp + "'\n");
        programs.pkexec = script(u"pkexec"_s, "shift; exec \"$@\"\n");
    }
    QStringList calls() const
    {
        return QString::fromUtf8(readFile(at(u"calls"_s))).split(u'\n', Qt::SkipEmptyParts);
    }
    LinuxApplicationCatalog catalog() { return {clock, places, programs}; }
    QList<InstalledApplication> applications()
    {
        return QCoro::waitFor(catalog().applications()).value_or(QList<InstalledApplication>());
    }
    InstalledApplication named(const QString &name)
    {
        const QList<InstalledApplication> all = applications();
        const auto found = std::ranges::find(all, name, &InstalledApplication::name);
        return found == all.end() ? InstalledApplication() : *found;
    }
    // Why it was not removed with all that has to go.
    QString removal(const InstalledApplication &application)
    {
        const auto agreed = QCoro::waitFor(catalog().packagesRemovedWith(application));
        return errorText(
            QCoro::waitFor(catalog().removeManaged(application, agreed.value_or(QStringList()), {})));
    }
};

QStringList names(QList<InstalledApplication> applications)
{
    applications.removeIf([](const InstalledApplication &each) { return !each.isListed; });
    QStringList found;
    std::ranges::transform(applications, std::back_inserter(found), &InstalledApplication::name);
    found.sort();
    return found;
}

} // namespace

class ApplicationCatalogTest : public QObject {
    Q_OBJECT

    template <typename Catalog> void listsAndRemoves(Catalog &&catalog)
    {
        const auto listed = QCoro::waitFor(catalog.applications());
        QVERIFY(listed);
        QCOMPARE(names(*listed), QStringList{u"GIMP"_s});
        const InstalledApplication gimp = listed->first();
        QCOMPARE(gimp.kind, Kind::managed);
        QCOMPARE(gimp.manager + u' ' + gimp.package, u"APT gimp"_s);
        const auto going = QCoro::waitFor(catalog.packagesRemovedWith(gimp));
        QVERIFY(going && going->first() == u"gimp");

        Cancellation cancelled;
        cancelled.cancel();
        QCOMPARE(errorText(QCoro::waitFor(catalog.removeManaged(gimp, *going, cancelled))), u"已取消"_s);
        QCOMPARE(QCoro::waitFor(catalog.applications())->size(), 1);
        QVERIFY(errorText(QCoro::waitFor(catalog.removeManaged(gimp, {u"other"_s}, {})))
                    .contains(u"确认时没有列出"_s));
        QCOMPARE(QCoro::waitFor(catalog.applications())->size(), 1);
        QVERIFY(QCoro::waitFor(catalog.removeManaged(gimp, *going, {})));
        QCOMPARE(QCoro::waitFor(catalog.applications())->size(), 0);
        QVERIFY(!QCoro::waitFor(catalog.removeManaged(gimp, *going, {})));
    }

private Q_SLOTS:
    void theFakeListsAndRemoves()
    {
        VirtualClock clock;
        FakeApplicationCatalog fake(clock);
        InstalledApplication gimp;
        gimp.name = u"GIMP"_s;
        gimp.kind = Kind::managed;
        gimp.manager = u"APT"_s;
        gimp.package = u"gimp"_s;
        fake.installed = QList{gimp};
        listsAndRemoves(fake);
    }

    void theHostListsAndRemoves()
    {
        HostRig rig;
        rig.installApt();
        listsAndRemoves(rig.catalog());
        const QStringList calls = rig.calls();
        const qsizetype removal =
            calls.indexOf(u"pkexec --disable-internal-agent /usr/bin/env DEBIAN_FRONTEND=noninteractive "_s +
                          rig.programs.aptGet + u" -y remove gimp"_s);
        QVERIFY2(removal > 0, qPrintable(calls.join(u'\n')));
        QCOMPARE(calls.value(removal - 1), u"dpkg-query -S -- "_s + rig.places.executable);
        QCOMPARE(calls.mid(removal + 1, 2),
                 (QStringList{u"apt-get -y remove gimp"_s, u"noninteractive C.UTF-8"_s}));
        QCOMPARE(calls.filter(u"pkexec"_s).size(), 2);
    }

    void packagesGiveVersionAndSize()
    {
        HostRig rig;
        rig.installApt();
        rig.entry(u"system/applications/kde/edit.desktop"_s, "Unowned");
        const InstalledApplication gimp = rig.named(u"GIMP"_s);
        QCOMPARE(gimp.identifier + u' ' + gimp.version, u"gimp 2.10"_s);
        QCOMPARE(gimp.size, 4096);
        QCOMPARE(rig.calls().filter(u"-S -- "_s).size(), 1);
        const InstalledApplication unowned = rig.named(u"Unowned"_s);
        QVERIFY(unowned.identifier == u"kde-edit" && unowned.kind == Kind::desktopEntry);
    }

    void usersEntriesHideTheSystems()
    {
        HostRig rig;
        rig.installApt();
        rig.entry(rig.own + u"gimp.desktop"_s, "Mine", "Hidden=true");
        rig.entry(u"system/applications/local.desktop"_s, "Behind");
        rig.entry(u"local/applications/local.desktop"_s, "Before");
        QCOMPARE(names(rig.applications()), QStringList{u"Before"_s});
        QVERIFY(!rig.named(u"GIMP"_s).isListed && !rig.named(u"Behind"_s).isListed);
        QVERIFY(rig.named(u"Mine"_s).name.isEmpty());
    }

    // Else the package would stay, without its settings.
    void aCopyOfTheSystemsEntryIsNoOtherApplication()
    {
        HostRig rig;
        rig.installApt();
        const QString copy = rig.entry(rig.own + u"gimp.desktop"_s, "My GIMP", "Exec=env A=b true");
        QCOMPARE(names(rig.applications()), QStringList{u"GIMP"_s});
        const InstalledApplication gimp = rig.named(u"GIMP"_s);
        QVERIFY(gimp.kind == Kind::managed && gimp.programs.value(0).endsWith(u"/true"_s));
        QCOMPARE(gimp.companions, (QList<ApplicationCompanion>{{copy, true}}));
        // One that starts the user's own program is another, with the same settings.
        rig.entry(rig.own + u"gimp.desktop"_s, "My GIMP",
                  "Exec=" + rig.write(u"home/apps/G.AppImage"_s).toUtf8());
        QCOMPARE(names(rig.applications()), (QStringList{u"GIMP"_s, u"My GIMP"_s}));
        QCOMPARE(rig.named(u"My GIMP"_s).identifier, rig.named(u"GIMP"_s).identifier);
    }

    // Nobody can tell whose they are.
    void withoutAnAnswerTheSystemsEntriesAreLeftOut()
    {
        HostRig rig;
        rig.installApt();
        rig.entry(rig.own + u"own.desktop"_s, "Own");
        rig.programs.dpkgQuery = rig.script(u"dpkg-query"_s, "kill -9 $$\n");
        QCOMPARE(names(rig.applications()), QStringList{u"Own"_s});
        rig.programs.dpkgQuery = rig.at(u"nowhere"_s);
        QCOMPARE(names(rig.applications()), QStringList{u"Own"_s});
    }

    void launchersKnowTheirProgram()
    {
        HostRig rig;
        const QString tool = rig.write(u"home/bin/tool"_s);
        const QString image = rig.write(u"home/apps/X.AppImage"_s);
        const QString path =
            rig.entry(rig.own + u"org.tool.Tool.desktop"_s, "Tool", "Exec=env A=b " + tool.toUtf8());
        rig.entry(rig.own + u"x.desktop"_s, "X", "Exec=\"" + image.toUtf8() + "\" %U\nX-AppImage-Version=3");
        QFile::link(u"/bin/sh"_s, rig.at(u"home/bin/link"_s));
        rig.entry(rig.own + u"link.desktop"_s, "Link", "Exec=" + rig.at(u"home/bin/link"_s).toUtf8());
        rig.entry(rig.own + u"out.desktop"_s, "Out", "Exec=" + rig.at(u"home/../bin/sh"_s).toUtf8());
        rig.write(u"outside/tool"_s, "x");
        QFile::link(rig.at(u"outside"_s), rig.at(u"home/away"_s));
        rig.entry(rig.own + u"away.desktop"_s, "Away", "Exec=" + rig.at(u"home/away/tool"_s).toUtf8());

        const InstalledApplication found = rig.named(u"Tool"_s);
        QCOMPARE(found.path, path);
        QCOMPARE(found.identifier, u"org.tool.Tool"_s);
        QCOMPARE(found.companions, (QList<ApplicationCompanion>{{tool, false}}));
        QCOMPARE(rig.named(u"X"_s).companions, (QList<ApplicationCompanion>{{image, true}}));
        QCOMPARE(rig.named(u"X"_s).version, u"3"_s);
        rig.entry(rig.own + u"y.desktop"_s, "Y", "Exec=" + image.toUtf8() + "\nNoDisplay=true");
        QCOMPARE(rig.named(u"X"_s).companions, (QList<ApplicationCompanion>{{image, false}}));
        const QString jar = rig.write(u"home/j.jar"_s);
        rig.entry(rig.own + u"j.desktop"_s, "Jar", "Exec=java -jar " + jar.toUtf8());
        QCOMPARE(rig.named(u"Jar"_s).companions, (QList<ApplicationCompanion>{{jar, false}}));
        QVERIFY(rig.named(u"Link"_s).companions.isEmpty() && rig.named(u"Out"_s).companions.isEmpty() &&
                rig.named(u"Away"_s).companions.isEmpty());
    }

    void appImagesKnowTheirLauncher()
    {
        HostRig rig;
        const QString image = rig.write(u"home/Applications/Krita-5.2-x86_64.appimage"_s, "");
        const QString marked =
            rig.write(u"home/Downloads/marked"_s,
                      QByteArray::fromHex("7f454c46020101004149 02") + QByteArray(70000, 'x'));
        rig.write(u"home/Downloads/other"_s, QByteArray(80000, 'x'));
        QDir().mkpath(rig.at(u"home/Downloads/folder.AppImage"_s));
        const QString icon = rig.write(u"home/icons/krita.png"_s, "png");
        const QString launcher =
            rig.entry(rig.own + u"org.kde.krita.desktop"_s, "Krita Paint",
                      "Exec=" + image.toUtf8() + "\nIcon=" + icon.toUtf8() + "\nX-AppImage-Version=5.2.9");
        QCOMPARE(names(rig.applications()), (QStringList{u"Krita Paint"_s, u"marked"_s}));
        const InstalledApplication krita = rig.named(u"Krita Paint"_s);
        QCOMPARE(krita.path, image);
        QCOMPARE(krita.kind, Kind::appImage);
        QCOMPARE(krita.identifier + u' ' + krita.version, u"org.kde.krita 5.2.9"_s);
        QCOMPARE(krita.companions, (QList<ApplicationCompanion>{{launcher, true}, {icon, false}}));
        QCOMPARE(rig.named(u"marked"_s).path, marked);
        QVERIFY(rig.named(u"marked"_s).identifier.isEmpty() && !rig.named(u"marked"_s).size);
    }

    void flatpaksAndSnapsGoThroughTheirManager()
    {
        HostRig rig;
        rig.installApt();
        rig.programs.flatpak = rig.script(
            u"flatpak"_s,
            "[ $1 = list ] && printf 'org.a.A\\tA\\t1\\t1.0 MB\\tuser\\norg.b.B\\tB\\t2\\t?\\tsystem\\n'\n"
            "[ \"$4\" != org.b.B ] || { echo 'no password' >&2; exit 1; }\n");
        rig.programs.snap =
            rig.script(u"snap"_s, "[ $1 = list ] && printf 'Name Version\\nfoo 7\\ncore20 1\\n'\nexit 0\n");
        rig.entry(u"system/applications/org.b.B.desktop"_s, "Bee",
                  "Exec=flatpak run org.b.B\nX-Flatpak=org.b.B");
        rig.entry(u"system/applications/org.gone.C.desktop"_s, "Gone", "Exec=true\nX-Flatpak=org.gone.C");
        rig.entry(u"system/applications/foo_foo.desktop"_s, "Foo", "Exec=foo\nX-SnapInstanceName=foo");
        QCOMPARE(names(rig.applications()), (QStringList{u"A"_s, u"Bee"_s, u"Foo"_s, u"GIMP"_s}));
        const InstalledApplication a = rig.named(u"A"_s);
        QCOMPARE(a.path, rig.at(u"home/.local/share/flatpak/app/org.a.A"_s));
        QCOMPARE(a.size, 1000000);
        const InstalledApplication bee = rig.named(u"Bee"_s);
        QCOMPARE(bee.identifier + u' ' + bee.version, u"org.b.B 2"_s);
        const InstalledApplication foo = rig.named(u"Foo"_s);
        QCOMPARE(foo.identifier + u' ' + foo.version, u"foo 7"_s);

        QCOMPARE(rig.removal(a), QString());
        QCOMPARE(rig.removal(foo), QString());
        QCOMPARE(rig.removal(bee), u"Flatpak 没有移除 org.b.B：no password"_s);
        QVERIFY(rig.calls().contains(u"flatpak uninstall -y --user org.a.A"_s));
        QVERIFY(rig.calls().contains(u"flatpak uninstall -y --system org.b.B"_s));
        QVERIFY(rig.calls().contains(u"snap remove foo"_s));
        QVERIFY(rig.calls().contains(u"pkexec --disable-internal-agent "_s + rig.programs.snap +
                                     u" remove foo"_s));
    }

    // Snapd deletes them with the snap, whatever was agreed to.
    void aSnapsDataGoesByTheReviewAlone()
    {
        const auto restored = qScopeGuard([home = qgetenv("HOME")] { qputenv("HOME", home); });
        for (const auto &[mode, status, isKept] :
             {std::tuple{UninstallMode::full, 0, false}, std::tuple{UninstallMode::appOnly, 0, true},
              std::tuple{UninstallMode::full, 126, true}}) {
            HostRig host;
            UninstallRig rig;
            const QString data = host.write(u"home/snap/paint/common/letter"_s, "dear");
            host.entry(u"system/applications/paint_paint.desktop"_s, "Paint",
                       "Exec=x\nX-SnapInstanceName=paint");
            host.programs.pkexec = host.script(u"pkexec"_s, "shift; [ " + QByteArray::number(status) +
                                                                " = 0 ] || exit 126; exec \"$@\"\n");
            host.programs.snap =
                host.script(u"snap"_s, "[ $1 = list ] && printf 'Name Version\npaint 7\n'\n"
                                       "[ $1 = remove ] && rm -r '" +
                                           host.at(u"home/snap/"_s).toUtf8() + "'$2\nexit 0\n");
            LinuxApplicationCatalog catalog = host.catalog();
            rig.scanner = std::make_shared<AppScanner>(
                AppScanner::Ports{catalog, rig.host.diskUsage, rig.host.trash, rig.host.programs},
                rig.settings, rig.clock, rig.journal());
            rig.keepMessages();
            rig.scanner->scan();
            QVERIFY(rig.until([&] { return !rig.scanner->isScanning(); }));
            const UninstallReview review = rig.reviewOf(u"Paint"_s, mode);
            QVERIFY(review.items.last().why.startsWith(u"Snap 会删除它"_s));
            rig.uninstall(review);
            QCOMPARE(rig.scanner->progressStage().kind == UninstallStage::Kind::failed, status != 0);
            QCOMPARE(readFile(data), isKept ? "dear" : "");
            if (!rig.scanner->records().isEmpty())
                rig.scanner->putBack(rig.scanner->records().first().id);
            QVERIFY(isKept || rig.until([&] { return readFile(data) == "dear"; }));
        }
    }

    void refusesWhatTheSystemNeeds()
    {
        const std::initializer_list<std::pair<QByteArray, QString>> simulations{
            {"Remv gimp [1]\\nRemv bash [5]\\n", u"不能移除 gimp：系统或桌面离不开软件包 bash"_s},
            {"Remv gimp [1]\\nRemv xserver-xorg-core:amd64 [2]\\n",
             u"不能移除 gimp：系统或桌面离不开软件包 xserver-xorg-core:amd64"_s},
            {"Remv gimp [1]\\nRemv velbrix [2]\\n", u"不能移除 gimp：Velbrix 自身会一起被移除"_s},
            {"E: Unable to locate package gimp\\n",
             u"APT 不能移除软件包 gimp：E: Unable to locate package gimp"_s}};
        HostRig rig;
        rig.installApt();
        const InstalledApplication gimp = rig.named(u"GIMP"_s);
        rig.programs.dpkgQuery = rig.script(
            u"dpkg-query"_s, "if [ $1 = -S ]; then echo 'velbrix: " + rig.places.executable.toUtf8() +
                                 "'; exit; fi\nshift 3\nfor p; do case $p in bash) e=yes;; *) e=no;; esac\n"
                                 "printf '%s\\t1\\t1\\t%s\\t\\toptional\\n' $p $e; done\n");
        for (const auto &[simulated, message] : simulations) {
            rig.programs.aptGet = rig.script(u"apt-get"_s, "printf '" + simulated + "'\n");
            QCOMPARE(errorText(QCoro::waitFor(rig.catalog().packagesRemovedWith(gimp))), message);
            QCOMPARE(rig.removal(gimp), message);
        }
        QVERIFY(rig.calls().filter(u"pkexec"_s).isEmpty());
    }

    void saysWhyARemovalDidNotHappen()
    {
        HostRig rig;
        rig.installApt();
        const InstalledApplication gimp = rig.named(u"GIMP"_s);

        rig.programs.pkexec = rig.script(u"pkexec"_s, "exit 126\n");
        QCOMPARE(rig.removal(gimp), u"没有输入密码，gimp 未被移除"_s);
        rig.programs.pkexec = rig.script(u"pkexec"_s, "echo 'No agent' >&2; exit 127\n");
        QCOMPARE(rig.removal(gimp), u"没有取得管理员权限，gimp 未被移除：No agent"_s);
        rig.programs.pkexec = rig.script(u"pkexec"_s, "printf 'Reading\\nE: Locked\\n'; exit 100\n");
        QCOMPARE(rig.removal(gimp), u"APT 没有移除 gimp：E: Locked"_s);
        rig.programs.pkexec.clear();
        QCOMPARE(rig.removal(gimp), u"没有找到 pkexec，无法取得移除软件包所需的管理员权限"_s);
        InstalledApplication other = gimp;
        other.package = u"--purge"_s;
        QCOMPARE(rig.removal(other), u"「GIMP」不是由软件包管理器安装的"_s);
        other = gimp;
        other.kind = Kind::desktopEntry;
        QCOMPARE(rig.removal(other), u"「GIMP」不是由软件包管理器安装的"_s);
    }

    void hostileEntriesCostOnlyThemselves()
    {
        HostRig rig;
        rig.entry(rig.own + u"good.desktop"_s, "Good");
        rig.entry(rig.own + u"new\nline.desktop"_s, "Line");
        rig.entry(rig.own + u"huge.desktop"_s, QByteArray(2 << 20, 'x'));
        rig.write(rig.own + u"binary.desktop"_s, QByteArray(4096, '\0'));
        rig.write(rig.own + u"empty.desktop"_s, {});
        QFile::link(u"/dev/zero"_s, rig.at(rig.own + u"zero.desktop"_s));
        QFile::link(u"."_s, rig.at(rig.own + u"loop"_s));
        QDir().mkpath(rig.at(rig.own + u"folder.desktop"_s));
        const QByteArray odd = QFile::encodeName(rig.at(rig.own)) + "odd\xff.desktop";
        tree::link(QFile::encodeName(rig.at(rig.own + u"good.desktop"_s)), odd);
        const QStringList found = names(rig.applications());
        ::unlink(odd.constData()); // the temporary folder could not
        QCOMPARE(found, (QStringList{u"Good"_s, u"Line"_s}));
    }

    void placesFollowTheEnvironment()
    {
        QTemporaryDir folder;
        qputenv("XDG_DATA_HOME", "/data/");
        qputenv("XDG_CONFIG_HOME", "relative");
        qputenv("XDG_CACHE_HOME", "/cache");
        qputenv("XDG_STATE_HOME", "/state");
        SystemClock clock;
        const LinuxApplicationCatalog catalog(clock, ApplicationPlaces::ofThisUser(), {});
        const QString home = QDir::homePath();
        QCOMPARE(catalog.libraryFolders(),
                 (QList<LibraryFolder>{{LibraryKind::preferences, home + u"/.config"_s},
                                       {LibraryKind::appSupport, u"/data"_s},
                                       {LibraryKind::caches, u"/cache"_s},
                                       {LibraryKind::containers, home + u"/.var/app"_s},
                                       {LibraryKind::containers, home + u"/snap"_s},
                                       {LibraryKind::savedState, u"/state"_s}}));
        const QString program = QCoreApplication::applicationFilePath();
        QCOMPARE(catalog.ownIdentity(), (OwnIdentity{program, u"Velbrix"_s, u"velbrix"_s}));

        const QString image = writeFile(folder.filePath(u"Velbrix.AppImage"_s));
        qputenv("APPIMAGE", image.toUtf8());
        qputenv("APPDIR", "/somewhere/else");
        QCOMPARE(ApplicationPlaces::ofThisUser().executable, program);
        qputenv("APPDIR", QCoreApplication::applicationDirPath().toUtf8());
        QCOMPARE(ApplicationPlaces::ofThisUser().executable, image);
        // Else everything in home would be an application's data.
        qputenv("XDG_CACHE_HOME", QFile::encodeName(home));
        qputenv("XDG_DATA_HOME", "/");
        QCOMPARE(ApplicationPlaces::ofThisUser().cacheHome, home + u"/.cache"_s);
        QCOMPARE(ApplicationPlaces::ofThisUser().dataHome, home + u"/.local/share"_s);
        for (const char *variable :
             {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "APPIMAGE", "APPDIR"})
            qunsetenv(variable);
    }

    // Only asks.
    void theRealDpkgKnowsWhatItOwns()
    {
        HostRig rig;
        const PackagePrograms real = PackagePrograms::ofThisHost();
        const QDir system(u"/usr/share/applications"_s);
        if (real.dpkgQuery.isEmpty() || system.entryList({u"*.desktop"_s}).isEmpty())
            QSKIP("no dpkg or no desktop entries");
        rig.programs.dpkgQuery = real.dpkgQuery;
        rig.programs.aptGet = rig.script(u"apt-get"_s, "exit 1\n");
        rig.places.dataFolders = {u"/usr/share"_s};
        const QList<InstalledApplication> all = rig.applications();
        QVERIFY(!all.isEmpty());
        for (const InstalledApplication &application : all) {
            if (!application.isListed)
                continue;
            QCOMPARE(application.kind, Kind::managed);
            QVERIFY(!application.version.isEmpty() && application.size > 0);
        }
    }
};

QTEST_MAIN(ApplicationCatalogTest)
#include "ApplicationCatalogTest.moc"
