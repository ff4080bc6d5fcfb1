#include "platform/linux/x11/surface/WindowSink.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

constexpr QSize largestPicture(2560, 1440);

std::size_t stride(QSize size)
{
    return static_cast<std::size_t>(size.width()) * 4;
}

std::uint16_t length(int pixels)
{
    return static_cast<std::uint16_t>(pixels);
}

} // namespace

Result<std::unique_ptr<WindowSink>> WindowSink::open(xcb_window_t window)
{
    auto connection = X11Connection::open();
    if (!connection)
        return std::unexpected(connection.error());
    if (!(*connection)->hasTrueColor())
        return failure(u"显示器的色彩格式不支持播放视频"_s);
    return std::unique_ptr<WindowSink>(new WindowSink(std::move(*connection), window));
}

WindowSink::WindowSink(std::unique_ptr<X11Connection> connection, xcb_window_t window)
    : _connection(std::move(connection)), _window(window), _context(xcb_generate_id(_connection->xcb()))
{
    const std::array<std::uint32_t, 2> values{_connection->screen().black_pixel, 0};
    xcb_create_gc(_connection->xcb(), _context, _window, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES,
                  values.data());
    _connection->flush();
}

WindowSink::~WindowSink() = default;

QSize WindowSink::pictureSize(QSize window)
{
    const bool fits = window.width() <= largestPicture.width() && window.height() <= largestPicture.height();
    return fits ? window : window.scaled(largestPicture, Qt::KeepAspectRatio);
}

void WindowSink::resize(QSize size)
{
    if (size == _size)
        return;
    _size = size;
    _painted = pictureSize(size);
    _enlarged.reset();
    // What was painted for the old size cannot be shown in the new one.
    _hasPicture = _hasPicture && _buffers[_shown].size == _painted;
    if (_painted != _size)
        _enlarged = EnlargedPicture::create(*_connection, _window, _painted, _size);
    if (!_enlarged)
        _painted = _size;
}

std::optional<PictureSink::Canvas> WindowSink::next()
{
    Buffer &buffer = _buffers[1 - _shown];
    if (_painted.isEmpty() || buffer.reads > 0)
        return std::nullopt;
    if (!buffer.memory || buffer.size != _painted) {
        buffer.memory.reset();
        const std::size_t bytes = stride(_painted) * static_cast<std::size_t>(_painted.height());
        buffer.memory = std::make_unique<ShmSegment>(*_connection, bytes);
        buffer.size = _painted;
    }
    return Canvas{buffer.memory->data(), stride(_painted), _painted};
}

void WindowSink::present()
{
    _shown = 1 - _shown;
    _hasPicture = true;
    put(_buffers[_shown]);
}

void WindowSink::repaint()
{
    if (_hasPicture)
        put(_buffers[_shown]);
}

int WindowSink::descriptor() const
{
    return xcb_get_file_descriptor(_connection->xcb());
}

void WindowSink::collect()
{
    const auto *const extension = xcb_get_extension_data(_connection->xcb(), &xcb_shm_id);
    while (const auto event = _connection->nextEvent()) {
        if (!extension || (event->response_type & 0x7f) != extension->first_event + XCB_SHM_COMPLETION)
            continue;
        const auto &completed = reinterpret_cast<const xcb_shm_completion_event_t &>(*event);
        for (Buffer &buffer : _buffers) {
            if (buffer.memory && buffer.memory->isShared() && buffer.memory->id() == completed.shmseg)
                --buffer.reads;
        }
    }
}

void WindowSink::put(Buffer &buffer)
{
    const xcb_drawable_t target = _enlarged ? _enlarged->pixmap() : _window;
    if (!buffer.memory->isShared()) {
        putRows(buffer, target);
    } else {
        ++buffer.reads;
        const auto width = length(buffer.size.width());
        const auto height = length(buffer.size.height());
        xcb_shm_put_image(_connection->xcb(), target, _context, width, height, 0, 0, width, height, 0, 0,
                          _connection->screen().root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 1, buffer.memory->id(),
                          0);
    }
    if (_enlarged)
        _enlarged->show();
    _connection->flush();
}

// As many rows at a time as a request can hold.
void WindowSink::putRows(const Buffer &buffer, xcb_drawable_t target)
{
    xcb_connection_t *const xcb = _connection->xcb();
    const std::size_t row = stride(buffer.size);
    const std::size_t room = std::size_t{xcb_get_maximum_request_length(xcb)} * 4 - 64;
    const int rows = std::max(1, static_cast<int>(room / row));
    for (int y = 0; y < buffer.size.height(); y += rows) {
        const int count = std::min(rows, buffer.size.height() - y);
        xcb_put_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, target, _context, length(buffer.size.width()),
                      length(count), 0, static_cast<std::int16_t>(y), 0, _connection->screen().root_depth,
                      static_cast<std::uint32_t>(row * static_cast<std::size_t>(count)),
                      buffer.memory->data() + row * static_cast<std::size_t>(y));
    }
}

} // namespace velbrix
