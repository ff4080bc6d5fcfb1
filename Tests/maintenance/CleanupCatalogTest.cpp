#include "maintenance/cleanup/CleanupCatalog.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace velbrix;

class CleanupCatalogTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void macTable_data();
    void macTable();
    void macOrder();
    void bothTablesHoldTogether_data();
    void bothTablesHoldTogether();
    void foldersFollowTheUser();
    void homeIsNoCache();
    void patterns();
};

namespace {

const CleanupRule &ruleOf(const QList<CleanupRule> &rules, const QString &id)
{
    return *std::ranges::find(rules, id, [](const CleanupRule &rule) { return rule.item.id; });
}

} // namespace

void CleanupCatalogTest::macTable_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("target"); // folder or command
    QTest::addColumn<bool>("admin");

    const auto row = [](const char *id, const QString &name, const QString &icon, const QString &description,
                        const QString &target, bool admin = false) {
        QTest::newRow(id) << name << icon << description << target << admin;
    };
    row("user-caches", u"用户缓存"_s, u"archivebox"_s, u"~/Library/Caches — 应用缓存数据"_s,
        u"/h/Library/Caches"_s);
    row("system-caches", u"系统缓存"_s, u"gearshape.2"_s, u"/Library/Caches — 系统级缓存"_s,
        u"/Library/Caches"_s);
    row("trash", u"废纸篓"_s, u"trash"_s, u"~/.Trash — 清空废纸篓"_s, u"/h/.Trash"_s);
    row("temp-files", u"临时文件"_s, u"folder.badge.gearshape"_s, u"/tmp、/var/tmp — 系统临时文件"_s,
        u"rm -rf /tmp/* /var/tmp/* 2>/dev/null; true"_s);
    row("xcode-devicesupport", u"Xcode DeviceSupport"_s, u"iphone.gen2"_s,
        u"~/Library/Developer/Xcode/iOS DeviceSupport — 旧版系统调试符号"_s,
        u"/h/Library/Developer/Xcode/iOS DeviceSupport"_s);
    row("xcode-coreSimulator", u"Xcode 模拟器"_s, u"ipad.landscape"_s,
        u"~/Library/Developer/CoreSimulator/Caches — 模拟器缓存"_s,
        u"/h/Library/Developer/CoreSimulator/Caches"_s);
    row("vscode-extcache", u"VS Code 扩展缓存"_s, u"puzzlepiece.extension"_s,
        u"~/Library/Application Support/Code/CachedExtensionVSIXs — 已安装扩展原始包"_s,
        u"/h/Library/Application Support/Code/CachedExtensionVSIXs"_s);
    row("safari-webdata", u"Safari 网站数据"_s, u"doc.text.magnifyingglass"_s,
        u"~/Library/Safari/LocalStorage + Databases — 站点本地存储"_s,
        u"rm -rf \"/h/Library/Safari/LocalStorage\"/* \"/h/Library/Safari/Databases\"/* 2>/dev/null; true"_s);
    row("dns-cache", u"DNS 缓存"_s, u"network"_s, u"刷新 DNS 缓存（需管理员权限）"_s,
        u"dscacheutil -flushcache && killall -HUP mDNSResponder 2>/dev/null; true"_s, true);
    row("memory-cache", u"内存缓存"_s, u"memorychip"_s, u"清理 inactive 内存（purge 命令，需管理员权限）"_s,
        u"purge 2>/dev/null; true"_s, true);
}

void CleanupCatalogTest::macTable()
{
    const QList<CleanupRule> rules = macCleanupCatalog(u"/h"_s);
    const CleanupRule &rule = ruleOf(rules, QString::fromLatin1(QTest::currentDataTag()));
    QFETCH(QString, name);
    QFETCH(bool, admin);
    QCOMPARE(rule.item.name, name);
    QCOMPARE(rule.target.name, name);
    QTEST(rule.item.icon, "icon");
    QTEST(rule.item.description, "description");
    QTEST(rule.target.path.value_or(QString()) + rule.target.command.value_or(QString()), "target");
    QCOMPARE(rule.target.requiresAdmin, admin);
    QCOMPARE(rule.item.isSelected, !admin);
    QCOMPARE(rule.item.estimatedSize, u"计算中…"_s);
}

void CleanupCatalogTest::macOrder()
{
    QStringList ids;
    for (const CleanupRule &rule : macCleanupCatalog(u"/h"_s))
        ids.append(rule.item.id);
    QCOMPARE(ids.join(u' '),
             u"user-caches system-caches logs trash temp-files xcode-derived xcode-archives "
             "xcode-devicesupport xcode-coreSimulator xcode-watchOS cocoapods swiftpm chrome-cache "
             "vscode-cachedata vscode-extcache safari-caches safari-webdata dns-cache memory-cache"_s);
}

void CleanupCatalogTest::bothTablesHoldTogether_data()
{
    QTest::addColumn<bool>("mac");
    QTest::newRow("macOS") << true;
    QTest::newRow("freedesktop") << false;
}

void CleanupCatalogTest::bothTablesHoldTogether()
{
    QFETCH(bool, mac);
    const auto rules = mac ? macCleanupCatalog(u"/h"_s)
                           : freedesktopCleanupCatalog({u"/h"_s, u"/h/c"_s, u"/h/k"_s, u"/h/d"_s});
    QSet<QString> ids;
    for (const CleanupRule &rule : rules) {
        QVERIFY2(!ids.contains(rule.item.id), qPrintable(rule.item.id));
        ids.insert(rule.item.id);
        QCOMPARE(rule.target.id, rule.item.id);
        QVERIFY(rule.target.path.has_value() != rule.target.command.has_value());
        QCOMPARE(rule.group == CleanupGroup::advanced, rule.target.requiresAdmin);
        QCOMPARE(rule.item.isSelected, !rule.target.requiresAdmin);
        if (rule.target.command) {
            QVERIFY(rule.target.command->endsWith(u"2>/dev/null; true"));
            QVERIFY(!rule.target.requiresAdmin || !rule.target.command->contains(u'"'));
        }
    }
}

void CleanupCatalogTest::foldersFollowTheUser()
{
    const auto rules = freedesktopCleanupCatalog({u"/h"_s, u"/h/.config"_s, u"/h/.cache"_s, u"/data"_s});
    const CleanupRule &code = ruleOf(rules, u"vscode-cachedata"_s);
    QCOMPARE(*code.target.path, u"/h/.config/Code/CachedData"_s);
    QCOMPARE(code.item.description, u"~/.config/Code/CachedData — VS Code 编辑器缓存"_s);
    QCOMPARE(ruleOf(rules, u"logs"_s).item.description, u"/data/xorg — 图形会话的日志"_s);
    const CleanupRule &temporary = ruleOf(rules, u"temp-files"_s);
    QVERIFY(temporary.onlyOldOwnFiles);
    QCOMPARE(temporary.measured, QStringList());
}

void CleanupCatalogTest::homeIsNoCache()
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

void CleanupCatalogTest::patterns()
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

QTEST_GUILESS_MAIN(CleanupCatalogTest)
#include "CleanupCatalogTest.moc"
