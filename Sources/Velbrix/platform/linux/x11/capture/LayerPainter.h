#pragma once

#include "platform/linux/media/recording/PixelRects.h"
#include "platform/linux/x11/X11Connection.h"

#include <xcb/xfixes.h>

namespace velbrix {

// A child of the root and what it contains, in coordinates of the root.
struct WindowContent {
    xcb_window_t window = XCB_WINDOW_NONE;
    PixelRect outer; // with the X11 border
    int border = 0;
    int depth = 0;
    xcb_visualid_t visual = 0;
    bool isShaped = false;
    xcb_pixmap_t pixmap = XCB_NONE; // the content; begins at the border
};

// Puts a part of the screen together, bottom to top, in a pixmap on the
// server. Coordinates of the root.
class LayerPainter {
public:
    // The connection must outlive the painter.
    explicit LayerPainter(X11Connection &connection) : _connection(connection) {}
    ~LayerPainter();
    LayerPainter(const LayerPainter &) = delete;
    LayerPainter &operator=(const LayerPainter &) = delete;

    void setArea(const PixelRect &area);
    // The desktop's picture where a program has left it for others, else black.
    void paintBackground(const PixelRect &part);
    void paint(const WindowContent &content, const PixelRect &part);

    // Begins where the area does.
    xcb_pixmap_t pixmap() const { return _pixmap; }

private:
    void copy(const WindowContent &content, const PixelRect &shown);
    void blend(const WindowContent &content, const PixelRect &shown);
    xcb_xfixes_region_t shapeOf(const WindowContent &content);
    void letGo();

    X11Connection &_connection;
    PixelRect _area;
    xcb_pixmap_t _pixmap = XCB_NONE;
    xcb_gcontext_t _context = XCB_NONE;
};

} // namespace velbrix
