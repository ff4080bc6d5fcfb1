#pragma once

#include <QAbstractButton>
#include <QImage>
#include <QPixmap>
#include <QWidget>

namespace velbrix {

class Theme;

// The picture of a video in 16:9, with a round button to let it move here.
class PreviewStage final : public QWidget {
    Q_OBJECT

public:
    static constexpr int mostHeight = 360;

    explicit PreviewStage(const Theme &theme, QWidget *parent = nullptr);

    // Null: a symbol stands in for it.
    void setPicture(const QImage &picture);
    void setPlaying(bool playing);
    // Without one there is nothing to play.
    void setPlayable(bool playable);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override { return {mostHeight * 16 / 9, mostHeight}; }

Q_SIGNALS:
    void pressed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    class Button;
    QRect frame() const;
    void drawPicture(QPainter &painter, const QRect &room);

    const Theme &_theme;
    Button *_button;
    QImage _picture;
    QPixmap _still; // the picture in the size of the stage, while it rests
    bool _isPlaying = false;
};

} // namespace velbrix
