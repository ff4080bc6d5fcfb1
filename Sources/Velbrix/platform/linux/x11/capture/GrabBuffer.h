#pragma once

#include "platform/linux/media/recording/PixelRects.h"
#include "platform/linux/x11/ShmSegment.h"

#include <memory>
#include <vector>

namespace velbrix {

// A picture that is kept up to date with rectangles from the server. Rows
// below its end may be read (not written), as picture filters do.
class GrabBuffer {
public:
    explicit GrabBuffer(X11Connection &connection) : _connection(connection) {}

    // Black, whatever it held. False without the memory for it: then it is empty
    // and nothing may be queued.
    bool resize(int width, int height);
    BitmapView view() const;

    // Asks for a rectangle whose top left corner is at (x, y) in the drawable.
    // With whole rows the rest of the rows may be overwritten as well, which
    // must be the same picture.
    void queue(xcb_drawable_t drawable, int x, int y, const PixelRect &target, bool wholeRows);
    // Waits for what was asked. False when any of it could not be had.
    bool collect();

private:
    struct Request {
        PixelRect target;
        std::size_t offset = 0; // in the segment; the picture itself for whole rows
        bool isStaged = false;
        unsigned sequence = 0;
    };

    bool take(const Request &request);
    void copyIn(const Request &request, const std::uint8_t *pixels) const;

    X11Connection &_connection;
    int _width = 0;
    int _height = 0;
    std::size_t _pictureSize = 0;
    std::unique_ptr<ShmSegment> _memory; // the picture, spare rows, then a staging area
    std::size_t _staged = 0;
    std::vector<Request> _requests;
    bool _failed = false;
};

} // namespace velbrix
