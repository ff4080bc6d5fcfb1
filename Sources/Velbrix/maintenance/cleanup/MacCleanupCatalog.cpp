#include "maintenance/cleanup/CleanupCatalog.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

CleanupRule folder(CleanupGroup group, const QString &id, const QString &name, const QString &icon,
                   const QString &description, const QString &path, const QStringList &owners = {})
{
    return {{id, name, icon, description, true, u"计算中…"_s, {}},
            group,
            {id, name, path, {}, false},
            {path},
            owners};
}

CleanupRule command(CleanupGroup group, const QString &id, const QString &name, const QString &icon,
                    const QString &description, const QString &line, bool requiresAdmin)
{
    return {{id, name, icon, description, !requiresAdmin, u"计算中…"_s, {}},
            group,
            {id, name, {}, line, requiresAdmin},
            {}};
}

QList<CleanupRule> systemRules(const QString &home)
{
    constexpr auto group = CleanupGroup::system;
    CleanupRule caches = folder(group, u"user-caches"_s, u"用户缓存"_s, u"archivebox"_s,
                                u"~/Library/Caches — 应用缓存数据"_s, home + u"/Library/Caches"_s);
    caches.sparedPaths = localHistories(home + u"/Library/Caches"_s);
    return {
        caches,
        folder(group, u"system-caches"_s, u"系统缓存"_s, u"gearshape.2"_s, u"/Library/Caches — 系统级缓存"_s,
               u"/Library/Caches"_s),
        folder(group, u"logs"_s, u"日志文件"_s, u"doc.text.magnifyingglass"_s,
               u"~/Library/Logs — 系统和应用日志"_s, home + u"/Library/Logs"_s),
        folder(group, trashItemId, u"废纸篓"_s, u"trash"_s, u"~/.Trash — 清空废纸篓"_s, home + u"/.Trash"_s),
        command(group, u"temp-files"_s, u"临时文件"_s, u"folder.badge.gearshape"_s,
                u"/tmp、/var/tmp — 系统临时文件"_s, u"rm -rf /tmp/* /var/tmp/* 2>/dev/null; true"_s, false),
    };
}

QList<CleanupRule> developmentRules(const QString &home)
{
    constexpr auto group = CleanupGroup::development;
    const QString developer = home + u"/Library/Developer"_s;
    const QStringList xcode = {u"com.apple.dt.Xcode"_s};
    return {
        folder(group, u"xcode-derived"_s, u"Xcode DerivedData"_s, u"hammer"_s,
               u"~/Library/Developer/Xcode/DerivedData — 编译中间文件"_s, developer + u"/Xcode/DerivedData"_s,
               xcode),
        folder(group, u"xcode-archives"_s, u"Xcode Archives"_s, u"archivebox"_s,
               u"~/Library/Developer/Xcode/Archives — 历史归档包"_s, developer + u"/Xcode/Archives"_s, xcode),
        folder(group, u"xcode-devicesupport"_s, u"Xcode DeviceSupport"_s, u"iphone.gen2"_s,
               u"~/Library/Developer/Xcode/iOS DeviceSupport — 旧版系统调试符号"_s,
               developer + u"/Xcode/iOS DeviceSupport"_s, xcode),
        folder(group, u"xcode-coreSimulator"_s, u"Xcode 模拟器"_s, u"ipad.landscape"_s,
               u"~/Library/Developer/CoreSimulator/Caches — 模拟器缓存"_s,
               developer + u"/CoreSimulator/Caches"_s, {u"com.apple.iphonesimulator"_s}),
        folder(group, u"xcode-watchOS"_s, u"watchOS Support"_s, u"applewatch"_s,
               u"~/Library/Developer/Xcode/watchOS DeviceSupport — 旧版 watchOS 符号"_s,
               developer + u"/Xcode/watchOS DeviceSupport"_s, xcode),
        folder(CleanupGroup::packages, u"cocoapods"_s, u"CocoaPods 缓存"_s, u"cube.box"_s,
               u"~/Library/Caches/CocoaPods — Pod 下载缓存"_s, home + u"/Library/Caches/CocoaPods"_s),
        folder(CleanupGroup::packages, u"swiftpm"_s, u"SwiftPM 缓存"_s, u"shippingbox"_s,
               u"~/Library/Caches/org.swift.swiftpm — SPM 包缓存"_s,
               home + u"/Library/Caches/org.swift.swiftpm"_s),
    };
}

QList<CleanupRule> applicationRules(const QString &home)
{
    const QString code = home + u"/Library/Application Support/Code"_s;
    const QString safari = home + u"/Library/Safari"_s;
    const QStringList codeRuns = {u"com.microsoft.VSCode"_s};
    const QStringList safariRuns = {u"com.apple.Safari"_s};
    CleanupRule webData =
        command(CleanupGroup::browsers, u"safari-webdata"_s, u"Safari 网站数据"_s,
                u"doc.text.magnifyingglass"_s, u"~/Library/Safari/LocalStorage + Databases — 站点本地存储"_s,
                u"rm -rf \"%1/LocalStorage\"/* \"%1/Databases\"/* 2>/dev/null; true"_s.arg(safari), false);
    webData.measured = {safari + u"/LocalStorage"_s, safari + u"/Databases"_s};
    webData.owners = safariRuns;
    return {
        folder(CleanupGroup::browsers, u"chrome-cache"_s, u"Chrome 浏览器缓存"_s, u"globe"_s,
               u"~/Library/Caches/Google/Chrome — Chrome 网页缓存"_s,
               home + u"/Library/Caches/Google/Chrome"_s, {u"com.google.Chrome"_s}),
        folder(CleanupGroup::editors, u"vscode-cachedata"_s, u"VS Code 缓存数据"_s,
               u"chevron.left.forwardslash.chevron.right"_s,
               u"~/Library/Application Support/Code/CachedData — VS Code 编辑器缓存"_s,
               code + u"/CachedData"_s, codeRuns),
        folder(CleanupGroup::editors, u"vscode-extcache"_s, u"VS Code 扩展缓存"_s, u"puzzlepiece.extension"_s,
               u"~/Library/Application Support/Code/CachedExtensionVSIXs — 已安装扩展原始包"_s,
               code + u"/CachedExtensionVSIXs"_s, codeRuns),
        folder(CleanupGroup::browsers, u"safari-caches"_s, u"Safari 浏览器缓存"_s, u"safari"_s,
               u"~/Library/Containers/com.apple.Safari/Data/Library/Caches — Safari 网页缓存"_s,
               home + u"/Library/Containers/com.apple.Safari/Data/Library/Caches"_s, safariRuns),
        webData,
    };
}

} // namespace

QList<CleanupRule> macCleanupCatalog(const QString &home)
{
    return systemRules(home) + developmentRules(home) + applicationRules(home) +
           QList<CleanupRule>{
               command(CleanupGroup::advanced, u"dns-cache"_s, u"DNS 缓存"_s, u"network"_s,
                       u"刷新 DNS 缓存（需管理员权限）"_s,
                       u"dscacheutil -flushcache && killall -HUP mDNSResponder 2>/dev/null; true"_s, true),
               command(CleanupGroup::advanced, u"memory-cache"_s, u"内存缓存"_s, u"memorychip"_s,
                       u"清理 inactive 内存（purge 命令，需管理员权限）"_s, u"purge 2>/dev/null; true"_s,
                       true),
           };
}

} // namespace velbrix
