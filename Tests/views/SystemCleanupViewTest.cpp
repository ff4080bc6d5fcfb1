#include "support/WindowRig.h"
#include "views/cleanup/CleanupEntryList.h"
#include "views/components/CheckBox.h"

#include <QElapsedTimer>
#include <QJsonArray>

namespace {

const QString chrome = u"chrome-cache"_s;

// Everything that is ever selected lies in the rig's own home.
struct Rig : WindowRig {
    Rig() { select({chrome}); }
    void select(const QJsonArray &ids) { host.settings.stored.insert(CleanupChoices::selectionKey, ids); }
    void open() { WindowRig::open(u"clean"_s); }
    void consent() { consentTo(PrivacyConsentKind::systemCleanup); }
    SystemCleaner &cleaner() { return services->cleaner; }

    QString place(const QString &below) const { return files.filePath(below); }
    QByteArray native(const QString &below) const
    {
        const QString canonical = QFileInfo(place(below)).canonicalFilePath();
        return QFile::encodeName(canonical.isEmpty() ? place(below) : canonical);
    }
    // A file that is told to be so large.
    void put(const QString &below, qint64 bytes)
    {
        writeFile(place(below), "12345");
        host.diskUsage.sizes[native(below)] = bytes;
    }
    // The browser's cache: two entries.
    void fill()
    {
        put(u"cache/google-chrome/small"_s, 2000);
        put(u"cache/google-chrome/large"_s, 7'000'000);
        host.diskUsage.sizes[native(u"cache/google-chrome"_s)] = 7'002'000;
    }
    QString size(const QString &id) const { return text(u"cleanupSize."_s + id); }
    CheckBox *check(const QString &id) const { return find<CheckBox>(u"cleanupCheck."_s + id); }
    QString total() const { return text(u"cleanupTotal"_s); }
    void waitForEnd() { QTRY_VERIFY((clock.advance(100ms), !cleaner().isWorking())); }
    QString fold(CleanupGroup group) const { return u"cleanupFold.%1"_s.arg(static_cast<int>(group)); }
    // Shows what is folded away once sizes are known.
    void unfold()
    {
        waitForEnd();
        for (int group = 0; group < static_cast<int>(CleanupGroup::custom); ++group) {
            if (const QString name = fold(static_cast<CleanupGroup>(group)); find(name))
                click(name);
        }
    }
    QString focused() const { return window()->focusWidget()->objectName(); }
};

} // namespace

class SystemCleanupViewTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sizesAppear()
    {
        Rig rig;
        rig.fill();
        rig.open();
        QTRY_COMPARE(rig.size(chrome), u"7 MB"_s);
        // What has nothing in it stands behind one line.
        rig.waitForEnd();
        QCOMPARE(rig.text(rig.fold(CleanupGroup::editors)), u"3 项都没有可清理的内容"_s);
        QCOMPARE(rig.text(rig.fold(CleanupGroup::browsers)), u"另有 3 项没有可清理的内容"_s);
        QVERIFY(!rig.find(u"cleanupRow.jetbrains"_s));
        rig.unfold();
        QCOMPARE(rig.text(rig.fold(CleanupGroup::editors)), u"收起没有内容的 3 项"_s);
        QCOMPARE(rig.size(u"jetbrains"_s), u"无数据"_s);
        QVERIFY(rig.texts(u"cleanupPage"_s).contains(u"包管理器缓存"_s));
        for (const CleanupItem &item : rig.cleaner().items())
            QCOMPARE(rig.texts(u"cleanupRow."_s + item.id).contains(u"需要管理员权限"_s),
                     rig.cleaner().isAdministrative(item.id));
        QCOMPARE(rig.host.diskUsage.calls.size(), 1);
        // Shown again it does not begin anew; the button does.
        rig.services->router.show(u"settings"_s);
        rig.services->router.show(u"clean"_s);
        QCOMPARE(rig.host.diskUsage.calls.size(), 1);
        rig.host.diskUsage.sizes[rig.native(u"cache/google-chrome"_s)] = 9'000'000;
        QTRY_VERIFY(rig.isEnabled(u"cleanupRecalculate"_s));
        rig.click(u"cleanupRecalculate"_s);
        QTRY_COMPARE(rig.size(chrome), u"9 MB"_s);
    }

    void selectionIsCounted()
    {
        Rig rig;
        rig.fill();
        rig.open();
        QTRY_COMPARE(rig.total(), u"7 MB"_s);
        QCOMPARE(rig.text(u"cleanupSelection"_s), u"已选 1 项"_s);
        rig.unfold();
        rig.check(chrome)->setFocus();
        rig.key(Qt::Key_Space);
        QCOMPARE(rig.check(chrome)->state(), Qt::Unchecked);
        QCOMPARE(rig.total(), u"零 KB"_s);
        QCOMPARE(rig.text(u"cleanupSelection"_s), u"没有选择任何清理项"_s);
        rig.click(u"cleanupAll"_s);
        QVERIFY(rig.check(u"jetbrains"_s)->isChecked());
        rig.click(u"cleanupNone"_s);
        QVERIFY(!rig.check(u"jetbrains"_s)->isChecked());
        QCOMPARE(rig.services->settings.json(CleanupChoices::selectionKey)->toArray(), QJsonArray());
        rig.click(u"cleanupClean"_s);
        QVERIFY(!rig.find(u"noticeSheet"_s) && !rig.find(u"confirmation"_s));
        QTRY_COMPARE(rig.text(u"cleanupResult"_s), u"没有选择任何清理项"_s);
        rig.click(u"cleanupCheck."_s + chrome);
        QVERIFY(!rig.find(u"cleanupOutcome"_s));
    }

    void measuringIsCancelled()
    {
        Rig rig;
        rig.host.diskUsage.delay = 1s;
        rig.open();
        QTRY_VERIFY(rig.find(u"cleanupJob"_s));
        QVERIFY(rig.texts(u"cleanupJob"_s).contains(u"正在计算各目录大小…"_s));
        QVERIFY(rig.find(u"ring.clean"_s));
        QVERIFY(!rig.isEnabled(u"cleanupRecalculate"_s));
        rig.click(u"cleanupJobCancel"_s);
        QTRY_VERIFY((rig.clock.advance(1s), !rig.find(u"cleanupJob"_s)));
        QVERIFY(!rig.find(u"ring.clean"_s));
        QVERIFY(rig.isEnabled(u"cleanupRecalculate"_s));
    }

    void entriesByKeyboard()
    {
        Rig rig;
        rig.fill();
        rig.host.diskUsage.sizes[rig.native(u"cache"_s)] = 8'000'000;
        rig.open();
        rig.button(u"cleanupOpen."_s + chrome)->setFocus();
        rig.key(Qt::Key_Space);
        const QString list = u"cleanupEntries."_s + chrome;
        QTRY_COMPARE(rig.rows(list), (QStringList{u"large，7 MB，将清理"_s, u"small，2 KB，将清理"_s}));
        rig.find(list)->setFocus(Qt::TabFocusReason);
        rig.key(Qt::Key_Down);
        rig.key(Qt::Key_Space);
        QCOMPARE(rig.rows(list), (QStringList{u"large，7 MB，将清理"_s, u"small，2 KB，已排除"_s}));
        QCOMPARE(rig.text(u"cleanupContentsText."_s + chrome), u"共 2 个条目，已排除 1 个"_s);
        QTRY_COMPARE((rig.clock.advance(100ms), rig.total()), u"7 MB"_s);
        rig.clickRow(list, 0);
        QCOMPARE(rig.total(), u"零 KB"_s);
        // Closed and opened again it is as it was.
        rig.click(u"cleanupOpen."_s + chrome);
        QVERIFY(!rig.find(list));
        rig.click(u"cleanupOpen."_s + chrome);
        QTRY_COMPARE(rig.rows(list), (QStringList{u"large，7 MB，已排除"_s, u"small，2 KB，已排除"_s}));
        // What another row decides about cannot be changed here.
        rig.cleaner().setSelected(chrome, false);
        rig.click(u"cleanupOpen.user-caches"_s);
        const QString outer = u"cleanupEntries.user-caches"_s;
        const QString kept = u"google-chrome，7 MB，保留：由「Chrome 浏览器缓存」一项清理"_s;
        QTRY_COMPARE(rig.rows(outer).value(0), kept);
        rig.clickRow(outer, 0);
        QCOMPARE(rig.rows(outer).value(0), kept);
        rig.cleaner().setSelected(chrome, true);
        QTRY_COMPARE(rig.rows(outer).value(0),
                     u"google-chrome，7 MB，保留：里面有保留的内容（你排除的条目）"_s);
    }

    void hundredThousandEntries()
    {
        WindowRig rig;
        const Theme theme(rig.host.desktop, rig.host.symbols);
        CleanupEntryList list(theme, u"entries"_s);
        QList<CleanupEntry> entries;
        for (int i = 0; i < 100'000; ++i)
            entries.append({QByteArray::number(i), QString::number(i), {}, true});
        QElapsedTimer watch;
        watch.start();
        list.showEntries(entries);
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
        list.setCurrentIndex(list.model()->index(500, 0));
        for (CleanupEntry &entry : entries)
            entry.bytes = entry.name.toInt();
        list.showEntries(entries);
        std::ranges::reverse(entries);
        list.showEntries(entries);
        QVERIFY2(watch.elapsed() < 10'000, qPrintable(QString::number(watch.elapsed())));
        // The line that was chosen is the same entry at its new place.
        QCOMPARE(list.currentIndex().data().toString(), u"500"_s);
        QCOMPARE(list.currentIndex().row(), 99'499);
        QVERIFY(list.findChildren<QWidget *>().size() < 20);
    }

    void cleaningWithConsentAndQuestion()
    {
        Rig rig;
        rig.fill();
        rig.open();
        QTRY_COMPARE(rig.total(), u"7 MB"_s);
        rig.button(u"cleanupClean"_s)->setFocus();
        rig.click(u"cleanupClean"_s);
        QCOMPARE(rig.text(u"noticeTitle"_s), u"系统清理隐私确认"_s);
        QVERIFY(!rig.find(u"confirmation"_s));
        rig.click(u"noticeConfirm"_s);
        QCOMPARE(rig.text(u"noticeMessage"_s), u"将清理已选中的 1 个项目（约 7 MB），操作不可撤销。"_s);
        QVERIFY(rig.texts(u"noticeDetails"_s).contains(u"Chrome 浏览器缓存 — 7 MB"_s));
        QCOMPARE(rig.focused(), u"noticeCancel"_s); // never the destructive one
        QVERIFY(QFile::exists(rig.place(u"cache/google-chrome/large"_s)));
        rig.click(u"noticeConfirm"_s);
        QVERIFY(!rig.isEnabled(u"cleanupClean"_s));
        QVERIFY(!rig.check(chrome)->isEnabled());
        QVERIFY(rig.texts(u"cleanupJob"_s).contains(u"正在清理 Chrome 浏览器缓存…"_s));
        QCOMPARE(rig.focused(), u"cleanupJobCancel"_s);
        rig.waitForEnd();
        QCOMPARE(rig.focused(), u"cleanupClean"_s);
        QVERIFY(!QFile::exists(rig.place(u"cache/google-chrome/large"_s)));
        QCOMPARE(rig.text(u"cleanupResult"_s), u"清理完成！处理了 2 个项目（释放约 10 字节）"_s);
        QVERIFY(rig.text(u"cleanupDetails"_s).endsWith(u"，共删除 2 个文件"_s));
        QVERIFY(rig.isEnabled(u"cleanupClean"_s));
    }

    void questionIsCalledOffOrAskedAnew()
    {
        Rig rig;
        rig.consent();
        rig.fill();
        rig.put(u"cache/pip/wheel"_s, 1000);
        rig.open();
        rig.button(u"cleanupClean"_s)->setFocus();
        rig.key(Qt::Key_Space);
        QVERIFY(rig.find(u"confirmation"_s));
        rig.key(Qt::Key_1, Qt::ControlModifier); // nothing behind it can be reached
        QCOMPARE(rig.services->router.activeTab(), u"clean"_s);
        rig.key(Qt::Key_Escape);
        QVERIFY(!rig.find(u"confirmation"_s) && !rig.cleaner().isCleaning());
        QCOMPARE(rig.focused(), u"cleanupClean"_s);

        rig.click(u"cleanupClean"_s);
        rig.cleaner().setSelected(u"jetbrains"_s, true); // as the command line might
        rig.click(u"noticeConfirm"_s);
        QVERIFY(!rig.cleaner().isCleaning());
        QVERIFY(rig.text(u"noticeMessage"_s).startsWith(u"将清理已选中的 2 个项目"_s));
        QVERIFY(QFile::exists(rig.place(u"cache/google-chrome/large"_s)));
    }

    void busyItemIsSkipped()
    {
        Rig rig;
        rig.consent();
        rig.fill();
        rig.select({chrome, u"jetbrains"_s});
        rig.host.programs.names = {u"chrome"_s};
        rig.open();
        QTRY_VERIFY(rig.find(u"cleanupBusy."_s + chrome));
        QVERIFY(rig.texts(u"cleanupBusy."_s + chrome).contains(u"正在运行，将跳过"_s));
        QVERIFY(!rig.find(u"cleanupBusy.jetbrains"_s));
        QCOMPARE(rig.text(u"cleanupSelection"_s), u"已选 2 项，其中 1 项正在使用，将跳过"_s);
        rig.click(u"cleanupClean"_s);
        QVERIFY(rig.text(u"noticeMessage"_s).endsWith(u"另有 1 个项目正在运行，将跳过。"_s));
        QCOMPARE(rig.texts(u"noticeDetails"_s).last(), u"跳过：Chrome 浏览器缓存（正在运行）"_s);
        rig.key(Qt::Key_Escape);
        rig.click(u"cleanupForce."_s + chrome);
        QVERIFY(rig.texts(u"cleanupBusy."_s + chrome).contains(u"正在运行"_s));
        QCOMPARE(rig.text(u"cleanupSelection"_s), u"已选 2 项"_s);
    }

    void whatStaysIsExplained()
    {
        Rig rig;
        rig.consent();
        rig.select({u"trash"_s});
        RemovalReport emptied;
        emptied.freedBytes = 3'000'000;
        emptied.removedFiles = 4;
        emptied.problems = {{"/trash/two\nlines", u"没有权限"_s}};
        emptied.problemCount = 120;
        rig.host.trash.emptyAnswer = emptied;
        rig.open();
        rig.click(u"cleanupClean"_s);
        rig.click(u"noticeConfirm"_s);
        rig.waitForEnd();
        QCOMPARE(rig.text(u"cleanupResult"_s), u"清理完成！处理了 1 个项目"_s);
        QCOMPARE(rig.text(u"cleanupDetails"_s), u"实际释放 3 MB，共删除 4 个文件"_s);
        QCOMPARE(rig.text(u"cleanupProblemCount"_s), u"有 120 个条目没有删除，列出前 1 个"_s);
        QVERIFY(!rig.find(u"cleanupProblems"_s));
        rig.click(u"cleanupProblemsOpen"_s);
        const auto *list = rig.find<QListView>(u"cleanupProblems"_s);
        QCOMPARE(list->model()->index(0, 0).data().toString(), u"/trash/two lines — 没有权限"_s);
        // A host that tells nothing of what it emptied.
        rig.host.trash.emptyAnswer = RemovalReport();
        rig.click(u"cleanupClean"_s);
        rig.click(u"noticeConfirm"_s);
        rig.waitForEnd();
        QVERIFY(!rig.find(u"cleanupDetails"_s));
    }

    void customFolders()
    {
        Rig rig;
        rig.put(u"build/object"_s, 1);
        rig.host.diskUsage.sizes[rig.native(u"build"_s)] = 4'000'000;
        rig.consent();
        rig.open();
        QVERIFY(rig.texts(u"cleanupPage"_s).contains(u"自定义路径（最多 10 个）"_s));
        const auto dropped = [&](const QString &below) {
            return drop(rig.find(u"cleanupCustom"_s), {QUrl::fromLocalFile(rig.place(below))});
        };
        QVERIFY(!dropped(u"build/object"_s)); // a file
        QVERIFY(dropped(u"build"_s));
        const QString id = customRule(rig.place(u"build"_s)).item.id;
        QTRY_VERIFY(rig.find(u"cleanupRow."_s + id));
        QVERIFY(!rig.find(u"cleanupAddProblem"_s));
        QVERIFY(dropped(u"build"_s));
        QTRY_COMPARE(rig.texts(u"cleanupAddProblem"_s),
                     (QStringList{u"添加失败"_s, u"build：该路径已添加"_s}));
        QTRY_COMPARE(rig.size(id), u"4 MB"_s);
        QVERIFY(rig.check(id)->isChecked());
        rig.cleaner().setAllSelected(false);
        rig.cleaner().setSelected(id, true);
        rig.click(u"cleanupClean"_s);
        QVERIFY(rig.texts(u"noticeDetails"_s).contains(u"~/build — 4 MB"_s));
        rig.click(u"noticeCancel"_s);
        rig.button(u"cleanupRemove."_s + id)->setFocus();
        rig.key(Qt::Key_Space);
        QVERIFY(!rig.find(u"cleanupRow."_s + id));
        QVERIFY(QFile::exists(rig.place(u"build/object"_s))); // only taken off the list
        const QUrl twice = QUrl::fromLocalFile(rig.place(u"build"_s));
        rig.put(u"more/object"_s, 1);
        QVERIFY(
            drop(rig.find(u"cleanupCustom"_s), {twice, twice, QUrl::fromLocalFile(rig.place(u"more"_s))}));
        QTRY_VERIFY(rig.find(u"cleanupRow."_s + customRule(rig.place(u"more"_s)).item.id));
        QCOMPARE(rig.texts(u"cleanupAddProblem"_s).last(), u"build：该路径已添加"_s);
    }
};

QTEST_MAIN(SystemCleanupViewTest)
#include "SystemCleanupViewTest.moc"
