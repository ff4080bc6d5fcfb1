#pragma once

#include <QColor>
#include <QPainter>
#include <QRasterWindow>

namespace velbrix::test {

// A window of one colour with a smaller square of another in its corner, that
// paints itself whenever the server asks.
class PaintedWindow final : public QRasterWindow {
public:
    PaintedWindow(const QString &title, QRect geometry, QColor colour, Qt::WindowFlags flags = {})
        : _colour(colour)
    {
        setTitle(title);
        setFlags(flags);
        setGeometry(geometry);
    }

    void repaint(QColor colour)
    {
        _colour = colour;
        update();
    }
    quint32 id() const { return static_cast<quint32>(winId()); }

private:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(QRect(QPoint(), size()), _colour);
        painter.fillRect(QRect(0, 0, 20, 20), Qt::white);
    }

    QColor _colour;
};

} // namespace velbrix::test
