#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QImage>
#include <QList>
#include <QRect>

#include <initializer_list>

namespace velbrix {

// What the X server's root window shows, and what it says it shows: other
// programs read the picture that is published by the convention of the
// properties _XROOTPMAP_ID and ESETROOT_PMAP_ID. Short-lived, one thread.
class RootWindow {
public:
    static Result<RootWindow> open();

    QSize size() const;
    QList<QRect> monitors();
    // Null where nobody has published a picture.
    QImage published();
    // The background itself, whoever has set it. Null while a compositing
    // manager draws in its place.
    QImage background();

    // Whether the published picture is one that publishAsOurs() put there.
    bool isOurs();

    // These outlive the connection and whoever calls.
    Result<void> publish(const QImage &picture);
    Result<void> publishAsOurs(const QImage &picture);
    Result<void> setBackground(const QImage &picture);
    void setBackground(QRgb colour);
    // The server's own background, and no picture published.
    void clear();

private:
    explicit RootWindow(std::unique_ptr<X11Connection> x11) : _x11(std::move(x11)) {}
    QImage pixels(xcb_drawable_t drawable, QSize size);
    xcb_pixmap_t upload(const QImage &picture);
    Result<void> publish(const QImage &picture, std::initializer_list<const char *> names);
    void release();
    void show(std::uint32_t attribute, std::uint32_t value);

    std::unique_ptr<X11Connection> _x11;
};

} // namespace velbrix
