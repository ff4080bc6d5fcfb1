#include "views/uninstall/ReviewRows.h"

#include "foundation/Text.h"
#include "views/ShownText.h"
#include "views/Theme.h"
#include "views/components/CheckBox.h"
#include "views/components/RowList.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int sizeWidth = 96;

} // namespace

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

ReviewRow::ReviewRow(const Theme &theme, RowList &list, const ReviewRows &rows)
    : QStyledItemDelegate(&list), _theme(theme), _list(list), _rows(rows)
{
}

QSize ReviewRow::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return {300, height};
}

void ReviewRow::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    _list.drawBack(*painter, option);
    painter->setRenderHint(QPainter::Antialiasing);
    const ReviewItem &item = _rows.item(index);
    const QRect row = option.rect;
    CheckBox::paint(*painter, _theme, QRectF(row.x() + 11, row.y() + 11, CheckBox::side, CheckBox::side),
                    item.isTicked ? Qt::Checked : Qt::Unchecked, !item.isFixed);

    const int left = row.x() + 38;
    const QRect size(row.right() - sizeWidth - 8, row.y() + 9, sizeWidth, 20);
    const QRect path(left, row.y() + 9, size.left() - left - 12, 20);
    painter->setFont(_theme.font(13));
    painter->setPen(_theme.color(item.isTicked ? ThemeColor::text : ThemeColor::secondary));
    painter->drawText(
        path, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        painter->fontMetrics().elidedText(oneLine(index.data().toString()), Qt::ElideMiddle, path.width()));
    painter->setFont(_theme.font(12));
    painter->setPen(_theme.color(ThemeColor::secondary));
    painter->drawText(size, Qt::AlignRight | Qt::AlignVCenter, sizeText(item));
    drawReasons(*painter, QRect(left, row.y() + 30, row.right() - left - 8, 18), item);
    painter->restore();
}

void ReviewRow::drawReasons(QPainter &painter, const QRect &rect, const ReviewItem &item) const
{
    painter.setFont(_theme.font(12));
    const QString why = reasonText(item);
    const int wide = painter.fontMetrics().horizontalAdvance(why);
    const int room = item.caution.isEmpty() ? rect.width() : rect.width() * 3 / 5;
    painter.setPen(_theme.color(ThemeColor::secondary));
    painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(why, Qt::ElideMiddle, room));
    if (item.caution.isEmpty())
        return;
    constexpr int side = 14;
    const QColor tint = _theme.color(ThemeColor::warning);
    const int x = rect.x() + std::min(wide, room) + 12;
    painter.drawPixmap(
        x, rect.center().y() - side / 2 + 1,
        _theme.symbol(u"exclamationmark.triangle.fill"_s, side, tint, painter.device()->devicePixelRatioF()));
    const QRect rest(x + side + 4, rect.y(), rect.right() - x - side - 4, rect.height());
    painter.setPen(tint);
    painter.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(item.caution, Qt::ElideRight, rest.width()));
}

bool ReviewRow::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &,
                            const QModelIndex &index)
{
    if (event->type() != QEvent::MouseButtonRelease ||
        static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
        return false;
    Q_EMIT toggled(index);
    return true;
}

} // namespace velbrix
