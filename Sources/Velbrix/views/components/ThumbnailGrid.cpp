#include "views/components/ThumbnailGrid.h"

#include "views/Theme.h"

#include <QHash>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QSet>
#include <QStyle>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace velbrix {
namespace {

constexpr int leastCellWidth = 172;
constexpr int cellHeight = 168;
constexpr int mostRows = 2;
constexpr int gap = 8;

enum Role { pictureRole = Qt::UserRole, subtitleRole, problemRole, chosenRole };

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
            return QStringLiteral("%1，%2").arg(item.title, problems.value(item.id, item.subtitle));
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

    bool replace(const QList<ThumbnailItem> &fresh)
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

    QModelIndex find(const QString &id) const
    {
        const auto row = _rows.constFind(id);
        return row == _rows.cend() ? QModelIndex() : index(*row);
    }

    void redraw(const QString &id)
    {
        if (const QModelIndex cell = find(id); cell.isValid())
            Q_EMIT dataChanged(cell, cell);
    }

    QList<ThumbnailItem> items;
    QHash<QString, QImage> pictures;
    QHash<QString, QString> problems;
    std::optional<QString> chosen;

private:
    QHash<QString, int> _rows;
};

class ThumbnailGrid::Cell final : public QStyledItemDelegate {
public:
    Cell(const Theme &theme, ThumbnailGrid &grid, QString placeholder)
        : QStyledItemDelegate(&grid), _theme(theme), _grid(grid), _placeholder(std::move(placeholder))
    {
        connect(&theme, &Theme::changed, this, [this] { _symbols.clear(); });
    }

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
        const QRect room(cell.x() + 8, cell.y() + 8, cell.width() - 16, words.top() - cell.y() - 14);
        const QImage picture = index.data(pictureRole).value<QImage>();
        if (!index.data(problemRole).toString().isEmpty())
            drawSymbol(*painter, room, QStringLiteral("exclamationmark.triangle.fill"));
        else if (picture.isNull())
            drawSymbol(*painter, room, _placeholder);
        else
            drawPicture(*painter, room, picture);
        drawWords(*painter, words, index, isChosen);
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return _grid.gridSize();
    }

private:
    void drawSymbol(QPainter &painter, const QRect &room, const QString &name) const
    {
        constexpr int side = 32;
        const qreal ratio = painter.device()->devicePixelRatioF();
        QPixmap &drawn = _symbols[name];
        if (drawn.isNull() || drawn.devicePixelRatio() != ratio)
            drawn = _theme.symbol(name, side, _theme.color(ThemeColor::secondary), ratio);
        painter.drawPixmap(room.center() - QPoint(side / 2, side / 2), drawn);
    }

    void drawPicture(QPainter &painter, const QRect &room, const QImage &picture) const
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
        const QString problem = index.data(problemRole).toString();
        line(problem.isEmpty() ? index.data(subtitleRole).toString() : problem,
             QRect(room.x(), room.y() + 18, room.width(), 18), _theme.font(11),
             problem.isEmpty() ? ThemeColor::secondary : ThemeColor::warning);
    }

    const Theme &_theme;
    const ThumbnailGrid &_grid;
    const QString _placeholder;
    mutable QHash<QString, QPixmap> _symbols;
};

ThumbnailGrid::ThumbnailGrid(const Theme &theme, const QString &name, const QString &placeholder,
                             QWidget *parent)
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
    setItemDelegate(new Cell(theme, *this, placeholder));
    connect(this, &QListView::clicked, this,
            [this](const QModelIndex &index) { Q_EMIT wanted(_items->items[index.row()].id); });
    connect(&theme, &Theme::changed, this, [this] { viewport()->update(); });
}

void ThumbnailGrid::setItems(const QList<ThumbnailItem> &items)
{
    const QModelIndex current = currentIndex();
    const QString currentId = current.isValid() ? _items->items[current.row()].id : QString();
    const int place = verticalScrollBar()->value();
    if (!_items->replace(items))
        return;
    fit();
    executeDelayedItemsLayout();
    if (const QModelIndex again = _items->find(currentId); again.isValid())
        selectionModel()->setCurrentIndex(again, QItemSelectionModel::NoUpdate);
    verticalScrollBar()->setValue(place);
}

void ThumbnailGrid::setPictures(const QHash<QString, QImage> &pictures)
{
    _items->pictures = pictures;
    viewport()->update();
}

void ThumbnailGrid::setPicture(const QString &id, const QImage &picture)
{
    const bool hadProblem = _items->problems.remove(id);
    QImage &shown = _items->pictures[id];
    if (shown.cacheKey() == picture.cacheKey() && !hadProblem)
        return;
    shown = picture;
    _items->redraw(id);
}

void ThumbnailGrid::setProblem(const QString &id, const QString &problem)
{
    _items->problems.insert(id, problem);
    _items->redraw(id);
}

void ThumbnailGrid::keepPictures(const QStringList &ids)
{
    const QSet<QString> kept(ids.begin(), ids.end());
    _items->pictures.removeIf([&](const auto &entry) { return !kept.contains(entry.key()); });
}

void ThumbnailGrid::setChosen(const std::optional<QString> &id)
{
    const std::optional<QString> before = std::exchange(_items->chosen, id);
    for (const auto &changed : {before, id}) {
        if (changed)
            _items->redraw(*changed);
    }
}

QStringList ThumbnailGrid::idsInSight() const
{
    const QRect seen = viewport()->visibleRegion().boundingRect();
    if (seen.isEmpty())
        return {};
    const qsizetype across = columns();
    const qsizetype first = (verticalOffset() + seen.top()) / cellHeight * across;
    const qsizetype end = ((verticalOffset() + seen.bottom()) / cellHeight + 1) * across;
    QStringList ids;
    for (qsizetype row = first; row < std::min(end, _items->items.size()); ++row)
        ids.append(_items->items[row].id);
    return ids;
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

void ThumbnailGrid::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    noteSight(); // it may be a page around the grid that has scrolled
}

void ThumbnailGrid::scrollContentsBy(int dx, int dy)
{
    QListView::scrollContentsBy(dx, dy);
    noteSight();
}

void ThumbnailGrid::noteSight()
{
    const QStringList ids = idsInSight();
    if (ids == _inSight)
        return;
    _inSight = ids;
    Q_EMIT inSightChanged(ids);
}

void ThumbnailGrid::resizeEvent(QResizeEvent *event)
{
    QListView::resizeEvent(event);
    fit();
}

int ThumbnailGrid::room() const
{
    // As the base class counts when it breaks the lines: less one pixel, and
    // always with the bar.
    return width() - style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, verticalScrollBar()) - 1;
}

int ThumbnailGrid::columns() const
{
    return std::max(room() / leastCellWidth, 1);
}

void ThumbnailGrid::fit()
{
    setGridSize(QSize(std::max(room() / columns(), 1), cellHeight));
    setFixedHeight(std::max(sizeHint().height(), 1));
}

} // namespace velbrix
