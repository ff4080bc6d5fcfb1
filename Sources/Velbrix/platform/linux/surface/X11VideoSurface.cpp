#include "platform/linux/surface/X11VideoSurface.h"

#include "platform/linux/movie/FittedSize.h"
#include "platform/linux/surface/WindowSink.h"

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
    std::unique_ptr<X11VideoSurface> surface(
        new X11VideoSurface(clock, std::move(retired), frame, std::move(events)));
    if (const auto opened = surface->open(); !opened)
        return std::unexpected(opened.error());
    return surface;
}

X11VideoSurface::X11VideoSurface(Clock &clock, std::shared_ptr<RetiredThreads> retired, const QRect &frame,
                                 SurfaceEvents events)
    : _retired(std::move(retired)), _frame(frame), _events(std::move(events)), _time(clock, [this] {
          if (const auto passed = _events.time)
              passed();
      })
{
}

Result<void> X11VideoSurface::open()
{
    auto window = DesktopWindow::create(_frame, [this] { _renderer->repaint(); });
    if (!window)
        return std::unexpected(window.error());
    _window = std::move(*window);
    auto sink = WindowSink::open(_window->id());
    if (!sink)
        return std::unexpected(sink.error());
    auto player = MpvPlayer::create({.starting = [this](int load) { _renderer->begin(load); },
                                     .formatChanged =
                                         [this](const PictureFormat &format) {
                                             _format = format;
                                             applySize();
                                         },
                                     .failed = [this](const Failure &why) { failed(why); }});
    if (!player)
        return std::unexpected(player.error());
    const auto shown = [this, relay = _relay](int load) {
        relay->post([this, load] { firstPicture(load); });
    };
    auto renderer = VideoRenderer::create((*player)->library(), (*player)->handle(), std::move(*sink), shown);
    if (!renderer) {
        (*player)->library().mpv_terminate_destroy((*player)->release());
        return std::unexpected(renderer.error());
    }
    _player = std::move(*player);
    _renderer = std::move(*renderer);
    applySize();
    return {};
}

X11VideoSurface::~X11VideoSurface()
{
    _relay->close();
    if (!_renderer)
        return;
    _player->release();
    VideoRenderer::retire(std::move(_renderer), *_retired);
}

void X11VideoSurface::load(const QString &path)
{
    _isAnnouncing = false;
    _load = _player->load(path);
    applyPlaying();
}

void X11VideoSurface::unload()
{
    _isAnnouncing = false;
    _load = 0;
    _player->unload();
    _renderer->clear();
    applyPlaying();
}

void X11VideoSurface::play(double rate)
{
    _isToPlay = true;
    _player->setRate(rate);
    applyPlaying();
}

void X11VideoSurface::pause()
{
    _isToPlay = false;
    applyPlaying();
}

void X11VideoSurface::setVolume(double volume)
{
    _player->setVolume(volume);
}

void X11VideoSurface::setGravity(VideoGravity gravity)
{
    _player->setGravity(gravity);
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
    const QFuture<Result<QImage>> copied = _renderer->copy(size);
    co_return co_await copied;
}

qint64 X11VideoSurface::progress() const
{
    return _renderer->pictures();
}

quint32 X11VideoSurface::windowId() const
{
    return _window->id();
}

void X11VideoSurface::applyPlaying()
{
    const bool plays = _isToPlay && _isShown && _player->isLoaded();
    _player->setPaused(!plays);
    _time.run(plays);
}

void X11VideoSurface::applySize()
{
    const QSize painted = WindowSink::pictureSize(_frame.size());
    _player->setScaling(_format.stored != painted || _format.shown != painted);
    _renderer->resize(_frame.size());
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
