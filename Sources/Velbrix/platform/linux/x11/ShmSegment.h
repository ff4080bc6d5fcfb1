#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace velbrix {

// Memory that the server can write pictures into, or ordinary memory where it
// cannot. The connection must outlive it.
class ShmSegment {
public:
    // Null when the memory cannot be had.
    static std::unique_ptr<ShmSegment> create(X11Connection &connection, std::size_t size);
    ~ShmSegment();
    ShmSegment(const ShmSegment &) = delete;
    ShmSegment &operator=(const ShmSegment &) = delete;

    std::uint8_t *data() const { return _data; }
    std::size_t size() const { return _size; }
    bool isShared() const { return _id != XCB_NONE; }
    xcb_shm_seg_t id() const { return _id; }

private:
    ShmSegment(X11Connection &connection, std::size_t size) : _connection(connection), _size(size) {}
    bool shareDescriptor();
    bool shareSystemV();
    bool mapPrivate();

    X11Connection &_connection;
    std::size_t _size;
    std::uint8_t *_data = nullptr;
    xcb_shm_seg_t _id = XCB_NONE;
    bool _isSystemV = false;
};

} // namespace velbrix
