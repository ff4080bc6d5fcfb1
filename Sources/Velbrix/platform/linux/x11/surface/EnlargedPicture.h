#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QSize>

#include <xcb/render.h>

#include <memory>

namespace velbrix {

// A picture that the server, and so the graphics card where there is one,
// enlarges to the size of a window.
class EnlargedPicture {
public:
    // Null where the server cannot.
    static std::unique_ptr<EnlargedPicture> create(X11Connection &connection, xcb_window_t window, QSize from,
                                                   QSize to);
    ~EnlargedPicture();
    EnlargedPicture(const EnlargedPicture &) = delete;
    EnlargedPicture &operator=(const EnlargedPicture &) = delete;

    // Where to draw before show().
    xcb_pixmap_t pixmap() const { return _pixmap; }
    void show() const;

private:
    EnlargedPicture(X11Connection &connection, QSize to);

    X11Connection &_connection;
    const QSize _size;
    const xcb_pixmap_t _pixmap;
    const xcb_render_picture_t _source;
    const xcb_render_picture_t _target;
};

} // namespace velbrix
