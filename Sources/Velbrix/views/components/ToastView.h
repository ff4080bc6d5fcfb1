#pragma once

#include "app/Toast.h"

#include <QPropertyAnimation>
#include <QWidget>

namespace velbrix {

class Theme;

// One banner, a small window above all others that never takes the focus.
class ToastView final : public QWidget {
    Q_OBJECT

public:
    ToastView(const Theme &theme, const Toast &toast, QWidget *parent = nullptr);

    int id() const { return _toastId; }
    // Slides to the place, at first from its right.
    void slideTo(const QPoint &place);

Q_SIGNALS:
    void clicked();
    void hovered(bool inside);

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    const Theme &_theme;
    int _toastId;
    QPropertyAnimation _slide;
};

} // namespace velbrix
