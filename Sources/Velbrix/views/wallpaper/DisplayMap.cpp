#include "views/wallpaper/DisplayMap.h"

#include "views/Theme.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int mapHeight = 112;
constexpr int gap = 4; // between displays that touch

} // namespace

DisplayMap::DisplayMap(const Theme &theme, QWidget *parent) : QWidget(parent), _theme(theme)
{
    setObjectName(u"displayMap"_s);
    setAccessibleName(u"显示器排列"_s);
    setFixedHeight(mapHeight);
    connect(&theme, &Theme::changed, this, qOverload<>(&QWidget::update));
}

void DisplayMap::show(const QList<WallpaperDisplayInfo> &displays, bool isPaused)
{
    _isPaused = isPaused;
    _displays = displays;
    QStringList names;
    for (const WallpaperDisplayInfo &display : displays)
        names.append(display.name);
    setAccessibleDescription(names.join(u"、"_s));
    update();
}

void DisplayMap::paintEvent(QPaintEvent *)
{
    QRect whole;
    for (const WallpaperDisplayInfo &display : std::as_const(_displays))
        whole |= display.frame;
    if (whole.isEmpty())
        return;
    const double scale = std::min(static_cast<double>(width()) / whole.width(),
                                  static_cast<double>(mapHeight - 8) / whole.height());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate((width() - whole.width() * scale) / 2, (mapHeight - whole.height() * scale) / 2);
    for (const WallpaperDisplayInfo &display : std::as_const(_displays)) {
        const QPointF place = (display.frame.topLeft() - whole.topLeft()).toPointF() * scale;
        const QRectF box = QRectF(place, QSizeF(display.frame.size()) * scale)
                               .adjusted(gap / 2.0, gap / 2.0, -gap / 2.0, -gap / 2.0);
        QColor fill = _theme.color(display.isMain ? ThemeColor::accent : ThemeColor::secondary);
        fill.setAlphaF(display.isMain ? 0.16F : 0.12F);
        painter.setBrush(fill);
        painter.setPen(QPen(_theme.color(display.isMain ? ThemeColor::accent : ThemeColor::hairline), 1.5));
        painter.drawRoundedRect(box, 5, 5);
        const QString doing = _isPaused ? u" · 已暂停"_s : u" · 播放中"_s;
        const QString state = display.isPlaying ? doing : QString();
        const QString role = (display.isMain ? u"主屏"_s : u"副屏"_s) + state;
        painter.setPen(_theme.color(ThemeColor::text));
        painter.setFont(_theme.font(11));
        const QFontMetrics metrics(painter.font());
        const int room = static_cast<int>(box.width()) - 8;
        painter.drawText(box, Qt::AlignCenter,
                         metrics.elidedText(display.name, Qt::ElideRight, room) + u'\n' +
                             metrics.elidedText(role, Qt::ElideRight, room));
    }
}

} // namespace velbrix
