#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QSize>

#include <xcb/render.h>

#include <memory>

namespace velbrix {

// A picture that the server, and so the graphics card where there is one,
// enlarges to the size of a window.
class ScaledPicture {
public:
    // Null where the server cannot.
    static std::unique_ptr<ScaledPicture> create(X11Connection &connection, xcb_window_t window, QSize from,
                                                 QSize to);
    ~ScaledPicture();
    ScaledPicture(const ScaledPicture &) = delete;
    ScaledPicture &operator=(const ScaledPicture &) = delete;

    // Where to draw before show().
    xcb_pixmap_t pixmap() const { return _pixmap; }
    void show() const;

private:
    ScaledPicture(X11Connection &connection, QSize to);

    X11Connection &_connection;
    const QSize _size;
    const xcb_pixmap_t _pixmap;
    const xcb_render_picture_t _source;
    const xcb_render_picture_t _target;
};

} // namespace velbrix
