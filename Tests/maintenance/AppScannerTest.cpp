#include "maintenance/uninstall/UninstallJournal.h"
#include "support/CapturedLog.h"
#include "support/FileTree.h"
#include "support/UninstallRig.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>
#include <unistd.h>

namespace {

// "Note" with certain data, doubtful data and traps around it.
struct NoteRig : UninstallRig {
    NoteRig()
    {
        install(u"Note"_s, u"org.acme.note"_s);
        install(u"Daemon"_s, u"org.acme.note.daemon"_s);
        lastInstalled().isListed = false;
        install(u"Other"_s, u"org.acme.note.pro"_s);
        writeFiles(home(), {u"Preferences/org.acme.note.plist"_s, u"Preferences/org.acme.note/deep/file"_s,
                            u"Preferences/org.acme.note.pro.plist"_s, u"Preferences/com.note.x"_s,
                            u"Preferences/org.acme.note.daemon.plist"_s, u"Preferences/Evernote"_s,
                            u"Preferences/stranger"_s, u"Preferences/velbrix-note"_s,
                            u"Caches/org.acme.note"_s, u"outside/org.acme.note"_s});
        QFile::link(home(u"outside"_s), home(u"Caches/org.acme.note.link"_s));
        scanned();
        review = reviewOf(u"Note"_s);
    }

    UninstallReview review;
};

} // namespace

class AppScannerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsAllButItselfAndFiltersInTheUsersLanguage()
    {
        UninstallRig rig;
        for (const QString &name : {u"zoom"_s, u"Xcode"_s, u"Velbrix"_s, u"alpha"_s, u"Tool"_s})
            rig.install(name, u"org."_s + name);
        rig.lastInstalled().identifier = u"VELBRIX"_s;
        rig.install(u"Big"_s);
        rig.lastInstalled().size = 1 << 20;
        rig.lastInstalled().version = u"1.2"_s;
        rig.host.diskUsage.sizes.insert(rig.home(u"Applications/zoom.app"_s).toUtf8(), 4096);
        AppScanner &scanner = rig.scanned();
        QStringList lines;
        for (const AppInfo &app : scanner.apps())
            lines << u"%1 %2 %3"_s.arg(app.name, app.version).arg(app.size);
        QCOMPARE(lines,
                 (QStringList{u"alpha — 0"_s, u"Big 1.2 1048576"_s, u"Xcode — 0"_s, u"zoom — 4096"_s}));
        QCOMPARE(rig.host.diskUsage.calls.value(0).size(), 3);
        scanner.setSearchText(u"BIG"_s);
        QCOMPARE(scanner.filteredApps(), QList{rig.app(u"Big"_s)});
        QLocale::setDefault(QLocale(QLocale::Turkish));
        QVERIFY(scanner.filteredApps().isEmpty()); // that would be "bıg"
        QLocale::setDefault(QLocale::c());
        const quint64 id = rig.app(u"zoom"_s).id;
        scanner.scanOnce();
        QVERIFY(!scanner.isScanning());
        scanner.scan();
        QVERIFY(rig.until([&] { return !scanner.isScanning(); }));
        QVERIFY(rig.app(u"zoom"_s).id != id);

        rig.host.applications.installed = failure(u"坏了"_s);
        scanner.scan();
        QVERIFY(rig.until([&] { return !scanner.isScanning(); }));
        QCOMPARE(scanner.scanProblem(), u"坏了"_s);
        QVERIFY(scanner.apps().isEmpty());
    }

    void remembersModeAndOptions()
    {
        NoteRig rig;
        CleanupOptions options;
        options.caches = false;
        rig.scanner->setUninstallMode(UninstallMode::custom);
        rig.scanner->setCleanupOptions(options);
        rig.clock.advance(10s);
        const QJsonObject &stored = rig.host.settings.stored;
        QCOMPARE(stored[u"Velbrix_UninstallMode"_s], u"自定义"_s);
        QCOMPARE(stored[u"Velbrix_CleanupOptions"_s][u"caches"_s], false);
        QCOMPARE(rig.make().uninstallMode(), UninstallMode::custom);
        QCOMPARE(rig.scanner->cleanupOptions(), options);

        rig.settings.set(u"Velbrix_UninstallMode"_s, u"某种"_s);
        rig.settings.set(u"Velbrix_CleanupOptions"_s, QJsonObject{{u"caches"_s, false}});
        QCOMPARE(rig.make().uninstallMode(), UninstallMode::full);
        QCOMPARE(rig.scanner->cleanupOptions(), CleanupOptions());
        rig.settings.set(u"Velbrix_CleanupOptions"_s, 3);
        QCOMPARE(rig.make().cleanupOptions(), CleanupOptions());
    }

    void theReviewSaysWhatWouldGo()
    {
        NoteRig rig;
        rig.host.programs.executables = {rig.home(u"Applications/Note.app/bin/note"_s)};
        rig.host.diskUsage.sizes.insert(rig.home(u"Preferences/org.acme.note"_s).toUtf8(), 8192);
        rig.plant(u"Caches/org.acme.note.ide/system/LocalHistory/changes"_s); // no cache
        QVERIFY(rig.app(u"Daemon"_s).name.isEmpty());
        rig.scanner->prepareReview(rig.app(u"Note"_s));
        OpenReview &open = rig.scanner->openReview();
        QVERIFY(rig.until([&] { return open.review() && open.review()->items.last().bytes; }));
        QVERIFY(!open.isPreparing());
        const UninstallReview review = *open.review();
        QVERIFY(review.isRunning);
        QStringList lines;
        for (const ReviewItem &item : review.items)
            lines << (item.isTicked ? u"+ "_s : u"- "_s) + item.path.sliced(rig.home().size() + 1);
        QCOMPARE(lines, (QStringList{u"+ Applications/Note.app"_s, u"- Preferences/Evernote"_s,
                                     u"- Preferences/com.note.x"_s, u"+ Preferences/org.acme.note"_s,
                                     u"- Preferences/org.acme.note.daemon.plist"_s,
                                     u"+ Preferences/org.acme.note.plist"_s,
                                     u"- Preferences/org.acme.note.pro.plist"_s, u"+ Caches/org.acme.note"_s,
                                     u"- Caches/org.acme.note.ide"_s, u"- Caches/org.acme.note.link"_s}));
        QCOMPARE(review.items.at(3).bytes, 8192);
        for (const ReviewItem &item : review.items)
            QCOMPARE(item.caution.isEmpty(), item.isTicked);

        open.setTicked(review.items.at(0).path, false); // the application stays ticked
        open.setTicked(review.items.at(1).path, true);
        QVERIFY(open.review()->items.at(0).isTicked && open.review()->items.at(1).isTicked);
        rig.host.programs.executables.clear();
        QVERIFY(rig.until([&] { return !open.review()->isRunning; }));
        open.close();
        QVERIFY(!open.review());
        QVERIFY(rig.host.trash.calls.isEmpty());
    }

    void sizesThatComeTooLateAreDropped()
    {
        NoteRig rig;
        rig.host.diskUsage.delay = 1s;
        OpenReview &open = rig.scanner->openReview();
        rig.scanner->prepareReview(rig.app(u"Note"_s));
        QVERIFY(rig.until([&] { return open.review().has_value(); }));
        open.close();
        rig.scanner->prepareReview(rig.app(u"Other"_s));
        QVERIFY(rig.until([&] { return open.review().has_value(); }));
        rig.clock.advance(60s);
        QCOMPARE(open.review()->app.name, u"Other"_s);
        QVERIFY(open.review()->items.last().bytes);
    }

    void takesWhatIsTickedInTime()
    {
        NoteRig rig;
        rig.plant(u"Preferences/x.org.acme.note"_s);
        const UninstallReview review = rig.reviewOf(u"Note"_s);
        const auto start = rig.clock.uptime();
        QStringList trace;
        const auto tell = [&](const QString &what) {
            trace << u"%1 %2"_s.arg((rig.clock.uptime() - start).count()).arg(what);
        };
        connect(rig.scanner.get(), &AppScanner::isUninstallingChanged, this,
                [&] { tell(rig.scanner->isUninstalling() ? u"begin"_s : u"end"_s); });
        connect(rig.scanner.get(), &AppScanner::progressStageChanged, this,
                [&] { tell(rig.scanner->progressStage().label()); });
        connect(rig.scanner.get(), &AppScanner::progressValueChanged, this,
                [&] { tell(QString::number(rig.scanner->progressValue(), 'f', 3)); });
        rig.scanner->uninstall(review);
        QCOMPARE(rig.scanner->uninstallingName(), u"Note"_s);
        rig.scanner->uninstall(review); // one at a time
        QCOMPARE(rig.ending(), u"已卸载「Note」"_s);
        QCOMPARE(trace.join(u", "_s),
                 u"0 begin, 0 0.050, 300 移入废纸篓…, 300 0.150, "
                 "500 扫描 偏好设置…, 500 0.250, 650 清理 偏好设置…, 650 0.600, 650 0.817, 700 0.900, "
                 "750 扫描 缓存…, 750 0.250, 900 清理 缓存…, 900 0.600, 900 0.900, 900 收尾中…, 900 0.950, "
                 "1300 卸载完成 ✅, 1300 1.000, 2800 准备卸载…, 2800 0.000, 2800 end"_s);
        QCOMPARE(rig.trashed(), (QStringList{u"Applications/Note.app"_s, u"Preferences/org.acme.note"_s,
                                             u"Preferences/org.acme.note.plist"_s,
                                             u"Preferences/x.org.acme.note"_s, u"Caches/org.acme.note"_s}));
        for (const QString &trap : {u"Preferences/org.acme.note.pro.plist"_s, u"Preferences/stranger"_s,
                                    u"Preferences/velbrix-note"_s, u"outside/org.acme.note"_s})
            QVERIFY(QFile::exists(rig.home(trap)));
        QVERIFY(rig.scanner->uninstallingName().isEmpty());
        QVERIFY(rig.scanner->failures().isEmpty());
    }

    void theModeSettlesWhereItLooks()
    {
        const QString app = u"Applications/Note.app"_s;
        const std::tuple<UninstallMode, bool, QStringList> rows[] = {
            {UninstallMode::appOnly, true, {app}},
            {UninstallMode::custom, false, {app}},
            {UninstallMode::custom, true, {app, u"Caches/org.acme.note"_s}}};
        for (const auto &[mode, caches, expected] : rows) {
            NoteRig rig;
            rig.scanner->setCleanupOptions({false, false, caches, false, false, false, false});
            int searched = 0;
            connect(rig.scanner.get(), &AppScanner::progressStageChanged, this, [&] {
                searched += rig.scanner->progressStage().kind == UninstallStage::Kind::scanningLibrary;
            });
            rig.uninstall(rig.reviewOf(u"Note"_s, mode));
            QCOMPARE(rig.trashed(), expected);
            QCOMPARE(searched, expected.size() - 1);
        }
    }

    void neverTakesItselfOrAProtectedPlace()
    {
        NoteRig rig;
        UninstallReview review = rig.review;
        review.app.path = review.app.source.path = rig.plant(u"Applications/VelBrix.APP/"_s);
        CapturedLog log;
        QCOMPARE(rig.uninstall(review), u"失败：不能卸载 Velbrix 自身"_s);
        QCOMPARE(log.take(u"Uninstall"_s), QStringList{u"blocked self uninstall: "_s + review.app.path});
        QCOMPARE(rig.scanner->progressValue(), 1.0);
        QVERIFY(!QFile::exists(rig.journal()));

        review = rig.review;
        review.app.path = rig.home(u"Applications/Gone.app"_s);
        QCOMPARE(rig.uninstall(review), u"失败：找不到应用"_s);
        rig.plant(u"own/file"_s);
        for (const QString &place : {rig.home(), rig.home(u"Preferences"_s), rig.home(u"own"_s), u"/"_s,
                                     u"/usr"_s, rig.home(u"Applications/../Caches/"_s)}) {
            review.app.path = place;
            QVERIFY2(rig.uninstall(review).startsWith(u"失败：受保护的位置"_s), qPrintable(place));
        }
        QVERIFY(rig.host.trash.calls.isEmpty());
    }

    void whatRunsStays()
    {
        NoteRig rig;
        const QStringList running{rig.review.app.path + u"/bin/note"_s};
        rig.host.programs.executables = running;
        QCOMPARE(rig.uninstall(rig.review), u"失败：应用正在运行，请先退出"_s);
        rig.host.programs.executables.clear();
        connect(rig.scanner.get(), &AppScanner::isUninstallingChanged, this,
                [&] { rig.host.programs.executables = running; }); // at the last moment
        QCOMPARE(rig.uninstall(rig.review), u"失败：应用正在运行，请先退出"_s);
        QVERIFY(rig.host.trash.calls.isEmpty());
    }

    void whatCannotGoIsTold()
    {
        NoteRig rig;
        const QString app = rig.review.app.path;
        rig.host.trash.refused = {{app, u"没有权限"_s}};
        QCOMPARE(rig.uninstall(rig.review), u"失败：没有权限"_s);
        QCOMPARE(rig.trashed().size(), 1); // its data stays when the application does
        QVERIFY(!rig.scanner->isUninstalling());
        QVERIFY(rig.scanner->records().isEmpty());
        QCOMPARE(rig.scanner->failures(), (QList<FailedItem>{{app, u"没有权限"_s}}));

        const QString stuck = rig.home(u"Preferences/org.acme.note.plist"_s);
        rig.host.trash.refused = {{stuck, u"没有权限"_s}};
        QFile::remove(rig.home(u"Caches/org.acme.note"_s)); // vanished: done
        QCOMPARE(rig.uninstall(rig.review), u"已卸载「Note」，1 项未能移动"_s);
        QCOMPARE(rig.scanner->failures(), (QList<FailedItem>{{stuck, u"没有权限"_s}}));
        QCOMPARE(rig.scanner->records().first().failed, rig.scanner->failures());
    }

    void onlyWhatASearchWouldFindGoes()
    {
        NoteRig rig;
        UninstallReview review = rig.review;
        const QStringList forged = u"|Preferences|Preferences/stranger|Preferences/velbrix-note|"
                                   "Preferences/org.acme.note/deep|"
                                   "Preferences/../outside/org.acme.note|outside/org.acme.note"_s.split(u'|');
        const ReviewItem certain = review.items.at(3);
        for (const QString &path : forged) {
            review.items.append(certain);
            review.items.last().path = rig.home(path);
        }
        review.items.last().reason = MatchReason::companion;
        rig.host.trash.refused.insert(rig.home(u"Preferences/org.acme.note"_s), u"没有权限"_s);
        rig.uninstall(review);
        for (const QString &path : forged)
            QVERIFY2(!rig.trashed().contains(path) && QFile::exists(rig.home(path)), qPrintable(path));
        QCOMPARE(rig.scanner->failures().size(), forged.size() + 1);
        QCOMPARE(rig.scanner->failures().last().reason, u"不属于此应用的数据，已拒绝移动"_s);
    }

    void companionsGoAlong()
    {
        UninstallRig rig;
        rig.install(u"Note"_s, u"org.acme.note"_s);
        const QString launcher = rig.plant(u"share/note.desktop"_s);
        const QString tool = rig.plant(u"bin/note"_s);
        rig.lastInstalled().companions = {{launcher, true}, {tool, false}, {rig.home(), true}};
        rig.scanned();
        const UninstallReview review = rig.reviewOf(u"Note"_s, UninstallMode::appOnly);
        QCOMPARE(review.items.size(), 3);
        rig.uninstall(review);
        QCOMPARE(rig.trashed(), (QStringList{u"Applications/Note.app"_s, u"share/note.desktop"_s}));
        QVERIFY(QFile::exists(tool));
    }

    void packagesGoThroughTheirManager()
    {
        NoteRig rig;
        rig.install(u"Gimp"_s, u"org.gimp.GIMP"_s);
        rig.lastInstalled().kind = InstalledApplication::Kind::managed;
        rig.lastInstalled().manager = u"APT"_s;
        rig.lastInstalled().package = u"gimp"_s;
        rig.plant(u"Caches/org.gimp.GIMP"_s);
        rig.scanned();
        rig.host.applications.removedWith = QStringList{u"gimp"_s, u"gimp-data"_s};
        const UninstallReview review = rig.reviewOf(u"Gimp"_s);
        QCOMPARE(review.packages, (QStringList{u"gimp"_s, u"gimp-data"_s}));
        QCOMPARE(review.items.first().why, u"应用本体，由 APT 移除（gimp）"_s);
        rig.host.applications.failure = u"密码不对"_s;
        QCOMPARE(rig.uninstall(review), u"失败：密码不对"_s);
        QVERIFY(rig.host.trash.calls.isEmpty());
        rig.host.applications.failure.reset();
        QCOMPARE(rig.uninstall(review), u"已卸载「Gimp」"_s);
        QCOMPARE(rig.trashed(), QStringList{u"Caches/org.gimp.GIMP"_s});
        QVERIFY(QFile::exists(review.app.path));
        const UninstallRecord record = rig.scanner->records().first();
        QCOMPARE(record.removedPackage, u"gimp"_s);
        rig.scanner->putBack(record.id);
        QCOMPARE(rig.ending(), u"已将「Gimp」的 1 项放回原处，软件包 gimp 不能放回，请重新安装"_s);
        QVERIFY(rig.scanner->records().isEmpty());
    }

    void stopsBetweenTwoItems()
    {
        NoteRig rig;
        rig.scanner->uninstall(rig.review);
        rig.scanner->cancelUninstall();
        QCOMPARE(rig.ending(), u"失败：已取消"_s);
        QVERIFY(rig.host.trash.calls.isEmpty());
        rig.scanner->uninstall(rig.review);
        QVERIFY(rig.until([&] { return rig.host.trash.calls.size() == 2; }));
        rig.scanner->putBack(rig.scanner->records().first().id);
        QVERIFY(!rig.scanner->isPuttingBack());
        rig.scanner->cancelUninstall();
        QCOMPARE(rig.ending(), u"失败：已取消，其余项目未移动"_s);
        QCOMPARE(rig.host.trash.calls.size(), 2);
        QCOMPARE(rig.scanner->records().first().moved.size(), 2);
    }

    void everythingGoesBack()
    {
        NoteRig rig;
        rig.uninstall(rig.review);
        rig.make(); // another day
        QVERIFY(rig.until([&] { return !rig.scanner->records().isEmpty(); }));
        const UninstallRecord record = rig.scanner->records().value(0);
        QCOMPARE(record.moved.size(), 4);
        rig.plant(u"Preferences/org.acme.note.plist"_s); // made anew
        rig.host.trash.calls.clear();
        rig.scanner->putBack(record.id);
        QCOMPARE(rig.ending(), u"已将「Note」的 3 项放回原处，1 项未能放回"_s);
        QCOMPARE(rig.host.trash.calls.first(), u"put back "_s + record.moved.last().original);
        QVERIFY(QFile::exists(rig.home(u"Preferences/org.acme.note/deep/file"_s)));
        QVERIFY(QFile::exists(rig.home(u"Applications/Note.app"_s)));
        QCOMPARE(rig.scanner->failures().first().path, rig.home(u"Preferences/org.acme.note.plist"_s));
        QCOMPARE(rig.scanner->records().first().moved.size(), 1);
        QFile::remove(rig.home(u"Preferences/org.acme.note.plist"_s));
        rig.scanner->putBack(record.id);
        rig.ending();
        QVERIFY(rig.scanner->records().isEmpty());
        QVERIFY(openedJournal(rig.journal()).records().isEmpty());
    }

    void onlyWhatItTookGoesBack()
    {
        NoteRig rig;
        rig.uninstall(rig.review);
        const QList<MovedItem> moved = rig.scanner->records().first().moved;
        writeFile(moved.at(1).trashed + u"/deep/later"_s); // the same, written to
        const QString other = moved.last().trashed;
        QVERIFY(QFile::remove(other));
        writeFile(other, "of the same name");
        rig.scanner->putBack(rig.scanner->records().first().id);
        QCOMPARE(rig.ending(), u"已将「Note」的 3 项放回原处，1 项未能放回"_s);
        QCOMPARE(rig.scanner->failures(),
                 (QList<FailedItem>{{moved.last().original, u"废纸篓里同名的项目不是当时移走的那一个"_s}}));
        QCOMPARE(readFile(other), "of the same name");
    }

    // What has gone is in the file at every moment, so that a kill loses nothing.
    void theRecordIsNeverBehind()
    {
        NoteRig rig;
        rig.scanner->uninstall(rig.review);
        int checks = 0;
        QVERIFY(rig.until([&] {
            for (const QString &path : rig.trashed()) {
                const QString original = rig.home(path);
                if (QFile::exists(original))
                    continue;
                ++checks;
                if (!readFile(rig.journal()).contains('"' + original.toUtf8() + '"'))
                    qFatal("lost");
            }
            return !rig.scanner->isBusy();
        }));
        QVERIFY(checks > 20);
    }

    void anUnwritableRecordIsTold()
    {
        NoteRig rig;
        const QString folder = rig.plant(u"own"_s); // a file where it should be
        QVERIFY(rig.uninstall(rig.review).startsWith(u"失败：卸载记录未能保存，没有移动："_s));
        QCOMPARE(rig.scanner->failures().size(), 1);
        QVERIFY(rig.trashed().isEmpty() && rig.scanner->records().isEmpty());
        QVERIFY(QFile::remove(folder));
        rig.uninstall(rig.review);
        QVERIFY(QDir().rename(folder, folder + u"2"_s));
        rig.plant(u"own"_s);
        rig.scanner->forget(rig.scanner->records().first().id);
        QCOMPARE(rig.ending(), u"卸载记录未能移除"_s);
        QCOMPARE(rig.scanner->failures().first().path, u"Note"_s);
        const QString record = rig.scanner->records().first().id; // as on disk
        rig.scanner->putBack(record);
        rig.ending();
        QVERIFY(rig.scanner->failures().first().reason.startsWith(u"卸载记录未能更新："_s));
    }

    void endsInTheMiddle()
    {
        NoteRig rig;
        rig.scanner->uninstall(rig.review);
        QVERIFY(rig.until([&] { return rig.host.trash.calls.size() == 2; }));
        rig.scanner.reset();
        rig.until([&] { return rig.clock.pendingCount() == 0; });
        QTest::qWait(50);
        QCOMPARE(rig.host.trash.calls.size(), 2);
    }

    void namesNobodyExpects()
    {
        UninstallRig rig;
        rig.install(u"Note"_s, u"org.acme.note"_s);
        const QString odd = rig.plant(u"Caches/org.acme.note a\nb"_s);
        const QByteArray bytes = QFile::encodeName(rig.home(u"Caches"_s)) + "/org.acme.note\xff\xfe";
        tree::file(bytes);
        rig.scanned();
        const UninstallReview review = rig.reviewOf(u"Note"_s);
        QCOMPARE(review.items.size(), 2);
        QCOMPARE(review.items.last().path, odd);
        rig.uninstall(review);
        QVERIFY(!QFile::exists(odd));
        QCOMPARE(::unlink(bytes.constData()), 0); // it stayed
    }

    // Whatever an application calls itself.
    void nothingElseIsEverTouched()
    {
        const QStringList words =
            u"| |.|..|/|com|org.acme|note|e|home|*|Preferences|../..|x\ny|own|Café|com.|velbrix"_s.split(
                u'|');
        const QRegularExpression allowed(u"\\A(Applications/Note\\.app|(Preferences|Caches)/[^/]*|"
                                         "Preferences/org\\.acme\\.note/[^/]*)\\z"_s);
        QRandomGenerator random(7);
        const auto word = [&] { return words.at(random.bounded(words.size())); };
        for (int round = 0; round < 25; ++round) {
            NoteRig rig;
            rig.host.applications.folders.append(
                {LibraryKind::logs, rig.home(u"Preferences/org.acme.note"_s)});
            rig.plant(u"Preferences/com./home/x"_s);
            rig.plant(u"Caches/Preferences"_s);
            AppInfo app = rig.app(u"Note"_s);
            app.name = word() + word();
            app.bundleID = word() + (random.bounded(2) ? word() : QString());
            std::optional<UninstallReview> review;
            rig.scanner->reviewOf(app, UninstallMode::full).then([&](UninstallReview now) { review = now; });
            QVERIFY(rig.until([&] { return review.has_value(); }));
            for (ReviewItem &item : review->items)
                item.isTicked = true;
            rig.uninstall(*review);
            for (const QString &path : rig.trashed())
                QVERIFY2(path.contains(allowed) && path != u"Preferences/org.acme.note"_s &&
                             !path.contains(u"velbrix"_s),
                         qPrintable(path));
            QVERIFY(QFile::exists(rig.home(u"outside/org.acme.note"_s)));
            QVERIFY(QDir(rig.home(u"Caches"_s)).exists());
        }
    }
};

QTEST_GUILESS_MAIN(AppScannerTest)
#include "AppScannerTest.moc"
