#pragma once

#include <QList>
#include <QObject>
#include <QRect>

#include <functional>

namespace velbrix {

class Theme;
class ToastQueue;
class ToastView;

// The banners of the queue, one under the other at the top right of a screen.
class ToastStack final : public QObject {
public:
    // `screen` answers the usable part of the screen to show them on.
    ToastStack(const Theme &theme, ToastQueue &toasts, std::function<QRect()> screen,
               QObject *parent = nullptr);
    ~ToastStack() override;

    const QList<ToastView *> &views() const { return _views; }

private:
    void refresh();
    void remove(ToastView *view);
    void hover(ToastView *view, bool inside);

    const Theme &_theme;
    ToastQueue &_toasts;
    std::function<QRect()> _screen;
    QList<ToastView *> _views; // top to bottom
    ToastView *_hovered = nullptr;
};

} // namespace velbrix
