#include "views/components/ThumbnailGrid.h"

#include "views/Theme.h"
#include "views/components/ThumbnailCell.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QSet>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace velbrix {
namespace {

constexpr int leastCellWidth = 172;
constexpr int cellHeight = 168;
constexpr int mostRows = 2;

} // namespace

ThumbnailGrid::ThumbnailGrid(const Theme &theme, const QString &name, const QString &emptySymbol,
                             QWidget *parent)
    : QListView(parent), _items(new ThumbnailItems(this))
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
    setItemDelegate(new ThumbnailCell(theme, *this, emptySymbol));
    connect(this, &QListView::clicked, this,
            [this](const QModelIndex &index) { Q_EMIT wanted(_items->items[index.row()].id); });
    connect(this, &QListView::doubleClicked, this,
            [this](const QModelIndex &index) { Q_EMIT confirmed(_items->items[index.row()].id); });
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

void ThumbnailGrid::setPicture(const QString &id, const QImage &picture, const QString &badge)
{
    const bool hadProblem = _items->problems.remove(id);
    QImage &shown = _items->pictures[id];
    QString &shownBadge = _items->badges[id];
    if (shown.cacheKey() == picture.cacheKey() && shownBadge == badge && !hadProblem)
        return;
    shown = picture;
    shownBadge = badge;
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
    const auto isOther = [&](const auto &entry) { return !kept.contains(entry.key()); };
    _items->pictures.removeIf(isOther);
    _items->badges.removeIf(isOther);
}

void ThumbnailGrid::setChosen(const std::optional<QString> &id)
{
    const std::optional<QString> before = std::exchange(_items->chosen, id);
    for (const auto &changed : {before, id}) {
        if (changed)
            _items->redraw(*changed);
    }
}

QStringList ThumbnailGrid::visibleIds() const
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
    const bool confirms = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (!current.isValid() || (key != Qt::Key_Space && !confirms)) {
        QListView::keyPressEvent(event);
        return;
    }
    const QString id = _items->items[current.row()].id;
    Q_EMIT wanted(id);
    if (confirms)
        Q_EMIT confirmed(id);
}

void ThumbnailGrid::mouseMoveEvent(QMouseEvent *event)
{
    QListView::mouseMoveEvent(event);
    // A hand on the wheel is never quite still.
    const QPoint way = event->globalPosition().toPoint() - _entered;
    if (way.manhattanLength() >= QApplication::startDragDistance())
        _pointedAt = mapToGlobal(QPoint());
}

bool ThumbnailGrid::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Enter)
        _entered = static_cast<QEnterEvent *>(event)->globalPosition().toPoint();
    else if (event->type() == QEvent::Leave)
        _pointedAt.reset();
    return QListView::viewportEvent(event);
}

// Whoever scrolls the page goes on to scroll it when the grid comes under the
// pointer, and points into the grid to scroll that.
void ThumbnailGrid::wheelEvent(QWheelEvent *event)
{
    if (_pointedAt == mapToGlobal(QPoint())) {
        QListView::wheelEvent(event);
    } else {
        _entered = event->globalPosition().toPoint();
        event->ignore();
    }
}

void ThumbnailGrid::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    noteVisible(); // it may be a page around the grid that has scrolled
}

void ThumbnailGrid::scrollContentsBy(int dx, int dy)
{
    QListView::scrollContentsBy(dx, dy);
    noteVisible();
}

void ThumbnailGrid::noteVisible()
{
    const QStringList ids = visibleIds();
    if (ids == _inSight)
        return;
    _inSight = ids;
    Q_EMIT visibleIdsChanged(ids);
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
