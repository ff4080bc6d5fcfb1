#include "views/components/ThumbnailGrid.h"

#include "views/Theme.h"

#include <QHash>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace velbrix {
namespace {

constexpr int leastCellWidth = 172;
constexpr int cellHeight = 168;
constexpr int mostRows = 2;
constexpr int gap = 8;

enum Role { pictureRole = Qt::UserRole, subtitleRole, chosenRole };

} // namespace

class ThumbnailGrid::Items final : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(items.size());
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        const ThumbnailItem &item = items[index.row()];
        switch (role) {
        case Qt::DisplayRole:
        case Qt::ToolTipRole:
            return item.title;
        case Qt::AccessibleTextRole:
            return QStringLiteral("%1，%2").arg(item.title, item.subtitle);
        case pictureRole:
            return pictures.value(item.id);
        case subtitleRole:
            return item.subtitle;
        case chosenRole:
            return chosen == item.id;
        default:
            return {};
        }
    }

    void replace(const QList<ThumbnailItem> &fresh)
    {
        if (fresh == items)
            return;
        beginResetModel();
        items = fresh;
        endResetModel();
    }

    void redraw()
    {
        if (!items.isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    }

    QList<ThumbnailItem> items;
    QHash<QString, QImage> pictures;
    std::optional<QString> chosen;
};

class ThumbnailGrid::Cell final : public QStyledItemDelegate {
public:
    Cell(const Theme &theme, ThumbnailGrid &grid) : QStyledItemDelegate(&grid), _theme(theme), _grid(grid) {}

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QRect cell = option.rect.adjusted(0, 0, -gap, -gap);
        const bool isChosen = index.data(chosenRole).toBool();
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
        drawPicture(*painter,
                    QRect(cell.x() + 8, cell.y() + 8, cell.width() - 16, words.top() - cell.y() - 14),
                    index.data(pictureRole).value<QImage>());
        drawWords(*painter, words, index, isChosen);
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return _grid.gridSize();
    }

private:
    void drawPicture(QPainter &painter, const QRect &room, const QImage &picture) const
    {
        if (picture.isNull()) {
            constexpr int side = 32;
            const QPoint at = room.center() - QPoint(side / 2, side / 2);
            const qreal ratio = painter.device()->devicePixelRatioF();
            painter.drawPixmap(at, _theme.symbol(QStringLiteral("macwindow"), side,
                                                 _theme.color(ThemeColor::secondary), ratio));
            return;
        }
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
    }

    void drawWords(QPainter &painter, const QRect &room, const QModelIndex &index, bool isChosen) const
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
        line(index.data(subtitleRole).toString(), QRect(room.x(), room.y() + 18, room.width(), 18),
             _theme.font(11), ThemeColor::secondary);
    }

    const Theme &_theme;
    const ThumbnailGrid &_grid;
};

ThumbnailGrid::ThumbnailGrid(const Theme &theme, const QString &name, QWidget *parent)
    : QListView(parent), _items(new Items(this))
{
    setObjectName(name);
    setViewMode(IconMode);
    setMovement(Static);
    setResizeMode(Adjust);
    setUniformItemSizes(true);
    setSelectionMode(NoSelection);
    setMouseTracking(true);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setModel(_items);
    setItemDelegate(new Cell(theme, *this));
    connect(this, &QListView::clicked, this,
            [this](const QModelIndex &index) { Q_EMIT wanted(_items->items[index.row()].id); });
    connect(&theme, &Theme::changed, this, [this] { viewport()->update(); });
}

void ThumbnailGrid::setItems(const QList<ThumbnailItem> &items)
{
    _items->replace(items);
    fit();
}

void ThumbnailGrid::setPictures(const QHash<QString, QImage> &pictures)
{
    _items->pictures = pictures;
    _items->redraw();
}

void ThumbnailGrid::setChosen(const std::optional<QString> &id)
{
    _items->chosen = id;
    _items->redraw();
}

QSize ThumbnailGrid::sizeHint() const
{
    const int count = _items->rowCount();
    const int rows = (count + columns() - 1) / columns();
    const int half = rows > mostRows ? cellHeight / 2 : 0; // shows that there is more
    return {leastCellWidth * 3, std::min(rows, mostRows) * cellHeight + half + 4};
}

void ThumbnailGrid::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex current = currentIndex();
    const int key = event->key();
    if (current.isValid() && (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter))
        Q_EMIT wanted(_items->items[current.row()].id);
    else
        QListView::keyPressEvent(event);
}

void ThumbnailGrid::resizeEvent(QResizeEvent *event)
{
    QListView::resizeEvent(event);
    fit();
}

int ThumbnailGrid::columns() const
{
    const int room = width() - verticalScrollBar()->sizeHint().width();
    return std::max(room / leastCellWidth, 1);
}

void ThumbnailGrid::fit()
{
    const int room = width() - verticalScrollBar()->sizeHint().width();
    setGridSize(QSize(std::max(room / columns(), 1), cellHeight));
    setFixedHeight(std::max(sizeHint().height(), 1));
}

} // namespace velbrix
