#include "views/uninstall/AppRows.h"

#include "foundation/ByteCount.h"
#include "foundation/OneLine.h"
#include "views/PlainTip.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace velbrix {

int AppRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(_apps.size());
}

QVariant AppRows::data(const QModelIndex &index, int role) const
{
    const AppInfo &row = app(index);
    switch (role) {
    case Qt::DisplayRole:
        return row.name;
    case Qt::ToolTipRole:
        return plainTip(oneLine(row.path));
    case Qt::AccessibleTextRole: {
        QStringList words{row.name, u"版本 "_s + row.version, sizeText(row)};
        if (!row.source.manager.isEmpty())
            words.append(u"由 %1 管理"_s.arg(row.source.manager));
        if (isRunning(index))
            words.append(u"正在运行"_s);
        return words.join(u"，"_s);
    }
    case Qt::AccessibleDescriptionRole:
        return u"按回车键卸载"_s;
    default:
        return {};
    }
}

void AppRows::replace(const QList<AppInfo> &apps)
{
    if (apps == _apps)
        return;
    beginResetModel();
    _apps = apps;
    endResetModel();
}

void AppRows::setRunning(const QSet<QString> &paths)
{
    if (paths == _running)
        return;
    _running = paths;
    if (!_apps.isEmpty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

QModelIndex AppRows::find(const QString &path) const
{
    const auto found = std::ranges::find(_apps, path, &AppInfo::path);
    return found == _apps.end() ? QModelIndex()
                                : index(static_cast<int>(std::distance(_apps.begin(), found)));
}

QString sizeText(const AppInfo &app)
{
    return app.size > 0 ? formatByteCount(app.size) : u"—"_s;
}

} // namespace velbrix
