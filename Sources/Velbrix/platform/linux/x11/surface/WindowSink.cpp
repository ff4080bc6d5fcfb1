#include "platform/linux/x11/surface/WindowSink.h"

#include "platform/linux/x11/XGeometry.h"

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

constexpr QSize largestPicture(2560, 1440);

std::size_t stride(QSize size)
{
    return static_cast<std::size_t>(size.width()) * 4;
}

} // namespace

Result<std::unique_ptr<WindowSink>> WindowSink::open(const DesktopWindow &window)
{
    auto connection = X11Connection::open();
    if (!connection)
        return std::unexpected(connection.error());
    if (!(*connection)->hasTrueColor())
        return failure(u"显示器的色彩格式不支持播放视频"_s);
    return std::unique_ptr<WindowSink>(new WindowSink(std::move(*connection), window));
}

WindowSink::WindowSink(std::unique_ptr<X11Connection> connection, const DesktopWindow &window)
    : _numberKeeper(window.numberKeeper()),
      _connection(std::move(connection)),
      _window(window.id()),
      _context(xcb_generate_id(_connection->xcb()))
{
    const std::array<std::uint32_t, 2> values{_connection->screen().black_pixel, 0};
    xcb_create_gc(_connection->xcb(), _context, _window, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES,
                  values.data());
    _connection->flush();
}

WindowSink::~WindowSink()
{
    // What is on its way must not arrive when the window's number is another's.
    _connection->sync();
}

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
    _scaled.reset();
    // What was painted for the old size cannot be shown in the new one.
    _hasPicture = _hasPicture && _buffers[_shown].size == _painted;
    if (_painted != _size)
        _scaled = ScaledPicture::create(*_connection, _window, _painted, _size);
    if (!_scaled)
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
        buffer.memory = ShmSegment::create(*_connection, bytes);
        if (!buffer.memory)
            return std::nullopt;
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
        if (!extension || eventType(*event) != extension->first_event + XCB_SHM_COMPLETION)
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
    const xcb_drawable_t target = _scaled ? _scaled->pixmap() : _window;
    if (!buffer.memory->isShared()) {
        _connection->putImage(target, _context, buffer.size, buffer.memory->data());
    } else {
        ++buffer.reads;
        const auto width = toXLength(buffer.size.width());
        const auto height = toXLength(buffer.size.height());
        xcb_shm_put_image(_connection->xcb(), target, _context, width, height, 0, 0, width, height, 0, 0,
                          _connection->screen().root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 1, buffer.memory->id(),
                          0);
    }
    if (_scaled)
        _scaled->show();
    _connection->flush();
}

} // namespace velbrix
