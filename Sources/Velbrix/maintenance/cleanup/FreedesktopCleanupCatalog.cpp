#include "maintenance/cleanup/CleanupCatalog.h"

#include "foundation/Paths.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// One line of the table: where it is below its base, and what it holds.
struct Place {
    CleanupGroup group;
    QString id;
    QString name;
    QString icon;
    QString path;
    QString purpose;
    QStringList owners = {};
};

CleanupRule ruleOf(const QString &home, const Place &place)
{
    const QString description = shortenedPath(place.path, home) + u" — "_s + place.purpose;
    return {{place.id, place.name, place.icon, description, true, u"计算中…"_s, {}},
            place.group,
            {place.id, place.name, place.path, {}, false},
            {place.path},
            place.owners};
}

CleanupRule commandRule(CleanupGroup group, const QString &id, const QString &name, const QString &icon,
                        const QString &description, const QString &program, const QString &line,
                        bool requiresAdmin)
{
    CleanupRule rule;
    rule.item = {id, name, icon, description, !requiresAdmin, u"计算中…"_s, {}};
    rule.group = group;
    rule.target = {id, name, {}, line, requiresAdmin};
    rule.program = program;
    return rule;
}

CleanupRule ownedByName(CleanupRule rule, const QString &owner)
{
    rule.folderOwner = owner;
    return rule;
}

QList<CleanupRule> systemRules(const UserFolders &folders)
{
    constexpr auto group = CleanupGroup::system;
    CleanupRule temporary = ruleOf(
        folders.home, {group, u"temp-files"_s, u"临时文件"_s, u"folder.badge.gearshape"_s, u"/tmp"_s, {}});
    temporary.item.description = u"/tmp、/var/tmp — 属于你且超过 24 小时未改动的临时文件"_s;
    temporary.furtherPaths = {u"/var/tmp"_s};
    temporary.measured = {};
    temporary.onlyOldOwnFiles = true;
    CleanupRule caches = ruleOf(folders.home, {group, u"user-caches"_s, u"用户缓存"_s, u"archivebox"_s,
                                               folders.cache, u"应用缓存数据"_s});
    caches.sparedPaths = localHistories(folders.cache);
    CleanupRule logs = ruleOf(
        folders.home,
        {group, u"logs"_s, u"日志文件"_s, u"doc.text.magnifyingglass"_s, folders.data + u"/xorg"_s, {}});
    logs.item.description = u"图形会话和常见应用的日志；系统与用户的 journal 见「系统日志」"_s;
    // By name: what is called "logs" elsewhere may be somebody's conversations.
    logs.furtherPaths = {folders.data + u"/sddm"_s, folders.config + u"/Code/logs"_s,
                         folders.config + u"/Slack/logs"_s, folders.data + u"/Steam/logs"_s};
    logs.measured += logs.furtherPaths;
    return {
        caches,
        ruleOf(folders.home, {group, u"thumbnails"_s, u"缩略图缓存"_s, u"photo"_s,
                              folders.cache + u"/thumbnails"_s, u"文件管理器的预览图"_s}),
        logs,
        ruleOf(folders.home,
               {group, trashItemId, u"废纸篓"_s, u"trash"_s, folders.data + u"/Trash"_s, u"清空废纸篓"_s}),
        temporary,
    };
}

QList<CleanupRule> developmentRules(const UserFolders &folders)
{
    constexpr auto group = CleanupGroup::development;
    return {
        ruleOf(folders.home, {group,
                              u"ccache"_s,
                              u"ccache 编译缓存"_s,
                              u"hammer"_s,
                              folders.cache + u"/ccache"_s,
                              u"C/C++ 编译结果"_s,
                              {u"ccache"_s}}),
        ruleOf(folders.home, {group,
                              u"go-build"_s,
                              u"Go 编译缓存"_s,
                              u"hammer"_s,
                              folders.cache + u"/go-build"_s,
                              u"Go 编译结果"_s,
                              {u"go"_s}}),
        ruleOf(folders.home, {group, u"gradle"_s, u"Gradle 缓存"_s, u"hammer"_s,
                              folders.home + u"/.gradle/caches"_s, u"构建与依赖缓存"_s}),
    };
}

QList<CleanupRule> packageRules(const UserFolders &folders)
{
    constexpr auto group = CleanupGroup::packages;
    return {
        ruleOf(folders.home, {group,
                              u"npm"_s,
                              u"npm 缓存"_s,
                              u"shippingbox"_s,
                              folders.home + u"/.npm/_cacache"_s,
                              u"Node.js 包下载缓存"_s,
                              {u"npm"_s}}),
        ruleOf(folders.home, {group, u"npm-logs"_s, u"npm 日志"_s, u"doc.text.magnifyingglass"_s,
                              folders.home + u"/.npm/_logs"_s, u"npm 运行日志"_s}),
        ruleOf(folders.home, {group, u"yarn"_s, u"Yarn 缓存"_s, u"shippingbox"_s, folders.cache + u"/yarn"_s,
                              u"Node.js 包下载缓存"_s}),
        ruleOf(folders.home, {group,
                              u"pip"_s,
                              u"pip 缓存"_s,
                              u"cube.box"_s,
                              folders.cache + u"/pip"_s,
                              u"Python 包下载缓存"_s,
                              {u"pip"_s, u"pip3"_s}}),
        ruleOf(folders.home, {group,
                              u"cargo"_s,
                              u"Cargo 缓存"_s,
                              u"shippingbox"_s,
                              folders.home + u"/.cargo/registry/cache"_s,
                              u"Rust 包下载缓存"_s,
                              {u"cargo"_s}}),
        ruleOf(folders.home, {group,
                              u"go-modules"_s,
                              u"Go 模块下载"_s,
                              u"shippingbox"_s,
                              folders.home + u"/go/pkg/mod/cache/download"_s,
                              u"Go 模块下载缓存"_s,
                              {u"go"_s}}),
        ownedByName(ruleOf(folders.home, {group, u"flatpak-caches"_s, u"Flatpak 应用缓存"_s, u"cube.box"_s,
                                          folders.home + u"/.var/app/*/cache"_s, u"各 Flatpak 应用的缓存"_s}),
                    u"%1"_s),
        commandRule(group, u"flatpak-unused"_s, u"Flatpak 闲置运行时"_s, u"cube.box"_s,
                    u"flatpak uninstall --unused — 没有应用使用的运行时"_s, u"flatpak"_s,
                    u"flatpak uninstall --user --unused -y --noninteractive"_s, false),
        ownedByName(
            ruleOf(folders.home, {group, u"snap-caches"_s, u"Snap 应用缓存"_s, u"cube.box"_s,
                                  folders.home + u"/snap/*/common/.cache"_s, u"各 Snap 应用的缓存"_s}),
            u"snap.%1"_s),
    };
}

QList<CleanupRule> applicationRules(const UserFolders &folders)
{
    const QString code = folders.config + u"/Code"_s;
    const QStringList codeRuns = {u"code"_s, u"codium"_s};
    const QString programs = folders.cache + u"/JetBrains/*"_s;
    CleanupRule jetbrains = ruleOf(folders.home, {CleanupGroup::editors,
                                                  u"jetbrains"_s,
                                                  u"JetBrains 缓存"_s,
                                                  u"puzzlepiece.extension"_s,
                                                  programs + u"/index"_s,
                                                  u"索引和日志；本地历史保留"_s,
                                                  {u"idea"_s, u"pycharm"_s, u"clion"_s, u"goland"_s,
                                                   u"webstorm"_s, u"rider"_s, u"phpstorm"_s}});
    jetbrains.furtherPaths = {programs + u"/jcef_cache"_s, programs + u"/log"_s};
    jetbrains.measured += jetbrains.furtherPaths;
    return {
        ruleOf(folders.home, {CleanupGroup::browsers,
                              u"chrome-cache"_s,
                              u"Chrome 浏览器缓存"_s,
                              u"globe"_s,
                              folders.cache + u"/google-chrome"_s,
                              u"Chrome 网页缓存"_s,
                              {u"chrome"_s, u"google-chrome"_s}}),
        ruleOf(folders.home, {CleanupGroup::browsers,
                              u"chromium-cache"_s,
                              u"Chromium 浏览器缓存"_s,
                              u"globe"_s,
                              folders.cache + u"/chromium"_s,
                              u"Chromium 网页缓存"_s,
                              {u"chromium"_s, u"chromium-browser"_s}}),
        ruleOf(folders.home, {CleanupGroup::browsers,
                              u"firefox-cache"_s,
                              u"Firefox 浏览器缓存"_s,
                              u"globe"_s,
                              folders.cache + u"/mozilla/firefox"_s,
                              u"Firefox 网页缓存"_s,
                              {u"firefox"_s, u"firefox-esr"_s, u"firefox-bin"_s}}),
        ruleOf(folders.home, {CleanupGroup::browsers,
                              u"edge-cache"_s,
                              u"Edge 浏览器缓存"_s,
                              u"globe"_s,
                              folders.cache + u"/microsoft-edge"_s,
                              u"Edge 网页缓存"_s,
                              {u"msedge"_s, u"microsoft-edge"_s}}),
        ruleOf(folders.home, {CleanupGroup::editors, u"vscode-cachedata"_s, u"VS Code 缓存数据"_s,
                              u"chevron.left.forwardslash.chevron.right"_s, code + u"/CachedData"_s,
                              u"VS Code 编辑器缓存"_s, codeRuns}),
        ruleOf(folders.home, {CleanupGroup::editors, u"vscode-extcache"_s, u"VS Code 扩展缓存"_s,
                              u"puzzlepiece.extension"_s, code + u"/CachedExtensionVSIXs"_s,
                              u"已安装扩展原始包"_s, codeRuns}),
        ownedByName(jetbrains, u"%1"_s),
    };
}

// Of a snap that is in use, for that of a disabled one all revisions are told
// to be so; the notes stand in the last column, in a list of their own.
const QString oldSnapRevisions =
    u"snap list --all | awk '{ if ($NF ~ /(^|,)disabled(,|$)/) old[++count] = $1 FS $3; else used[$1] = 1 } "
    "END { for (i = 1; i <= count; i++) { split(old[i], part); if (part[1] in used) print old[i] } }' | "
    "{ failed=0; while read name revision; do snap remove $name --revision=$revision || failed=1; done; "
    "exit $failed; }"_s;

// Administrator commands hold no double quotes: they are the same on every
// host, and one of them puts the line into quotes.
QList<CleanupRule> advancedRules()
{
    constexpr auto group = CleanupGroup::advanced;
    CleanupRule apt = commandRule(group, u"apt-cache"_s, u"APT 软件包缓存"_s, u"shippingbox"_s,
                                  u"/var/cache/apt/archives — 已下载的安装包（需管理员权限）"_s, u"apt-get"_s,
                                  u"apt-get clean"_s, true);
    apt.measured = {u"/var/cache/apt/archives"_s};
    CleanupRule journal = commandRule(group, u"journal"_s, u"系统日志"_s, u"doc.text.magnifyingglass"_s,
                                      u"/var/log/journal — 系统和用户 7 天以前的日志（需管理员权限）"_s,
                                      u"journalctl"_s, u"journalctl --rotate --vacuum-time=7d"_s, true);
    journal.measured = {u"/var/log/journal"_s};
    journal.takesPart = true;
    return {
        apt,
        commandRule(group, u"snap-revisions"_s, u"Snap 旧版本"_s, u"shippingbox"_s,
                    u"snap remove --revision — 已停用的旧版本（需管理员权限）"_s, u"snap"_s, oldSnapRevisions,
                    true),
        journal,
        commandRule(group, u"dns-cache"_s, u"DNS 缓存"_s, u"network"_s, u"刷新 DNS 缓存（需管理员权限）"_s,
                    u"resolvectl"_s, u"resolvectl flush-caches"_s, true),
        commandRule(group, u"memory-cache"_s, u"内存缓存"_s, u"memorychip"_s,
                    u"释放文件缓存占用的内存（需管理员权限）"_s, u"pkexec"_s,
                    u"sync; echo 3 > /proc/sys/vm/drop_caches"_s, true),
    };
}

} // namespace

QList<CleanupRule> freedesktopCleanupCatalog(const UserFolders &folders)
{
    return systemRules(folders) + developmentRules(folders) + packageRules(folders) +
           applicationRules(folders) + advancedRules();
}

} // namespace velbrix
