#include "maintenance/cleanup/CleanupCatalog.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace velbrix {

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
    return {QDir::homePath(), QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
            QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation),
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)};
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

QStringList matchingFolders(const QString &pattern)
{
    const auto star = pattern.indexOf(u"/*"_s);
    if (star < 0)
        return {pattern};
    const QString parent = pattern.first(star);
    const QString rest = pattern.mid(star + 2);
    QStringList folders;
    // A link's target belongs to somebody else.
    for (const QString &name :
         QDir(parent).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks | QDir::Hidden)) {
        const QString folder = parent + u'/' + name + rest;
        if (QDir(folder).exists())
            folders.append(folder);
    }
    folders.sort();
    return folders;
}

} // namespace velbrix
