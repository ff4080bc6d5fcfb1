#include "views/components/ThumbnailCell.h"

#include "views/Theme.h"
#include "views/components/ThumbnailItems.h"

#include <QListView>
#include <QPainter>
#include <QPainterPath>

#include <utility>

namespace velbrix {
namespace {

constexpr int gap = 8;

} // namespace

ThumbnailCell::ThumbnailCell(const Theme &theme, QListView &grid, QString emptySymbol)
    : QStyledItemDelegate(&grid), _theme(theme), _grid(grid), _emptySymbol(std::move(emptySymbol))
{
    connect(&theme, &Theme::changed, this, [this] { _symbols.clear(); });
}

void ThumbnailCell::paint(QPainter *painter, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const
{
    const QRect cell = option.rect.adjusted(0, 0, -gap, -gap);
    const bool isChosen = index.data(ThumbnailItems::chosenRole).toBool();
    const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QColor tint = _theme.color(isChosen ? ThemeColor::accent : ThemeColor::secondary);
    tint.setAlphaF(isChosen ? 0.14F : option.state.testFlag(QStyle::State_MouseOver) ? 0.14F : 0.06F);
    painter->setBrush(tint);
    painter->setPen(isChosen    ? QPen(_theme.color(ThemeColor::accent), 2)
                    : isCurrent ? QPen(_theme.color(ThemeColor::text), 1)
                                : QPen(Qt::NoPen));
    painter->drawRoundedRect(QRectF(cell).adjusted(1, 1, -1, -1), 8, 8);

    const QRect words(cell.x() + 10, cell.bottom() - 43, cell.width() - 20, 36);
    const QRect room(cell.x() + 8, cell.y() + 8, cell.width() - 16, words.top() - cell.y() - 14);
    const QImage picture = index.data(ThumbnailItems::pictureRole).value<QImage>();
    if (!index.data(ThumbnailItems::problemRole).toString().isEmpty())
        drawSymbol(*painter, room, QStringLiteral("exclamationmark.triangle.fill"));
    else if (picture.isNull())
        drawSymbol(*painter, room, _emptySymbol);
    else
        drawPicture(*painter, room, picture, index.data(ThumbnailItems::badgeRole).toString());
    drawWords(*painter, words, index, isChosen);
    painter->restore();
}

QSize ThumbnailCell::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return _grid.gridSize();
}

void ThumbnailCell::drawSymbol(QPainter &painter, const QRect &room, const QString &name) const
{
    constexpr int side = 32;
    const qreal ratio = painter.device()->devicePixelRatioF();
    QPixmap &drawn = _symbols[name];
    if (drawn.isNull() || drawn.devicePixelRatio() != ratio)
        drawn = _theme.symbol(name, side, _theme.color(ThemeColor::secondary), ratio);
    painter.drawPixmap(room.center() - QPoint(side / 2, side / 2), drawn);
}

void ThumbnailCell::drawPicture(QPainter &painter, const QRect &room, const QImage &picture,
                                const QString &badge) const
{
    const QSize largest = picture.size().boundedTo(room.size());
    const QSize fitted = picture.size().scaled(largest, Qt::KeepAspectRatio);
    QRect place(QPoint(), fitted);
    place.moveCenter(room.center());
    QPainterPath shape;
    shape.addRoundedRect(place, 4, 4);
    painter.save();
    painter.setClipPath(shape);
    painter.drawImage(place, picture);
    painter.restore();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(_theme.color(ThemeColor::hairline));
    painter.drawPath(shape);
    if (!badge.isEmpty())
        drawBadge(painter, place, badge);
}

void ThumbnailCell::drawBadge(QPainter &painter, const QRect &picture, const QString &badge) const
{
    painter.setFont(_theme.font(11, QFont::Medium));
    QRect place(QPoint(), QSize(painter.fontMetrics().horizontalAdvance(badge) + 10, 17));
    place.moveBottomRight(picture.bottomRight() - QPoint(4, 4));
    // Readable on any picture.
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 170));
    painter.drawRoundedRect(place, 4, 4);
    painter.setPen(Qt::white);
    painter.drawText(place, Qt::AlignCenter, badge);
}

void ThumbnailCell::drawWords(QPainter &painter, const QRect &room, const QModelIndex &index,
                              bool isChosen) const
{
    const auto line = [&](const QString &text, const QRect &place, const QFont &font, ThemeColor color) {
        painter.setFont(font);
        painter.setPen(_theme.color(color));
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                         QFontMetrics(font).elidedText(text, Qt::ElideRight, place.width()));
    };
    const QString mark = isChosen ? QStringLiteral("✓ ") : QString();
    line(mark + index.data().toString(), QRect(room.x(), room.y(), room.width(), 18),
         _theme.font(12, QFont::DemiBold), isChosen ? ThemeColor::accentText : ThemeColor::text);
    const QString problem = index.data(ThumbnailItems::problemRole).toString();
    line(problem.isEmpty() ? index.data(ThumbnailItems::subtitleRole).toString() : problem,
         QRect(room.x(), room.y() + 18, room.width(), 18), _theme.font(11),
         problem.isEmpty() ? ThemeColor::secondary : ThemeColor::warning);
}

} // namespace velbrix
