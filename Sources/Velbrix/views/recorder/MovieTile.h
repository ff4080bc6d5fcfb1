#pragma once

#include <QImage>
#include <QWidget>

namespace velbrix {

class Theme;

// A picture of a movie. A click plays it, and dragged it is the file, for
// another program to take a copy of.
class MovieTile final : public QWidget {
    Q_OBJECT

public:
    explicit MovieTile(const Theme &theme, QWidget *parent = nullptr);

    // Without a path nothing can be done with it; without a picture a symbol is drawn.
    void show(const QString &path, const QImage &picture);

Q_SIGNALS:
    void clicked();
    void dropped(); // somewhere, or nowhere

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void drag();

    const Theme &_theme;
    QString _path;
    QImage _picture;
    QPoint _pressedAt;
    bool _isPressed = false;
};

} // namespace velbrix
