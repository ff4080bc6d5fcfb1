#include "views/components/ThumbnailItems.h"

#include "views/ShownText.h"

namespace velbrix {

int ThumbnailItems::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(items.size());
}

QVariant ThumbnailItems::data(const QModelIndex &index, int role) const
{
    const ThumbnailItem &item = items[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return plainTip(item.title);
    case Qt::AccessibleTextRole:
        return QStringLiteral("%1，%2").arg(item.title, problems.value(item.id, item.subtitle));
    case Qt::AccessibleDescriptionRole:
    case badgeRole:
        return badges.value(item.id);
    case pictureRole:
        return pictures.value(item.id);
    case subtitleRole:
        return item.subtitle;
    case problemRole:
        return problems.value(item.id);
    case chosenRole:
        return chosen == item.id;
    default:
        return {};
    }
}

bool ThumbnailItems::replace(const QList<ThumbnailItem> &fresh)
{
    if (fresh == items)
        return false;
    beginResetModel();
    items = fresh;
    problems.clear();
    _rows.clear();
    _rows.reserve(items.size());
    for (int row = 0; row < rowCount(); ++row)
        _rows.insert(items[row].id, row);
    endResetModel();
    return true;
}

QModelIndex ThumbnailItems::find(const QString &id) const
{
    const auto row = _rows.constFind(id);
    return row == _rows.cend() ? QModelIndex() : index(*row);
}

void ThumbnailItems::redraw(const QString &id)
{
    if (const QModelIndex cell = find(id); cell.isValid())
        Q_EMIT dataChanged(cell, cell);
}

} // namespace velbrix
