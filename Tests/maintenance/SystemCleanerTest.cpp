#include "maintenance/cleanup/SystemCleaner.h"

#include "support/FakeApplications.h"
#include "support/FakeFiles.h"
#include "support/FileTree.h"
#include "support/SettingsRig.h"
#include "support/Test.h"

#include <QCoroTask>
#include <QJsonArray>

#include <unistd.h>

namespace {

// A table of two folders, one inside the other, the trash and two commands.
struct Rig : SettingsRig {
    Rig() { make(); }

    QTemporaryDir home;
    FakeDiskUsage usage{clock};
    FakeTrashCan trash;
    FakeAdminShell admin{clock};
    FakeRunningPrograms programs;
    std::unique_ptr<SystemCleaner> cleaner;

    QStringList spared; // in the caches

    QString path(const QString &below) const { return home.filePath(below); }
    QByteArray native(const QString &below) const
    {
        return QFile::encodeName(QFileInfo(path(below)).canonicalFilePath());
    }

    QList<CleanupRule> table() const
    {
        const auto folder = [&](const QString &id, const QString &below, const QStringList &owners = {}) {
            return CleanupRule{{id, id, u"trash"_s, below, true, u"计算中…"_s, {}},
                               CleanupGroup::system,
                               {id, id, path(below), {}, false},
                               {path(below)},
                               owners};
        };
        const auto command = [](const QString &id, const QString &line, bool admin) {
            return CleanupRule{{id, id, u"network"_s, {}, !admin, u"计算中…"_s, {}},
                               CleanupGroup::advanced,
                               {id, id, {}, line, admin},
                               {}};
        };
        CleanupRule caches = folder(u"caches"_s, u"cache"_s);
        caches.sparedPaths = spared;
        return {caches, folder(u"browser"_s, u"cache/browser"_s, {u"browser"_s}),
                folder(u"trash"_s, u"trash"_s),
                command(u"mark"_s, u"touch '%1' 2>/dev/null; true"_s.arg(path(u"marked"_s)), false),
                command(u"dns"_s, u"flush 2>/dev/null; true"_s, true)};
    }

    // Another day; what is its own is left alone.
    SystemCleaner &make(const QList<QByteArray> &own = {})
    {
        cleaner = std::make_unique<SystemCleaner>(SystemCleaner::Ports{usage, trash, admin, programs}, store,
                                                  clock, table(), own);
        return *cleaner;
    }

    Result<void> add(const QString &folder) { return QCoro::waitFor(cleaner->addCustomPath(folder)); }
    void put(const QStringList &files) { writeFiles(home.path(), files); }

    QString sizeOf(const QString &id) const
    {
        const QList<CleanupItem> items = cleaner->items();
        return std::ranges::find(items, id, &CleanupItem::id)->estimatedSize;
    }
    void finish()
    {
        QVERIFY(waitFor([this] { return clock.advance(50ms), !cleaner->isWorking(); }));
    }
    // What is left when it has cleaned these.
    QStringList cleaned(const QStringList &ids)
    {
        cleaner->clean(ids);
        finish();
        return filesBelow(home.path());
    }
};

} // namespace

class SystemCleanerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sizesAppearAsTheyAreKnown()
    {
        Rig rig;
        rig.put({u"cache/a"_s});
        QVERIFY(QDir().mkpath(rig.path(u"trash"_s)));
        rig.usage.sizes = {{QFile::encodeName(rig.path(u"cache"_s)), 2'500'000},
                           {QFile::encodeName(rig.path(u"trash"_s)), 4096}}; // an empty folder's own block
        rig.usage.delay = 1s;
        rig.cleaner->calculateOnce();
        QCOMPARE(rig.cleaner->phase(), CleanupPhase::calculating());
        QTRY_COMPARE(rig.usage.calls.size(), 1);
        rig.clock.advance(1s);
        QCOMPARE(rig.sizeOf(u"caches"_s), u"2.5 MB"_s);
        QCOMPARE(rig.sizeOf(u"browser"_s), u"计算中…"_s);
        QCOMPARE(rig.sizeOf(u"dns"_s), u"无数据"_s);
        QCOMPARE(rig.sizeOf(u"trash"_s), u"无数据"_s);
        rig.clock.advance(1s);
        QCOMPARE(rig.sizeOf(u"browser"_s), u"无数据"_s);
        rig.finish();
        QCOMPARE(rig.cleaner->phase(), CleanupPhase());
        QCOMPARE(rig.cleaner->selectedBytes(), 2'500'000);
    }

    void measuringCanBeCancelled()
    {
        Rig rig;
        rig.usage.delay = 1s;
        rig.cleaner->recalculate();
        QTRY_COMPARE(rig.usage.calls.size(), 1);
        rig.clock.advance(1s);
        rig.cleaner->cancel();
        rig.finish();
        QCOMPARE(rig.sizeOf(u"caches"_s), u"无数据"_s);
        QCOMPARE(rig.sizeOf(u"browser"_s), u"待计算"_s);
        // Nothing later is held up by it.
        QVERIFY(QDir().mkpath(rig.path(u"mine"_s)));
        QVERIFY(rig.add(rig.path(u"mine"_s)));
        const QString custom = rig.cleaner->items().last().id;
        QTRY_COMPARE((rig.clock.advance(1s), rig.sizeOf(custom)), u"无数据"_s);
    }

    void selectionIsRemembered()
    {
        Rig rig;
        rig.make().setSelected(u"trash"_s, false);
        QCOMPARE(*rig.store.json(u"VelbClean_CleanupSelection"_s),
                 QJsonArray({u"caches"_s, u"browser"_s, u"mark"_s}));
        const auto selected = [&] {
            QStringList ids;
            for (const CleanupItem &item : rig.make().itemsToClean())
                ids.append(item.id);
            return ids;
        };
        QCOMPARE(selected(), QStringList({u"caches"_s, u"browser"_s, u"mark"_s}));
        rig.store.set(u"VelbClean_CleanupSelection"_s, QJsonArray{u"dns"_s, 7, u"unheard-of"_s});
        QCOMPARE(selected(), QStringList{u"dns"_s});
        rig.store.set(u"VelbClean_CleanupSelection"_s, QJsonArray());
        QCOMPARE(selected(), QStringList());
        rig.store.set(u"VelbClean_CleanupSelection"_s, u"no list"_s);
        QCOMPARE(selected(), QStringList({u"caches"_s, u"browser"_s, u"trash"_s, u"mark"_s}));
    }

    void customFolders()
    {
        Rig rig;
        rig.put({u"mine/file"_s});
        SystemCleaner &cleaner = *rig.cleaner;
        for (const QString &none : {u"nowhere"_s, u"mine/file"_s})
            QCOMPARE(rig.add(rig.path(none)).error().message, u"请选择存在的文件夹"_s);
        QVERIFY(rig.add(rig.home.path() + u"/mine/../mine//"_s));
        const CleanupItem custom = cleaner.items().last();
        const QString mine = rig.path(u"mine"_s);
        const QString id = u"custom-"_s + QString::fromLatin1(mine.toUtf8().toBase64());
        QCOMPARE(custom, (CleanupItem{id, u"mine"_s, u"folder.badge.plus"_s, mine, true, u"待计算"_s, mine}));
        QCOMPARE(cleaner.group(id), CleanupGroup::custom);
        QCOMPARE(rig.add(mine).error().message, u"该路径已添加"_s);
        QTRY_COMPARE(rig.sizeOf(custom.id), u"无数据"_s);
        // Places nobody wants emptied.
        for (const QString &place : {u"/"_s, u"/usr"_s, QDir::homePath()})
            QVERIFY(!rig.add(place));
    }

    void customFoldersAreRemembered()
    {
        Rig rig;
        QStringList paths;
        for (int i = 0; i <= SystemCleaner::maxCustomPathsAllowed; ++i) {
            paths.append(rig.path(QString::number(i)));
            QVERIFY(QDir().mkpath(paths.last()));
            QCOMPARE(errorText(rig.add(paths.last())), i < SystemCleaner::maxCustomPathsAllowed
                                                           ? QString()
                                                           : u"最多可添加 10 个自定义文件夹"_s);
        }
        rig.cleaner->removeCustomPath(rig.cleaner->items()[5].id);
        QCOMPARE(rig.store.json(u"VelbClean_CustomPaths"_s)->toArray().first().toString(), paths[1]);
        rig.finish();
        QTest::qWait(0);
        // Written by hand: only what names a folder by itself counts.
        QJsonArray stored = rig.store.json(u"VelbClean_CustomPaths"_s)->toArray();
        for (const QString &odd : {QString(), u"."_s, u"Documents"_s, u"~nobody"_s, paths[1] + u"/."_s})
            stored.append(odd);
        rig.store.set(u"VelbClean_CustomPaths"_s, stored);
        QCOMPARE(rig.make().items().size(), 5 + SystemCleaner::maxCustomPathsAllowed - 1);
    }

    void cleansInOrder()
    {
        Rig rig;
        for (const auto &[name, bytes] :
             {std::pair(u"file"_s, 3000), {u"folder/deep/file"_s, 100'000}, {u".DS_Store"_s, 500}})
            writeFile(rig.path(u"cache/"_s + name), QByteArray(bytes, 'x'));
        QVERIFY(QDir().mkpath(rig.path(u"mine/sub"_s)));
        SystemCleaner &cleaner = *rig.cleaner;
        QVERIFY(rig.add(rig.path(u"mine"_s)));
        cleaner.setSelected(u"dns"_s, true);
        rig.finish();
        const qint64 folders =
            QFileInfo(rig.path(u"cache/folder"_s)).size() + QFileInfo(rig.path(u"mine/sub"_s)).size();

        QList<CleanupPhase> phases;
        QList<double> progress;
        connect(&cleaner, &SystemCleaner::phaseChanged, this, [&] { phases.append(cleaner.phase()); });
        connect(&cleaner, &SystemCleaner::progressChanged, this,
                [&] { progress.append(cleaner.progress()); });
        cleaner.clean();
        rig.finish();

        const CleanupPhase done = CleanupPhase::done(3 + 1 + 1 + 1 + 1, 3000 + 500 + folders);
        QList<CleanupPhase> expected;
        for (const QString &item : {u"caches"_s, u"browser"_s, u"trash"_s, u"mark"_s, u"dns"_s, u"mine"_s})
            expected.append(CleanupPhase::cleaning(item));
        expected << done << CleanupPhase::calculating() << CleanupPhase();
        QCOMPARE(phases, expected);
        QCOMPARE(progress, QList<double>({1.0 / 6, 2.0 / 6, 3.0 / 6, 4.0 / 6, 5.0 / 6, 1.0}));
        QCOMPARE(cleaner.report().outcome, done);
        QVERIFY(cleaner.report().removal.freedBytes >= 103'500);
        QCOMPARE(entriesOf(rig.home.path()), (QStringList{u"cache"_s, u"marked"_s, u"mine"_s}));
        QVERIFY(entriesOf(rig.path(u"cache"_s)).isEmpty() && entriesOf(rig.path(u"mine"_s)).isEmpty());
        QCOMPARE(rig.trash.calls, QStringList{u"empty"_s});
        QCOMPARE(rig.admin.lines, QStringList{u"flush 2>/dev/null; true"_s});
    }

    void whatIsExcludedStaysSoAfterARestart()
    {
        Rig rig;
        rig.put({u"cache/dear/file"_s, u"cache/cheap"_s});
        const QByteArray folder = rig.native(u"cache"_s) + '/';
        const QByteArray odd = folder + "caf\xe9 %41\n"; // not UTF-8
        tree::file(odd);
        for (const QByteArray &path : {folder + "dear", odd, folder + "gone"})
            rig.cleaner->details().setIncluded(u"caches"_s, path, false);
        QCOMPARE(rig.make().excludedCount(u"caches"_s), 3);
        rig.cleaned({u"caches"_s});
        QCOMPARE(tree::snapshot(folder.chopped(1)).keys(),
                 (QList<QByteArray>{"caf\xe9 %41\n", "dear", "dear/file"}));
        // Missing for a moment they stay excluded, and can be seen, until the user says otherwise.
        QCOMPARE(::unlink(odd.constData()), 0);
        CleanupDetails &details = rig.make().details();
        details.open(u"caches"_s);
        QTRY_VERIFY((rig.clock.advance(50ms), !details.contents().value(u"caches"_s).isMeasuring));
        const QList<CleanupEntry> entries = details.contents().value(u"caches"_s).entries;
        QCOMPARE(entries.size(), 3);
        QCOMPARE(rig.make().excludedCount(u"caches"_s), 3);
        for (const CleanupEntry &entry : entries) {
            QVERIFY(!entry.goes());
            rig.cleaner->details().setIncluded(u"caches"_s, entry.path, true);
        }
        QVERIFY(!rig.store.contains(CleanupChoices::excludedKey));
    }

    void excludedEntriesEditedByHand()
    {
        Rig rig;
        const auto countOf = [&](const QJsonValue &stored) {
            rig.store.set(CleanupChoices::excludedKey, stored);
            return rig.make().excludedCount(u"caches"_s);
        };
        QCOMPARE(countOf(u"caches"_s), 0);
        QCOMPARE(countOf(QJsonArray{u"/a"_s}), 0);
        QCOMPARE(countOf(QJsonObject{{u"caches"_s, u"/a"_s}, {u"nobody"_s, QJsonArray{u"/a"_s}}}), 0);
        QCOMPARE(
            countOf(QJsonObject{{u"caches"_s, QJsonArray{u"/a"_s, 7, u"relative"_s, QJsonArray(), u""_s}}}),
            1);
        for (int n = 0; n < CleanupChoices::mostKept + 10; ++n)
            rig.cleaner->details().setIncluded(u"caches"_s, "/b" + QByteArray::number(n), false);
        QCOMPARE(rig.make().excludedCount(u"caches"_s), CleanupChoices::mostKept);
    }

    void whatIsHiddenExcludedOrAnotherItemsStays()
    {
        Rig rig;
        const QString hidden = u"cache/.git/config"_s;
        const QString cheap = u"cache/browser/cheap"_s;
        const QString dear = u"cache/browser/dear/file"_s;
        rig.put({hidden, cheap, dear, u"cache/other"_s});
        rig.cleaner->details().setIncluded(u"browser"_s, rig.native(u"cache/browser/dear"_s), false);
        QCOMPARE(rig.cleaned({u"caches"_s}), (QStringList{hidden, cheap, dear}));
        QCOMPARE(rig.cleaner->report().outcome.cleanedCount, 1);
        QCOMPARE(rig.cleaner->report().removal.problems, QList<RemovalProblem>());
        QCOMPARE(rig.cleaned({u"caches"_s, u"browser"_s}), (QStringList{hidden, dear}));
        QCOMPARE(rig.cleaner->report().removal.problems, QList<RemovalProblem>());
        QCOMPARE(rig.cleaner->report().outcome.cleanedCount, 1); // cheap
        const QList<CleanupNote> kept = rig.cleaner->report().kept;
        QCOMPARE(kept, (QList<CleanupNote>{{QFile::decodeName(rig.native(u"cache/browser"_s)),
                                            u"里面有保留的内容（你排除的条目）"_s}}));
        rig.cleaner->details().setIncluded(u"browser"_s, rig.native(u"cache/browser/dear"_s), true);
        QCOMPARE(rig.cleaned({u"caches"_s, u"browser"_s}), QStringList{hidden});
    }

    void aLinkIntoAnotherItemDoesNotHideWhatStays()
    {
        Rig rig;
        rig.put({u"real/browser/mine/file"_s, u"real/browser/other"_s});
        QVERIFY(QFile::link(rig.path(u"real"_s), rig.path(u"cache"_s)));
        QVERIFY(rig.add(rig.path(u"real/browser/mine"_s)));
        rig.finish();
        QCOMPARE(rig.cleaned({u"browser"_s}), QStringList{u"real/browser/mine/file"_s});
    }

    void aFolderThatIsALinkIsLeftAlone()
    {
        Rig rig;
        const QStringList letter{u"documents/letter"_s};
        rig.put(letter);
        QVERIFY(QFile::link(rig.path(u"documents"_s), rig.path(u"cache"_s)));
        rig.usage.sizes = {{rig.native(u"documents"_s), 5000}};
        const QString told = u"是一个链接，指向 %1，不会清理；要清理那里，请把它添加为自定义文件夹"_s.arg(
            QFile::decodeName(rig.native(u"documents"_s)));
        QCOMPARE(rig.cleaned({u"caches"_s}), letter);
        QCOMPARE(rig.cleaner->report().removal.problems.value(0).reason, told);
        QTRY_COMPARE((rig.clock.advance(50ms), rig.sizeOf(u"caches"_s)), u"无数据"_s);
        rig.cleaner->details().open(u"caches"_s);
        QTRY_COMPARE(rig.cleaner->details().contents().value(u"caches"_s).problem, told);
        QVERIFY(errorText(rig.add(rig.path(u"cache"_s))).startsWith(u"这是一个链接"_s));
    }

    void onlyWhatGoesIsCounted()
    {
        Rig rig;
        rig.put({u"cache/browser/page"_s, u"cache/browser/dear"_s, u"cache/loose"_s, u"cache/.git/x"_s,
                 u"cache/ide/history"_s});
        rig.spared = {rig.path(u"cache/ide"_s)};
        rig.usage.sizes = {{rig.native(u"cache"_s), 10'000},
                           {rig.native(u"cache/browser"_s), 4000},
                           {rig.native(u"cache/browser/dear"_s), 500},
                           {rig.native(u"cache/.git"_s), 1000},
                           {rig.native(u"cache/ide"_s), 2000}};
        SystemCleaner &cleaner = rig.make();
        cleaner.details().setIncluded(u"browser"_s, rig.native(u"cache/browser/dear"_s), false);
        cleaner.setAllSelected(false);
        const auto selectedBytes = [&](const QStringList &ids) {
            for (const QString &id : {u"caches"_s, u"browser"_s})
                cleaner.setSelected(id, ids.contains(id));
            return cleaner.selectedBytes();
        };
        cleaner.recalculate();
        rig.finish();
        QCOMPARE(selectedBytes({u"browser"_s}), 4000 - 500);
        QCOMPARE(selectedBytes({u"caches"_s}), 10'000 - 4000 - 1000 - 2000);
        // The folder of the excluded entry stays when the outer item is cleaned; the inner one empties it.
        QCOMPARE(selectedBytes({u"caches"_s, u"browser"_s}), 10'000 - 500 - 1000 - 2000);
        QCOMPARE(rig.cleaned({u"caches"_s}), (QStringList{u"cache/.git/x"_s, u"cache/browser/dear"_s,
                                                          u"cache/browser/page"_s, u"cache/ide/history"_s}));
    }

    void whatAPatternsOwnersUseStays()
    {
        Rig rig;
        rig.put({u"app/org.velb.Busy/cache/a"_s, u"app/org.velb.Idle/cache/b"_s});
        rig.programs.names = {u"org.velb.Busy"_s};
        CleanupRule apps;
        apps.item = {u"apps"_s, u"apps"_s, u"trash"_s, {}, true, u"计算中…"_s, {}};
        apps.target = {u"apps"_s, u"apps"_s, rig.path(u"app/*/cache"_s), {}, false};
        apps.folderOwner = u"%1"_s;
        SystemCleaner cleaner({rig.usage, rig.trash, rig.admin, rig.programs}, rig.store, rig.clock, {apps},
                              {});
        cleaner.clean();
        QTRY_VERIFY((rig.clock.advance(50ms), !cleaner.isWorking()));
        QCOMPARE(filesBelow(rig.home.path()), QStringList{u"app/org.velb.Busy/cache/a"_s});
        QCOMPARE(cleaner.report().skipped, QStringList{u"apps（org.velb.Busy）"_s});
    }

    void onlyWhatIsSurelyOldIsListedAndCounted()
    {
        Rig rig;
        rig.put({u"tmp/file"_s});
        CleanupRule temporary;
        temporary.item = {u"temp"_s, u"temp"_s, u"trash"_s, {}, true, u"计算中…"_s, {}};
        temporary.target = {u"temp"_s, u"temp"_s, rig.path(u"tmp"_s), {}, false};
        temporary.onlyOldOwnFiles = true;
        // The program was running shortly before the file was made: a year has hardly passed.
        const QDateTime made = QFileInfo(rig.path(u"tmp/file"_s)).lastModified();
        rig.store.set(SeenTime::key, QJsonArray{made.addSecs(-3600).toSecsSinceEpoch()});
        VirtualClock jumped(made.addYears(1));
        SystemCleaner cleaner({rig.usage, rig.trash, rig.admin, rig.programs}, rig.store, jumped, {temporary},
                              {});
        for (const bool isOld : {false, true}) {
            cleaner.details().open(u"temp"_s);
            QTRY_VERIFY(!cleaner.details().contents().value(u"temp"_s).isMeasuring);
            const CleanupContents contents = cleaner.details().contents().value(u"temp"_s);
            QCOMPARE(contents.entries.size(), isOld ? 1 : 0);
            QCOMPARE(contents.note.isEmpty(), isOld);
            cleaner.clean();
            QTRY_VERIFY((jumped.advance(50ms), !cleaner.isWorking()));
            QCOMPARE(cleaner.report().outcome.cleanedCount, isOld ? 1 : 0);
            jumped.advance(24h);
            cleaner.details().close(u"temp"_s);
        }
        QVERIFY(!QFileInfo::exists(rig.path(u"tmp/file"_s)));
    }

    void linksLaidByOthersAreNotFollowed()
    {
        Rig rig;
        rig.put({u"app/honest/cache/file"_s, u"documents/letter"_s, u"app/hostile/data"_s});
        QVERIFY(QFile::link(rig.path(u"documents"_s), rig.path(u"app/hostile/cache"_s)));
        CleanupRule apps;
        apps.item = {u"apps"_s, u"apps"_s, u"trash"_s, {}, true, u"计算中…"_s, {}};
        apps.target = {u"apps"_s, u"apps"_s, rig.path(u"app/*/cache"_s), {}, false};
        SystemCleaner cleaner({rig.usage, rig.trash, rig.admin, rig.programs}, rig.store, rig.clock, {apps},
                              {});
        cleaner.clean();
        QTRY_VERIFY((rig.clock.advance(50ms), !cleaner.isWorking()));
        QCOMPARE(filesBelow(rig.home.path()), (QStringList{u"app/hostile/data"_s, u"documents/letter"_s}));
    }

    void whatIsItsOwnStays()
    {
        Rig rig;
        rig.put({u"cache/velbrix/endpoint"_s, u"elsewhere/dear"_s});
        QVERIFY(QFile::link(rig.path(u"elsewhere"_s), rig.path(u"cache/link"_s)));
        const QStringList kept{u"cache/velbrix/endpoint"_s, u"elsewhere/dear"_s};
        rig.make({rig.native(u"cache/velbrix"_s)});
        QCOMPARE(rig.cleaned({u"caches"_s}), kept);
        QVERIFY(!QFileInfo(rig.path(u"cache/link"_s)).isSymLink());
        QCOMPARE(rig.cleaner->report().removal.problemCount, 1);
        rig.make({rig.native(u"cache"_s)});
        QCOMPARE(rig.cleaned({u"caches"_s, u"browser"_s}), kept);
        QCOMPARE(rig.cleaner->report().removal.problems,
                 (QList<RemovalProblem>{{QFile::encodeName(rig.path(u"cache"_s)), u"是受保护的位置"_s}}));
    }

    void aRunningOwnersItemIsSkipped()
    {
        Rig rig;
        rig.put({u"cache/browser/page"_s});
        rig.programs.names = {u"browser"_s};
        QCOMPARE(rig.cleaned({u"caches"_s, u"browser"_s}), QStringList{u"cache/browser/page"_s});
        QCOMPARE(rig.cleaner->busyItems(), QStringList{u"browser"_s});
        QCOMPARE(rig.cleaner->report().skipped, QStringList{u"browser"_s});

        rig.cleaner->clean({u"browser"_s});
        rig.finish();
        QCOMPARE(rig.cleaner->phase(), CleanupPhase::failed(u"所选项目的应用正在运行，没有清理"_s));
        rig.cleaner->setForced(u"browser"_s, true);
        QCOMPARE(rig.cleaned({u"browser"_s}), QStringList());
        // Started while another item is cleaned.
        rig.make();
        rig.put({u"cache/browser/page"_s, u"cache/other"_s});
        rig.programs.names.clear();
        rig.cleaner->clean({u"caches"_s, u"browser"_s});
        QTRY_VERIFY(!QFileInfo::exists(rig.path(u"cache/other"_s)));
        rig.programs.names = {u"browser"_s};
        rig.finish();
        QCOMPARE(rig.cleaner->report().skipped, QStringList{u"browser"_s});
    }

    void removalsThatFailAreTold()
    {
        Rig rig;
        rig.trash.emptyAnswer = failure(u"磁盘只读"_s);
        const auto prompt = [&](const Result<ProcessOutcome> &answer) {
            rig.admin.answer = [=](const QString &) { return answer; };
            rig.cleaned({u"trash"_s, u"mark"_s, u"dns"_s});
            return reportLines(rig.cleaner->report());
        };
        const QStringList lines = {u"已执行，释放的空间无法测量：mark"_s, u"trash没有成功：磁盘只读"_s};
        QCOMPARE(prompt(failure(u"没有得到管理员授权"_s)),
                 lines + QStringList{u"dns没有成功：没有得到管理员授权"_s});
        QCOMPARE(resultText(rig.cleaner->report()), u"部分项目没有清理成功，处理了 1 个项目"_s);
        // The phase counts them all the same, as every item is.
        QCOMPARE(rig.cleaner->report().outcome, CleanupPhase::done(3, 0));
        QCOMPARE(prompt(ProcessOutcome{.exitCode = 5, .output = {}, .errorOutput = "warned\nE: locked\n"}),
                 lines + QStringList{u"dns没有成功：E: locked"_s});
        rig.cleaned({u"dns"_s});
        QCOMPARE(resultText(rig.cleaner->report()), u"没有清理成功"_s);
    }

    void cleansOnceAtATimeAndStopsBetweenItems()
    {
        Rig rig;
        rig.put({u"cache/a"_s});
        rig.admin.delay = 10s;
        rig.cleaner->clean({u"dns"_s, u"caches"_s});
        QTRY_VERIFY((rig.clock.advance(50ms), rig.admin.lines.size() == 1));
        rig.cleaner->recalculate();
        rig.cleaner->clean({u"trash"_s});
        rig.cleaner->cancel();
        rig.clock.advance(10s);
        rig.finish();
        QVERIFY(rig.cleaner->report().wasCancelled && rig.trash.calls.isEmpty());
        QVERIFY(resultText(rig.cleaner->report()).startsWith(u"清理已取消，处理了 1 个项目"_s));
    }

    void details()
    {
        Rig rig;
        rig.put({u"cache/small"_s, u"cache/large"_s, u"cache/.hidden"_s});
        rig.usage.sizes = {{rig.native(u"cache/large"_s), 900}, {rig.native(u"cache/small"_s), 1}};
        CleanupDetails &details = rig.cleaner->details();
        QVERIFY(details.canOpen(u"caches"_s) && details.canOpen(u"trash"_s) && !details.canOpen(u"dns"_s));
        details.open(u"caches"_s);
        QVERIFY(details.contents().value(u"caches"_s).isMeasuring);
        QTRY_VERIFY(!details.contents().value(u"caches"_s).isMeasuring);
        const CleanupContents contents = details.contents().value(u"caches"_s);
        QCOMPARE(contents.entries.size(), 2);
        QCOMPARE(contents.entries[0].name, u"large"_s); // the largest first
        // What is missing is empty.
        details.open(u"browser"_s);
        QTRY_VERIFY(!details.contents().value(u"browser"_s).isMeasuring);
        QCOMPARE(details.contents().value(u"browser"_s), CleanupContents());
        // Whoever asks sees what is there now; the opened row, what it was.
        rig.put({u"cache/new"_s});
        std::optional<CleanupContents> now;
        details.look(u"caches"_s, {}).then([&](CleanupContents found) { now = found; });
        QTRY_VERIFY(now);
        QCOMPARE(now->entries.size(), 3);
        QCOMPARE(details.contents().value(u"caches"_s).entries.size(), 2);
        // What is in the trash goes together.
        writeFile(rig.trash.folders().first() + u"/thrown"_s);
        details.open(u"trash"_s);
        QTRY_VERIFY(!details.contents().value(u"trash"_s).isMeasuring);
        QVERIFY(details.contents().value(u"trash"_s).entries.value(0).isFixed);
    }
};

QTEST_GUILESS_MAIN(SystemCleanerTest)
#include "SystemCleanerTest.moc"
