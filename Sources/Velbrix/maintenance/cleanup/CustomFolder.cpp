#include "maintenance/cleanup/CustomFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace velbrix {

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

QString customFolderObstacle(const QString &path, const RemovalRules &rules)
{
    if (!QFileInfo(path).isDir())
        return u"请选择存在的文件夹"_s;
    return RemovalRoot::obstacle(QFile::encodeName(path), rules);
}

} // namespace velbrix
