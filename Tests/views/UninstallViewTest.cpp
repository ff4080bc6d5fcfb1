#include "support/UninstallRig.h"
#include "support/WindowRig.h"
#include "views/components/RowList.h"
#include "views/components/Switch.h"
#include "views/uninstall/AppRows.h"

#include <QLineEdit>
#include <QRadioButton>

namespace {

// A program with installed applications, whose data lies in two real folders.
struct Rig : WindowRig {
    Rig()
    {
        consentTo(PrivacyConsentKind::uninstall);
        host.applications.folders = {{LibraryKind::preferences, home.filePath(u"Preferences"_s)},
                                     {LibraryKind::caches, home.filePath(u"Caches"_s)}};
    }

    QString plant(const QString &path) const { return writeFile(home.filePath(path)); }
    InstalledApplication &install(const QString &name, const QString &identifier = {})
    {
        InstalledApplication &application = host.applications.installed->emplaceBack();
        application.name = name;
        application.identifier = identifier;
        application.version = u"1.2"_s;
        application.path = plant(u"Applications/%1.AppImage"_s.arg(name));
        application.kind = InstalledApplication::Kind::appImage;
        application.size = 2'000'000;
        return application;
    }

    // Of what past uninstalls have left.
    QString journal() const { return files.filePath(u"data/Velbrix/uninstalls.json"_s); }

    // On the page, with its list.
    void open()
    {
        WindowRig::open(u"apps"_s);
        QVERIFY(hasScanned());
    }
    AppScanner &scanner() const { return services->uninstaller; }
    bool hasScanned()
    {
        return until([this] { return !scanner().isScanning(); });
    }
    std::optional<UninstallReview> review() const { return scanner().openReview().review(); }
    void clickUninstall(int row) const
    {
        const auto *list = find<RowList>(u"appRows"_s);
        const QRect place = list->visualRect(list->model()->index(row, 0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, AppRow::buttonRect(place).center());
    }
    bool openReview(int row)
    {
        clickUninstall(row);
        return untilFound(u"reviewRows"_s);
    }
    // Begins to uninstall the first.
    bool confirm()
    {
        const bool isOpen = openReview(0);
        click(u"reviewConfirm"_s);
        return isOpen;
    }
    bool finish()
    {
        return until([this] { return !scanner().isBusy() && !scanner().isPuttingBack(); });
    }

    QTemporaryDir home;
};

} // namespace

class UninstallViewTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void applicationsAreListed()
    {
        Rig rig;
        rig.install(u"zoom"_s, u"us.zoom"_s);
        rig.install(u"Gimp"_s).manager = u"Flatpak"_s;
        rig.host.programs.names = {u"us.zoom"_s};
        rig.open();
        QTRY_COMPARE(rig.rows(u"appRows"_s), (QStringList{u"Gimp，版本 1.2，2 MB，由 Flatpak 管理"_s,
                                                          u"zoom，版本 1.2，2 MB，正在运行"_s}));
        QCOMPARE(rig.text(u"appCount"_s), u"共 2 个应用 · 4 MB"_s);
        rig.install(u"Krita"_s);
        rig.click(u"appsRescan"_s);
        QVERIFY(rig.until([&] { return rig.rows(u"appRows"_s).size() == 3; }));
    }

    void listLooks()
    {
        const auto looks = [](bool fails, bool isScannedBefore, const QString &card, const QString &text) {
            Rig rig;
            if (fails)
                rig.host.applications.installed = failure(text);
            rig.start();
            if (isScannedBefore)
                rig.scanner().scan();
            QVERIFY(rig.hasScanned());
            rig.services->router.show(u"apps"_s);
            QVERIFY(rig.hasScanned());
            QVERIFY(rig.texts(card).contains(text));
            QVERIFY(!rig.find(u"appRows"_s));
        };
        looks(false, false, u"appsEmpty"_s, u"没有找到应用"_s);
        looks(false, true, u"appsEmpty"_s, u"没有找到应用"_s);
        looks(true, false, u"appList"_s, u"无法读取应用列表"_s);
    }

    void searchingByKeyboard()
    {
        Rig rig;
        rig.install(u"Gimp"_s);
        rig.install(u"Krita"_s);
        rig.open();
        rig.find(u"appRows"_s)->setFocus();
        rig.key(Qt::Key_K);
        QCOMPARE(rig.text(u"appSearch"_s), u"k"_s);
        QCOMPARE(rig.text(u"appCount"_s), u"2 个应用中的 1 个 · 2 MB"_s);
        rig.key(Qt::Key_Escape);
        QCOMPARE(rig.rows(u"appRows"_s).size(), 2);
        rig.key(Qt::Key_Down);
        rig.key(Qt::Key_Down);
        rig.key(Qt::Key_Return);
        QVERIFY(rig.untilFound(u"reviewRows"_s));
        QCOMPARE(rig.review()->app.name, u"Krita"_s);
        rig.key(Qt::Key_Escape);
        QVERIFY(!rig.review());
        QVERIFY(rig.find(u"appRows"_s)->hasFocus());
        QTest::keyClicks(rig.find<QLineEdit>(u"appSearch"_s), u"xyz"_s);
        QVERIFY(!rig.find(u"appRows"_s));
        QVERIFY(rig.texts(u"appsNoMatch"_s).contains(u"没有匹配的应用"_s));
        rig.click(u"appsNoMatchAction"_s);
        QCOMPARE(rig.rows(u"appRows"_s).size(), 2);
        QVERIFY(rig.text(u"appSearch"_s).isEmpty());
    }

    void reviewIsTickedAndConfirmed()
    {
        Rig rig;
        rig.install(u"Gimp"_s, u"org.gimp"_s);
        const QString own = rig.plant(u"Preferences/org.gimp.conf"_s);
        const QString similar = rig.plant(u"Caches/gimpressive"_s);
        rig.open();
        QVERIFY(rig.openReview(0));
        QVERIFY(
            rig.texts(u"uninstallReview"_s).contains(u"确定要卸载「Gimp」吗？此操作会将文件移到废纸篓。"_s));
        const QStringList found = rig.rows(u"reviewRows"_s);
        QCOMPARE(found.size(), 3);
        QVERIFY2(found[1].contains(u"org.gimp.conf，已勾选"_s), qPrintable(found[1]));
        QVERIFY2(found[2].contains(u"gimpressive，未勾选"_s), qPrintable(found[2]));
        QVERIFY(found[2].endsWith(rig.review()->items[2].caution));
        QVERIFY(rig.namedControls() >= 8);
        QVERIFY(rig.text(u"reviewTotal"_s).startsWith(u"已勾选 2 项"_s));

        // The destructive button is not where the keyboard begins.
        QVERIFY(rig.button(u"reviewCancel"_s)->hasFocus());
        auto *const list = rig.find<RowList>(u"reviewRows"_s);
        list->setFocus();
        list->setCurrentIndex(list->model()->index(0, 0));
        rig.key(Qt::Key_Space);
        QVERIFY(rig.review()->items[0].isTicked); // the application itself stays
        list->setCurrentIndex(list->model()->index(1, 0));
        rig.key(Qt::Key_Space);
        QVERIFY(!rig.review()->items[1].isTicked);
        rig.clickRow(u"reviewRows"_s, 2);
        QVERIFY(rig.review()->items[2].isTicked);
        rig.click(u"reviewConfirm"_s);
        QVERIFY(rig.finish());
        QVERIFY(QFile::exists(own));
        QVERIFY(!QFile::exists(similar));
        QCOMPARE(rig.text(u"uninstallMessage"_s), u"已卸载「Gimp」"_s);
    }

    void progressCoversAndStops()
    {
        Rig rig;
        rig.install(u"Gimp"_s, u"org.gimp"_s);
        const QString data = rig.plant(u"Preferences/org.gimp.conf"_s);
        rig.open();
        QVERIFY(rig.confirm());
        QVERIFY(rig.until([&] { return rig.text(u"uninstallStage"_s) == u"准备卸载…"_s; }));
        QVERIFY(rig.texts(u"uninstallProgress"_s).contains(u"正在卸载「Gimp」"_s));
        QVERIFY(rig.find(u"ring.apps"_s));
        rig.key(Qt::Key_Escape);
        QVERIFY(rig.find(u"uninstallProgress"_s));
        rig.click(u"uninstallStop"_s);
        QVERIFY(rig.finish());
        QVERIFY(!rig.find(u"uninstallProgress"_s));
        QVERIFY(QFile::exists(data));
        QVERIFY(rig.text(u"uninstallMessage"_s).contains(u"已取消"_s));
    }

    void failuresAreListedAndRecordsGoBack()
    {
        Rig rig;
        const QString path = rig.install(u"Gimp"_s, u"org.gimp"_s).path;
        rig.host.trash.refused.insert(rig.plant(u"Preferences/org.gimp.conf"_s), u"磁盘只读"_s);
        rig.open();
        QVERIFY(rig.confirm());
        QVERIFY(rig.finish());
        QCOMPARE(rig.text(u"uninstallMessage"_s), u"已卸载「Gimp」，1 项未能移动"_s);
        QTRY_COMPARE(rig.texts(u"uninstallFailures"_s).value(1), u"磁盘只读"_s);
        QVERIFY(rig.texts(u"uninstallFailures"_s).first().endsWith(u"org.gimp.conf"_s));
        rig.click(u"uninstallResultSeen"_s);
        QVERIFY(!rig.find(u"uninstallResult"_s));
        QVERIFY(!QFile::exists(path));
        const QString id = rig.scanner().records().constFirst().id;
        QTRY_VERIFY(rig.texts(u"uninstallRecords"_s).contains(u"1 项已移到废纸篓 · 1 项没有移动"_s));
        rig.click(u"putBack."_s + id);
        QVERIFY(rig.finish());
        QVERIFY(QFile::exists(path));
        QCOMPARE(rig.text(u"uninstallMessage"_s), u"已将「Gimp」的 1 项放回原处"_s);
        QVERIFY(!rig.find(u"putBack."_s + id));
    }

    void recordsCanBeRemoved()
    {
        Rig rig;
        const UninstallRecord moved = {
            u"1"_s, u"Gimp"_s, rig.clock.now(), {{u"/gone/gimp"_s, u"/trash/gimp"_s}}, {}, {}};
        const UninstallRecord package = {u"2"_s, u"Vlc"_s, rig.clock.now(), {}, {}, u"vlc"_s};
        UninstallJournal journal(rig.journal());
        journal.put(package);
        journal.put(moved);
        QTRY_COMPARE(openedJournal(rig.journal()).records(), (QList{moved, package}));
        QByteArray damaged = readFile(rig.journal());
        writeFile(rig.journal(), damaged.insert(damaged.indexOf('[') + 1, "7,"));
        rig.open();
        QTRY_VERIFY(rig.text(u"recordsProblem"_s).startsWith(u"部分卸载记录已损坏"_s));
        rig.click(u"forget.2"_s); // nothing could go back anyway
        QCOMPARE(rig.scanner().records(), QList{moved});
        QTRY_VERIFY(rig.find(u"forget.1"_s));
        rig.click(u"forget.1"_s);
        rig.click(u"noticeCancel"_s);
        QCOMPARE(rig.scanner().records(), QList{moved});
        rig.click(u"forget.1"_s);
        rig.click(u"noticeConfirm"_s);
        QVERIFY(rig.scanner().records().isEmpty());
        QVERIFY(!rig.find(u"forget.1"_s));
        QTRY_VERIFY(openedJournal(rig.journal()).records().isEmpty());
    }

    void modeAndOptions()
    {
        Rig rig;
        rig.open();
        rig.click(u"uninstallSettings"_s);
        QCOMPARE(rig.text(u"cleanupSummary"_s), u"将删除应用本体及所有关联的配置、缓存、日志等数据"_s);
        QVERIFY(rig.find<QRadioButton>(u"uninstallMode.0"_s)->hasFocus());
        QVERIFY(!rig.find(u"cleanupToggles"_s));
        rig.click(u"uninstallMode.2"_s);
        QCOMPARE(rig.scanner().uninstallMode(), UninstallMode::custom);
        // Only the kinds that this host has.
        QCOMPARE(rig.texts(u"cleanupToggles"_s),
                 (QStringList{u"偏好设置 (Preferences)"_s, toggleTitle(LibraryKind::caches)}));
        QCOMPARE(rig.text(u"cleanupSummary"_s), u"将移走应用本体，并清理：偏好设置、缓存"_s);
        rig.click(u"cleanup.0"_s);
        QVERIFY(!rig.scanner().cleanupOptions().preferences);
        QVERIFY(!rig.find<Switch>(u"cleanup.0"_s)->isChecked());
        QCOMPARE(rig.text(u"cleanupSummary"_s), u"将移走应用本体，并清理：缓存"_s);
        rig.click(u"uninstallSettingsDone"_s);
        QVERIFY(!rig.find(u"uninstallSettingsSheet"_s));
    }

    void aPackagesSheetGoesWithItsPage()
    {
        Rig rig;
        InstalledApplication &gimp = rig.install(u"Gimp"_s);
        gimp.kind = InstalledApplication::Kind::managed;
        gimp.manager = u"APT"_s;
        gimp.package = u"gimp"_s;
        rig.host.applications.removedWith = QStringList{u"gimp"_s, u"gimp-data"_s};
        rig.host.programs.executables = {gimp.path};
        rig.open();
        QVERIFY(rig.openReview(0));
        QCOMPARE(
            rig.text(u"reviewPackages"_s),
            u"应用本体由 APT 移除（可能需要输入密码），不会进入废纸篓。一并移除的软件包：gimp、gimp-data"_s);
        QVERIFY(rig.find(u"reviewRunning"_s) && !rig.button(u"reviewConfirm"_s)->isEnabled());
        rig.host.programs.executables.clear();
        QVERIFY(rig.until([&] { return rig.button(u"reviewConfirm"_s)->isEnabled(); }));
        QVERIFY(!rig.find(u"reviewRunning"_s));
        rig.services->router.show(u"settings"_s);
        QVERIFY(!rig.find(u"uninstallReview"_s));
        rig.services->router.show(u"apps"_s);
        QVERIFY(rig.find(u"uninstallReview"_s));
    }
};

QTEST_MAIN(UninstallViewTest)
#include "UninstallViewTest.moc"
