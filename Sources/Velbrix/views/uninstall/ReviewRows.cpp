#include "views/uninstall/ReviewRows.h"

#include "foundation/ByteCount.h"
#include "foundation/OneLine.h"
#include "views/PlainTip.h"
#include "views/ShownPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

int ReviewRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(_items.size());
}

QVariant ReviewRows::data(const QModelIndex &index, int role) const
{
    const ReviewItem &row = item(index);
    switch (role) {
    case Qt::DisplayRole:
        return shownPath(row.path);
    case Qt::CheckStateRole:
        return row.isTicked ? Qt::Checked : Qt::Unchecked;
    case Qt::ToolTipRole: {
        QStringList lines{oneLine(row.path), reasonText(row)};
        if (!row.caution.isEmpty())
            lines.append(row.caution);
        return plainTip(lines.join(u'\n'));
    }
    case Qt::AccessibleTextRole: {
        QStringList words{shownPath(row.path), row.isTicked ? u"已勾选"_s : u"未勾选"_s, sizeText(row),
                          reasonText(row)};
        if (!row.caution.isEmpty())
            words.append(row.caution);
        return words.join(u"，"_s);
    }
    default:
        return {};
    }
}

Qt::ItemFlags ReviewRows::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags basic = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return item(index).isFixed ? basic : basic | Qt::ItemIsUserCheckable;
}

void ReviewRows::replace(const QList<ReviewItem> &items)
{
    if (items == _items)
        return;
    if (std::ranges::equal(items, _items, {}, &ReviewItem::path, &ReviewItem::path)) {
        _items = items;
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
        return;
    }
    beginResetModel();
    _items = items;
    endResetModel();
}

QString reasonText(const ReviewItem &item)
{
    return item.library ? u"%1 · %2"_s.arg(label(*item.library), item.why) : item.why;
}

QString sizeText(const ReviewItem &item)
{
    return item.bytes ? formatByteCount(*item.bytes) : u"正在计算…"_s;
}

QString tickedText(const QList<ReviewItem> &items)
{
    qsizetype count = 0;
    qint64 bytes = 0;
    bool isKnown = true;
    for (const ReviewItem &item : items) {
        if (!item.isTicked)
            continue;
        ++count;
        bytes += item.bytes.value_or(0);
        isKnown = isKnown && item.bytes;
    }
    const QString sum = isKnown ? formatByteCount(bytes) : formatByteCount(bytes) + u"，仍在计算…"_s;
    return u"已勾选 %1 项，共 %2"_s.arg(count).arg(sum);
}

} // namespace velbrix
