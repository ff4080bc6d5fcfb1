#pragma once

#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/capture/GrabBuffer.h"

#include <xcb/xfixes.h>

#include <cstdint>
#include <vector>

namespace velbrix {

// A pointer's picture, colours multiplied by opacity.
struct CursorImage {
    int width = 0;
    int height = 0;
    int hotX = 0;
    int hotY = 0;
    std::vector<std::uint32_t> pixels;
};

struct PointerState {
    int x = 0; // in the root
    int y = 0;
    xcb_window_t over = XCB_WINDOW_NONE; // the child of the root below it
};

// Where the pointer is and how it looks. The connection must have the fixes
// and outlive it.
class CursorTracker {
public:
    explicit CursorTracker(X11Connection &connection);

    void handleEvent(const xcb_generic_event_t &event);
    void request();
    // After request() and anything that waits for the server.
    void collect();

    const PointerState &pointer() const { return _pointer; }
    const CursorImage &image() const { return _image; }
    // Changes with the image.
    int imageSerial() const { return _imageSerial; }

private:
    X11Connection &_connection;
    PointerState _pointer;
    CursorImage _image;
    int _imageSerial = 0;
    bool _isImageStale = true;
    bool _isImageAsked = false;
    xcb_query_pointer_cookie_t _askedPointer{};
    xcb_xfixes_get_cursor_image_cookie_t _askedImage{};
};

// A pointer painted over a picture for as long as this lives.
class PaintedCursor {
public:
    // (x, y): the image's top left corner in the picture.
    PaintedCursor(const BitmapView &picture, const CursorImage &image, int x, int y);
    ~PaintedCursor();
    PaintedCursor(const PaintedCursor &) = delete;
    PaintedCursor &operator=(const PaintedCursor &) = delete;

private:
    BitmapView _picture;
    PixelRect _rect;
    std::vector<std::uint8_t> _beneath;
};

} // namespace velbrix
