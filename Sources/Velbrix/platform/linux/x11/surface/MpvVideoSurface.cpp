#include "platform/linux/x11/surface/MpvVideoSurface.h"

#include "platform/linux/media/libav/FittedSize.h"
#include "platform/linux/x11/surface/WindowSink.h"

#include <QCoroFuture>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

constexpr QSize largestCopy(2560, 1440);

} // namespace

Result<std::unique_ptr<VideoSurface>> MpvVideoSurface::create(Clock &clock,
                                                              std::shared_ptr<PlayerThreads> threads,
                                                              DesktopWindow &window, VideoEvents events)
{
    std::unique_ptr<MpvVideoSurface> surface(new MpvVideoSurface(clock, window, std::move(events)));
    if (const auto opened = surface->open(std::move(threads)); !opened)
        return std::unexpected(opened.error());
    return surface;
}

MpvVideoSurface::MpvVideoSurface(Clock &clock, DesktopWindow &window, VideoEvents events)
    : _window(window), _events(std::move(events)), _time(clock, [this] {
          if (const auto passed = _events.time)
              passed();
      })
{
}

Result<void> MpvVideoSurface::open(std::shared_ptr<PlayerThreads> threads)
{
    auto sink = WindowSink::open(_window);
    if (!sink)
        return std::unexpected(sink.error());
    const auto formatChanged = [this](const PictureFormat &format) {
        _format = format;
        frameChanged(_window.size());
    };
    const auto shown = [this, relay = _relay](int load) {
        relay->post([this, load] { firstPicture(load); });
    };
    auto painted = PaintedPlayer::create(
        std::move(threads), std::move(*sink),
        {.formatChanged = formatChanged, .failed = [this](const Failure &why) { failed(why); }}, shown);
    if (!painted)
        return std::unexpected(painted.error());
    _painted = std::move(*painted);
    _window.setPainter(this);
    frameChanged(_window.size());
    return {};
}

MpvVideoSurface::~MpvVideoSurface()
{
    _relay->close();
    if (_painted)
        _window.setPainter(nullptr);
}

void MpvVideoSurface::load(const QString &path)
{
    _isAnnouncing = false;
    _load = _painted->player().load(path);
    applyPlaying();
}

void MpvVideoSurface::play(double rate)
{
    _isToPlay = true;
    _painted->player().setRate(rate);
    applyPlaying();
}

void MpvVideoSurface::pause()
{
    _isToPlay = false;
    applyPlaying();
}

void MpvVideoSurface::setVolume(double volume)
{
    _painted->player().setVolume(volume);
}

void MpvVideoSurface::setGravity(VideoGravity gravity)
{
    _painted->player().setGravity(gravity);
}

void MpvVideoSurface::observeTime(std::chrono::milliseconds interval)
{
    _time.observe(interval);
}

void MpvVideoSurface::frameChanged(QSize size)
{
    const QSize painted = WindowSink::pictureSize(size);
    _painted->player().setScaling(_format.stored != painted || _format.shown != painted);
    _painted->renderer().resize(size);
}

void MpvVideoSurface::shownChanged(bool isShown)
{
    applyPlaying();
    if (isShown && std::exchange(_isAnnouncing, false))
        _relay->post([this, load = _load] { firstPicture(load); });
}

void MpvVideoSurface::exposed()
{
    _painted->renderer().repaint();
}

QCoro::Task<Result<QImage>> MpvVideoSurface::currentFrame()
{
    const bool hasPicture = _load > 0 && !_format.shown.isEmpty();
    const QSize size = hasPicture ? fittedSize(_format.shown, largestCopy) : QSize();
    const QFuture<Result<QImage>> copied = _painted->renderer().copy(size);
    co_return co_await copied;
}

qint64 MpvVideoSurface::progress() const
{
    return _painted->renderer().pictures();
}

void MpvVideoSurface::applyPlaying()
{
    const bool plays = _isToPlay && _window.isShown() && _painted->player().isLoaded();
    _painted->player().setPaused(!plays);
    _time.run(plays);
}

void MpvVideoSurface::firstPicture(int load)
{
    if (load != _load)
        return;
    if (!_window.isShown()) {
        _isAnnouncing = true;
        return;
    }
    if (const auto call = _events.firstFrame)
        call();
}

// Once more through the event loop: the caller may destroy us.
void MpvVideoSurface::failed(const Failure &why)
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
