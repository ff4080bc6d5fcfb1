#include "views/recorder/MovieTile.h"

#include "views/Theme.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr QSize tileSize(168, 105);
constexpr int symbolSide = 32;
constexpr int badgeSide = 36;

} // namespace

MovieTile::MovieTile(const Theme &theme, QWidget *parent) : QWidget(parent), _theme(theme)
{
    setObjectName(u"movieTile"_s);
    setAccessibleName(u"影片缩略图"_s);
    setAccessibleDescription(u"点一下播放，也可以拖到其他程序"_s);
    setFixedSize(tileSize);
    connect(&theme, &Theme::changed, this, qOverload<>(&QWidget::update));
}

void MovieTile::show(const QString &path, const QImage &picture)
{
    _path = path;
    _picture = picture;
    setCursor(path.isEmpty() ? Qt::ArrowCursor : Qt::PointingHandCursor);
    setToolTip(path.isEmpty() ? QString() : accessibleDescription());
    update();
}

void MovieTile::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    painter.fillPath(shape, _theme.color(ThemeColor::control));
    const auto symbol = [&](const QString &name, int side, const QColor &color) {
        QRect place(0, 0, side, side);
        place.moveCenter(rect().center());
        painter.drawPixmap(place.topLeft(), _theme.symbol(name, side, color, devicePixelRatioF()));
    };
    if (_picture.isNull()) {
        symbol(u"film"_s, symbolSide, _theme.color(ThemeColor::secondary));
    } else {
        QRect place(QPoint(), _picture.size().scaled(size(), Qt::KeepAspectRatio));
        place.moveCenter(rect().center());
        painter.setClipPath(shape);
        painter.setOpacity(_path.isEmpty() ? 0.4 : 1);
        painter.drawImage(place, _picture);
        painter.setOpacity(1);
        painter.setClipping(false);
    }
    if (!_picture.isNull() && !_path.isEmpty()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 120));
        painter.drawEllipse(QRectF(rect()).center(), badgeSide / 2.0, badgeSide / 2.0);
        symbol(u"play.fill"_s, badgeSide / 2, Qt::white);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(_theme.color(ThemeColor::hairline));
    painter.drawPath(shape);
}

void MovieTile::mousePressEvent(QMouseEvent *event)
{
    _isPressed = event->button() == Qt::LeftButton && !_path.isEmpty();
    _pressedAt = event->pos();
}

void MovieTile::mouseMoveEvent(QMouseEvent *event)
{
    if (_isPressed && (event->pos() - _pressedAt).manhattanLength() >= QApplication::startDragDistance()) {
        _isPressed = false;
        drag();
    }
}

void MovieTile::mouseReleaseEvent(QMouseEvent *event)
{
    if (std::exchange(_isPressed, false) && rect().contains(event->pos()))
        Q_EMIT clicked();
}

void MovieTile::drag()
{
    const QPointer self(this);
    auto *data = new QMimeData;
    data->setUrls({QUrl::fromLocalFile(_path)});
    auto *drag = new QDrag(this);
    drag->setMimeData(data);
    if (!_picture.isNull())
        drag->setPixmap(
            QPixmap::fromImage(_picture.scaled(size() / 2, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    // Only a copy: the recording stays where the user has put it.
    drag->exec(Qt::CopyAction);
    if (self)
        Q_EMIT dropped();
}

} // namespace velbrix
