#pragma once

#include "platform/VideoSurface.h"

#include <QAbstractButton>
#include <QImage>
#include <QPixmap>
#include <QWidget>

namespace velbrix {

class Theme;

// The picture of a video as a display would show it, with a round button to
// let it move here.
class PreviewStage final : public QWidget {
    Q_OBJECT

public:
    // At most so many pixels high.
    PreviewStage(const Theme &theme, const QString &name, int mostHeight, QWidget *parent = nullptr);

    // Only the proportions of the display count.
    void setDisplay(const QSize &display, VideoGravity gravity);

    // Null: a symbol stands in for it.
    void setPicture(const QImage &picture);
    void setPlaying(bool playing);
    // Without one there is nothing to play.
    void setPlayable(bool playable);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

Q_SIGNALS:
    void pressed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    class Button;
    QRect frame() const;
    void placeButton();
    void drawPicture(QPainter &painter, const QRect &room);

    const Theme &_theme;
    const int _mostHeight;
    Button *_button;
    QSize _display{16, 9};
    VideoGravity _gravity = VideoGravity::fit;
    QImage _picture;
    QPixmap _still; // the picture in the size of the stage, while it rests
    bool _isPlaying = false;
};

} // namespace velbrix
