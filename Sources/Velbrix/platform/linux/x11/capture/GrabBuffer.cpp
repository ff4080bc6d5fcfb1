#include "platform/linux/x11/capture/GrabBuffer.h"

#include "platform/linux/x11/XGeometry.h"

#include <algorithm>
#include <cstring>

namespace velbrix {

namespace {

// That picture filters may read below the end without harm.
constexpr int spareRows = 4;

} // namespace

bool GrabBuffer::resize(int width, int height)
{
    collect();
    _failed = false;
    _width = _height = 0;
    const auto row = static_cast<std::size_t>(width) * 4;
    const std::size_t picture = row * static_cast<std::size_t>(height + spareRows);
    const std::size_t wanted = picture + row * static_cast<std::size_t>(height);
    if (!_memory || _memory->size() < wanted)
        _memory = ShmSegment::create(_connection, wanted);
    if (!_memory)
        return false;
    _width = width;
    _height = height;
    _pictureSize = picture;
    std::memset(_memory->data(), 0, picture);
    return true;
}

BitmapView GrabBuffer::view() const
{
    return {_memory ? _memory->data() : nullptr, _width, _height};
}

void GrabBuffer::queue(xcb_drawable_t drawable, int x, int y, const PixelRect &target, bool wholeRows)
{
    xcb_connection_t *const xcb = _connection.xcb();
    constexpr std::uint32_t allPlanes = ~0U;
    if (!_memory->isShared()) {
        const auto cookie = xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, toXPlace(x), toXPlace(y),
                                          toXLength(target.width), toXLength(target.height), allPlanes);
        _requests.push_back({target, 0, true, cookie.sequence});
        return;
    }
    Request request{target, 0, false, 0};
    int width = target.width;
    // A wide rectangle is cheaper to fetch with its whole rows, straight to
    // where it belongs, than to fetch and copy.
    if (target.width == _width || (wholeRows && target.width * 2 >= _width)) {
        request.offset = static_cast<std::size_t>(target.y) * static_cast<std::size_t>(_width) * 4;
        x -= target.x;
        width = _width;
    } else {
        const auto size =
            static_cast<std::size_t>(target.width) * static_cast<std::size_t>(target.height) * 4;
        if (_pictureSize + _staged + size > _memory->size())
            _failed = !collect() || _failed;
        request.isStaged = true;
        request.offset = _pictureSize + _staged;
        _staged += size;
    }
    request.sequence = xcb_shm_get_image(xcb, drawable, toXPlace(x), toXPlace(y), toXLength(width),
                                         toXLength(target.height), allPlanes, XCB_IMAGE_FORMAT_Z_PIXMAP,
                                         _memory->id(), static_cast<std::uint32_t>(request.offset))
                           .sequence;
    _requests.push_back(request);
}

bool GrabBuffer::collect()
{
    bool complete = !std::exchange(_failed, false);
    for (const Request &request : _requests)
        complete = take(request) && complete;
    _requests.clear();
    _staged = 0;
    return complete;
}

bool GrabBuffer::take(const Request &request)
{
    xcb_connection_t *const xcb = _connection.xcb();
    if (_memory->isShared()) {
        const XReply<xcb_shm_get_image_reply_t> reply(
            xcb_shm_get_image_reply(xcb, {request.sequence}, nullptr));
        if (!reply)
            return false;
        if (request.isStaged)
            copyIn(request, _memory->data() + request.offset);
        return true;
    }
    const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(xcb, {request.sequence}, nullptr));
    const auto size = std::int64_t{request.target.width} * request.target.height * 4;
    if (!reply || xcb_get_image_data_length(reply.get()) < size)
        return false;
    copyIn(request, xcb_get_image_data(reply.get()));
    return true;
}

void GrabBuffer::copyIn(const Request &request, const std::uint8_t *pixels) const
{
    const auto row = static_cast<std::size_t>(request.target.width) * 4;
    for (int y = 0; y < request.target.height; ++y)
        std::memcpy(view().at(request.target.x, request.target.y + y),
                    pixels + static_cast<std::size_t>(y) * row, row);
}

} // namespace velbrix
