#include "platform/linux/x11/surface/X11VideoSurface.h"

#include "platform/linux/media/libav/FittedSize.h"
#include "platform/linux/x11/surface/WindowSink.h"

#include <QCoroFuture>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

constexpr QSize largestCopy(2560, 1440);

} // namespace

Result<std::unique_ptr<VideoSurface>> X11VideoSurface::create(Clock &clock,
                                                              std::shared_ptr<RetiredThreads> retired,
                                                              const QRect &frame, SurfaceEvents events)
{
    std::unique_ptr<X11VideoSurface> surface(new X11VideoSurface(clock, frame, std::move(events)));
    if (const auto opened = surface->open(std::move(retired)); !opened)
        return std::unexpected(opened.error());
    return surface;
}

X11VideoSurface::X11VideoSurface(Clock &clock, const QRect &frame, SurfaceEvents events)
    : _frame(frame), _events(std::move(events)), _time(clock, [this] {
          if (const auto passed = _events.time)
              passed();
      })
{
}

Result<void> X11VideoSurface::open(std::shared_ptr<RetiredThreads> retired)
{
    auto window = DesktopWindow::create(_frame, [this] { _painted->renderer().repaint(); });
    if (!window)
        return std::unexpected(window.error());
    _window = std::move(*window);
    auto sink = WindowSink::open(_window->id());
    if (!sink)
        return std::unexpected(sink.error());
    const auto formatChanged = [this](const PictureFormat &format) {
        _format = format;
        applySize();
    };
    const auto shown = [this, relay = _relay](int load) {
        relay->post([this, load] { firstPicture(load); });
    };
    auto painted = PaintedPlayer::create(
        std::move(retired), std::move(*sink),
        {.formatChanged = formatChanged, .failed = [this](const Failure &why) { failed(why); }}, shown);
    if (!painted)
        return std::unexpected(painted.error());
    _painted = std::move(*painted);
    applySize();
    return {};
}

X11VideoSurface::~X11VideoSurface()
{
    _relay->close();
}

void X11VideoSurface::load(const QString &path)
{
    _isAnnouncing = false;
    _load = _painted->player().load(path);
    applyPlaying();
}

void X11VideoSurface::unload()
{
    _isAnnouncing = false;
    _load = 0;
    _painted->player().unload();
    _painted->renderer().clear();
    applyPlaying();
}

void X11VideoSurface::play(double rate)
{
    _isToPlay = true;
    _painted->player().setRate(rate);
    applyPlaying();
}

void X11VideoSurface::pause()
{
    _isToPlay = false;
    applyPlaying();
}

void X11VideoSurface::setVolume(double volume)
{
    _painted->player().setVolume(volume);
}

void X11VideoSurface::setGravity(VideoGravity gravity)
{
    _painted->player().setGravity(gravity);
}

void X11VideoSurface::observeTime(std::chrono::milliseconds interval)
{
    _time.observe(interval);
}

void X11VideoSurface::setFrame(const QRect &frame)
{
    _frame = frame;
    _window->setFrame(frame);
    applySize();
}

void X11VideoSurface::setLayer(SurfaceLayer layer)
{
    _window->setLayer(layer);
}

void X11VideoSurface::orderFront()
{
    _window->orderFront();
    _isShown = true;
    applyPlaying();
    if (std::exchange(_isAnnouncing, false))
        _relay->post([this, load = _load] { firstPicture(load); });
}

void X11VideoSurface::orderOut()
{
    _isShown = false;
    applyPlaying();
    _window->orderOut();
}

QCoro::Task<Result<QImage>> X11VideoSurface::currentFrame()
{
    const bool hasPicture = _load > 0 && !_format.shown.isEmpty();
    const QSize size = hasPicture ? fittedSize(_format.shown, largestCopy) : QSize();
    const QFuture<Result<QImage>> copied = _painted->renderer().copy(size);
    co_return co_await copied;
}

qint64 X11VideoSurface::progress() const
{
    return _painted->renderer().pictures();
}

quint32 X11VideoSurface::windowId() const
{
    return _window->id();
}

void X11VideoSurface::applyPlaying()
{
    const bool plays = _isToPlay && _isShown && _painted->player().isLoaded();
    _painted->player().setPaused(!plays);
    _time.run(plays);
}

void X11VideoSurface::applySize()
{
    const QSize painted = WindowSink::pictureSize(_frame.size());
    _painted->player().setScaling(_format.stored != painted || _format.shown != painted);
    _painted->renderer().resize(_frame.size());
}

void X11VideoSurface::firstPicture(int load)
{
    if (load != _load)
        return;
    if (!_isShown) {
        _isAnnouncing = true;
        return;
    }
    if (const auto call = _events.firstFrame)
        call();
}

// Once more through the event loop: the caller may destroy us.
void X11VideoSurface::failed(const Failure &why)
{
    applyPlaying();
    _relay->post([this, why, load = _load] {
        if (load != _load)
            return;
        if (const auto call = _events.failed)
            call(why);
    });
}

} // namespace velbrix
