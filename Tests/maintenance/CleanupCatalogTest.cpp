#include "maintenance/cleanup/CleanupCatalog.h"
#include "support/Test.h"

#include <QProcess>

namespace {

const CleanupRule &ruleOf(const QList<CleanupRule> &rules, const QString &id)
{
    return *std::ranges::find(rules, id, [](const CleanupRule &rule) { return rule.item.id; });
}

} // namespace

class CleanupCatalogTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bothTablesHoldTogether()
    {
        for (const auto &rules : {macCleanupCatalog(u"/h"_s),
                                  freedesktopCleanupCatalog({u"/h"_s, u"/h/c"_s, u"/h/k"_s, u"/h/d"_s})}) {
            QSet<QString> ids;
            for (const CleanupRule &rule : rules) {
                QVERIFY2(!ids.contains(rule.item.id), qPrintable(rule.item.id));
                ids.insert(rule.item.id);
                QCOMPARE(rule.target.id, rule.item.id);
                QVERIFY(rule.target.path.has_value() != rule.target.command.has_value());
                QCOMPARE(rule.group == CleanupGroup::advanced, rule.target.requiresAdmin);
                QCOMPARE(rule.item.isSelected, !rule.target.requiresAdmin);
                const QString command = rule.target.command.value_or(QString());
                QVERIFY(!rule.target.requiresAdmin || !command.contains(u'"'));
            }
        }
    }

    void foldersFollowTheUser()
    {
        const auto rules = freedesktopCleanupCatalog({u"/h"_s, u"/h/.config"_s, u"/h/.cache"_s, u"/data"_s});
        const CleanupRule &code = ruleOf(rules, u"vscode-cachedata"_s);
        QCOMPARE(*code.target.path, u"/h/.config/Code/CachedData"_s);
        QVERIFY(code.item.description.startsWith(u"~/.config/Code/CachedData — "_s));
        const CleanupRule &temporary = ruleOf(rules, u"temp-files"_s);
        QVERIFY(temporary.onlyOldOwnFiles);
        QVERIFY(ruleOf(rules, u"user-caches"_s).sparedPaths.contains(u"/h/.cache/JetBrains"_s));
        QCOMPARE(ownerOf(u"/h/.cache/JetBrains/Idea1/index"_s, ruleOf(rules, u"jetbrains"_s)), u"Idea1"_s);
        QCOMPARE(ownerOf(u"/h/snap/code/common/.cache"_s, ruleOf(rules, u"snap-caches"_s)), u"snap.code"_s);
        QCOMPARE(ownerOf(u"/h/.npm/_cacache"_s, ruleOf(rules, u"npm"_s)), QString());
        QCOMPARE(temporary.measured, QStringList());
    }

    void onlyReplacedSnapRevisionsGo()
    {
        const QTemporaryDir folder;
        standIn(folder.filePath(u"snap"_s), R"(#!/bin/sh
case $1 in
list) echo 'Name        Version   Rev  Tracking       Publisher    Notes
core        16-2      100  latest/stable  canonical✓   core,disabled
core        16-3      101  latest/stable  canonical✓   core
disabled    disabled  7    disabled       disabled     -
paused      1.0       1    latest/stable  somebody     disabled
paused      1.1       2    latest/stable  somebody     disabled,classic
local       -         x1   -              -            disabled
local       -         x2   -              -            classic' ;;
remove) echo "$2 $3" >>"$(dirname "$0")/removed" ;;
esac
)");
        const auto rules = freedesktopCleanupCatalog({u"/h"_s, u"/h/c"_s, u"/h/k"_s, u"/h/d"_s});
        const QString line = *ruleOf(rules, u"snap-revisions"_s).target.command;
        QCOMPARE(QProcess::execute(u"env"_s,
                                   {u"PATH=%1:/usr/bin:/bin"_s.arg(folder.path()), u"sh"_s, u"-c"_s, line}),
                 0);
        QCOMPARE(readFile(folder.filePath(u"removed"_s)), "core --revision=100\nlocal --revision=x1\n");
    }

    void homeIsNoCache()
    {
        const QTemporaryDir elsewhere;
        qputenv("XDG_CACHE_HOME", QFile::encodeName(elsewhere.path()));
        if (UserFolders::ofThisUser().cache != elsewhere.path())
            QSKIP("folders do not follow the environment here");
        qputenv("XDG_CACHE_HOME", QFile::encodeName(QDir::homePath() + u"/."_s));
        qputenv("XDG_CONFIG_HOME", "/");
        QCOMPARE(UserFolders::ofThisUser().cache, QDir::homePath() + u"/.cache"_s);
        QCOMPARE(UserFolders::ofThisUser().config, QDir::homePath() + u"/.config"_s);
        qunsetenv("XDG_CACHE_HOME");
        qunsetenv("XDG_CONFIG_HOME");
    }

    void patterns()
    {
        const QTemporaryDir home;
        const QDir folder(home.path());
        for (const char *path : {"app/b/cache", "app/a/cache", "app/none", "elsewhere/cache"})
            QVERIFY(folder.mkpath(QString::fromLatin1(path)));
        QVERIFY(QFile::link(folder.filePath(u"elsewhere"_s), folder.filePath(u"app/link"_s)));
        QVERIFY(QFile::link(folder.filePath(u"elsewhere/cache"_s), folder.filePath(u"app/none/cache"_s)));
        QCOMPARE(matchingFolders(folder.filePath(u"app/*/cache"_s)),
                 QStringList({folder.filePath(u"app/a/cache"_s), folder.filePath(u"app/b/cache"_s)}));
        QCOMPARE(matchingFolders(u"/plain"_s), QStringList{u"/plain"_s});
    }
};

QTEST_GUILESS_MAIN(CleanupCatalogTest)
#include "CleanupCatalogTest.moc"
