#include "maintenance/cleanup/CleanupCatalog.h"

#include "foundation/Paths.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr auto everyFolder = "/*"_L1;

// A base folder that is home itself, or around it, says nothing of what is in
// it: home's own folders are no caches.
QString baseFolder(QStandardPaths::StandardLocation kind, const QString &standard)
{
    const QString path = QStandardPaths::writableLocation(kind);
    const bool holdsHome = isWithin(canonicalPath(QDir::homePath()), canonicalPath(path));
    return holdsHome ? QDir::homePath() + standard : path;
}

bool isPattern(const QString &path)
{
    return path.contains(everyFolder);
}

// A folder of the user's is that folder, whatever characters it is called by.
bool isCustom(const CleanupRule &rule)
{
    return rule.item.customPath.has_value();
}

} // namespace

QString title(CleanupGroup group)
{
    switch (group) {
    case CleanupGroup::system:
        return u"系统与应用"_s;
    case CleanupGroup::development:
        return u"开发工具缓存"_s;
    case CleanupGroup::packages:
        return u"包管理器缓存"_s;
    case CleanupGroup::browsers:
        return u"浏览器数据"_s;
    case CleanupGroup::editors:
        return u"编辑器缓存"_s;
    case CleanupGroup::advanced:
        return u"高级清理（需管理员权限）"_s;
    case CleanupGroup::custom:
        return u"自定义路径"_s;
    }
    Q_UNREACHABLE();
}

UserFolders UserFolders::ofThisUser()
{
    return {QDir::homePath(), baseFolder(QStandardPaths::GenericConfigLocation, u"/.config"_s),
            baseFolder(QStandardPaths::GenericCacheLocation, u"/.cache"_s),
            baseFolder(QStandardPaths::GenericDataLocation, u"/.local/share"_s)};
}

QList<CleanupRule> cleanupCatalog(HostFamily family)
{
    QList<CleanupRule> rules = family == HostFamily::macos
                                   ? macCleanupCatalog(QDir::homePath())
                                   : freedesktopCleanupCatalog(UserFolders::ofThisUser());
    rules.removeIf([](const CleanupRule &rule) {
        return !rule.program.isEmpty() && QStandardPaths::findExecutable(rule.program).isEmpty();
    });
    return rules;
}

QStringList localHistories(const QString &caches)
{
    return {caches + u"/JetBrains"_s, caches + u"/Google/*/LocalHistory"_s, caches + u"/Google/*/caches"_s};
}

QString standardizedPath(const QString &path)
{
    QString whole = path;
    if (whole == u'~' || whole.startsWith(u"~/"))
        whole = QDir::homePath() + whole.mid(1);
    return QDir::cleanPath(QDir(whole).absolutePath());
}

CleanupRule customRule(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    CleanupItem item;
    item.id = u"custom-"_s + QString::fromLatin1(path.toUtf8().toBase64());
    item.name = name.isEmpty() ? u"自定义路径"_s : name;
    item.icon = u"folder.badge.plus"_s;
    item.description = path;
    item.isSelected = true;
    item.estimatedSize = u"待计算"_s;
    item.customPath = path;
    return {item, CleanupGroup::custom, {item.id, item.name, path, {}, false}, {path}};
}

bool hasPattern(const CleanupRule &rule)
{
    return !isCustom(rule) && rule.target.path && isPattern(*rule.target.path);
}

QStringList emptiedFolders(const CleanupRule &rule)
{
    if (const auto &folder = rule.item.customPath)
        return {*folder};
    QStringList folders = rule.target.path ? matchingFolders(*rule.target.path) : QStringList();
    for (const QString &pattern : rule.furtherPaths)
        folders += matchingFolders(pattern);
    return folders;
}

QString ownerOf(const QString &folder, const CleanupRule &rule)
{
    if (rule.folderOwner.isEmpty() || !hasPattern(rule))
        return {};
    // As far from the end as in the pattern: what is before it may be another way to the same place.
    const QString &pattern = *rule.target.path;
    const auto below = pattern.sliced(pattern.indexOf(everyFolder) + everyFolder.size()).count(u'/');
    return rule.folderOwner.arg(folder.section(u'/', -1 - below, -1 - below));
}

QStringList measuredFolders(const CleanupRule &rule)
{
    if (isCustom(rule))
        return emptiedFolders(rule);
    QStringList folders;
    for (const QString &pattern : rule.measured)
        folders += matchingFolders(pattern);
    return folders;
}

QStringList matchingFolders(const QString &pattern)
{
    if (!isPattern(pattern))
        return {pattern};
    const auto star = pattern.indexOf(everyFolder);
    const QString parent = canonicalPath(pattern.first(star));
    const QString rest = pattern.mid(star + everyFolder.size());
    QStringList folders;
    if (parent.isEmpty())
        return folders;
    for (const QString &name :
         QDir(parent).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks | QDir::Hidden)) {
        const QString folder = parent + u'/' + name + rest;
        const QFileInfo found(folder);
        if (found.isDir() && found.canonicalFilePath() == folder)
            folders.append(folder);
    }
    folders.sort();
    return folders;
}

} // namespace velbrix
