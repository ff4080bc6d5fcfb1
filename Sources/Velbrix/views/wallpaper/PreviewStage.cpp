#include "views/wallpaper/PreviewStage.h"

#include "views/Theme.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

class PreviewStage::Button final : public QAbstractButton {
public:
    Button(const Theme &theme, const QString &name, int side, QWidget *parent)
        : QAbstractButton(parent), _theme(theme), _side(side)
    {
        setObjectName(name);
        setFocusPolicy(Qt::TabFocus);
        setFixedSize(sizeHint());
        setAttribute(Qt::WA_Hover);
    }

    QSize sizeHint() const override { return {_side, _side}; }

    void setPlaying(bool playing)
    {
        _isPlaying = playing;
        const QString text = playing ? u"暂停预览"_s : u"播放预览"_s;
        setAccessibleName(text);
        setToolTip(text);
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const bool isKeyed = hasFocus() && property("keyed").toBool();
        // What moves is not hidden behind the button.
        if (_isPlaying && !underMouse() && !isKeyed)
            return;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(isKeyed ? QPen(Qt::white, 2) : QPen(QColor(255, 255, 255, 90), 1));
        painter.setBrush(QColor(0, 0, 0, isDown() ? 200 : underMouse() ? 170 : 140));
        painter.drawEllipse(rect().adjusted(1, 1, -1, -1));
        const int side = _side * 3 / 7;
        const QPixmap symbol = _theme.symbol(_isPlaying ? u"pause.fill"_s : u"play.fill"_s, side, Qt::white,
                                             devicePixelRatioF());
        painter.drawPixmap((width() - side) / 2, (height() - side) / 2, symbol);
    }

private:
    const Theme &_theme;
    const int _side;
    bool _isPlaying = false;
};

PreviewStage::PreviewStage(const Theme &theme, const QString &name, int mostHeight, QWidget *parent)
    : QWidget(parent),
      _theme(theme),
      _mostHeight(mostHeight),
      _button(new Button(theme, name + u"Toggle"_s, std::clamp(mostHeight / 3, 35, 56), this))
{
    setObjectName(name);
    setAccessibleName(u"壁纸预览"_s);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setMinimumSize(160, 90);
    _button->setPlaying(false);
    connect(_button, &QAbstractButton::clicked, this, &PreviewStage::pressed);
    connect(&theme, &Theme::changed, this, qOverload<>(&QWidget::update));
}

void PreviewStage::setPicture(const QImage &picture)
{
    _picture = picture;
    _still = {};
    update();
}

void PreviewStage::setPlaying(bool playing)
{
    _isPlaying = playing;
    _button->setPlaying(playing);
}

void PreviewStage::setPlayable(bool playable)
{
    _button->setVisible(playable);
}

void PreviewStage::setDisplay(const QSize &display, VideoGravity gravity)
{
    if (_display == display && _gravity == gravity)
        return;
    _display = display;
    _gravity = gravity;
    _still = {};
    updateGeometry();
    placeButton();
    update();
}

int PreviewStage::heightForWidth(int width) const
{
    return std::min(width * _display.height() / _display.width(), _mostHeight);
}

QSize PreviewStage::sizeHint() const
{
    return {_mostHeight * _display.width() / _display.height(), _mostHeight};
}

QRect PreviewStage::frame() const
{
    QRect room(QPoint(), _display.scaled(size(), Qt::KeepAspectRatio));
    room.moveCenter(rect().center());
    return room;
}

void PreviewStage::paintEvent(QPaintEvent *)
{
    const QRect room = frame();
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(room).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    painter.fillPath(shape, _picture.isNull() ? _theme.color(ThemeColor::control) : QColor(Qt::black));
    painter.save();
    painter.setClipPath(shape);
    drawPicture(painter, room);
    painter.restore();
    painter.setPen(_theme.color(ThemeColor::hairline));
    painter.drawPath(shape);
}

void PreviewStage::drawPicture(QPainter &painter, const QRect &room)
{
    if (_picture.isNull()) {
        constexpr int side = 48;
        if (!_button->isHidden())
            return; // it stands in the same place
        painter.drawPixmap(
            room.center() - QPoint(side / 2, side / 2),
            _theme.symbol(u"film"_s, side, _theme.color(ThemeColor::secondary), devicePixelRatioF()));
        return;
    }
    const Qt::AspectRatioMode mode = _gravity == VideoGravity::stretch ? Qt::IgnoreAspectRatio
                                     : _gravity == VideoGravity::crop  ? Qt::KeepAspectRatioByExpanding
                                                                       : Qt::KeepAspectRatio;
    QRect place(QPoint(), _picture.size().scaled(room.size(), mode));
    place.moveCenter(room.center());
    if (_isPlaying) {
        painter.drawImage(place, _picture);
        return;
    }
    if (_still.isNull()) {
        const qreal ratio = devicePixelRatioF();
        _still = QPixmap::fromImage(
            _picture.scaled(place.size() * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        _still.setDevicePixelRatio(ratio);
    }
    painter.drawPixmap(place.topLeft(), _still);
}

void PreviewStage::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    _still = {};
    placeButton();
}

void PreviewStage::placeButton()
{
    _button->move(frame().center() - _button->rect().center());
}

} // namespace velbrix
