#include "platform/linux/media/recording/VideoTrack.h"

#include "platform/linux/media/recording/MonotonicTime.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace velbrix {

VideoTrack::VideoTrack(const MovieSettings &settings, int queueDepth, std::unique_ptr<H264Encoder> encoder,
                       Mp4Writer &writer, CaptureLedger &ledger, std::function<void(Failure)> failed)
    : _width(settings.width),
      _height(settings.height),
      _framesPerSecond(settings.framesPerSecond),
      _queueDepth(static_cast<std::size_t>(std::max(1, queueDepth))),
      _encoder(std::move(encoder)),
      _writer(writer),
      _ledger(ledger),
      _failed(std::move(failed))
{
}

VideoTrack::~VideoTrack()
{
    if (!_thread.joinable())
        return;
    {
        const std::scoped_lock lock(_lock);
        _ending = true;
    }
    _changed.notify_one();
    _thread.join();
}

void VideoTrack::begin(std::int64_t tickZero)
{
    _tickZero = tickZero;
    _thread = std::thread([this] { run(); });
}

bool VideoTrack::submit(const PictureView &picture, std::span<const PixelRect> changed, std::int64_t tick)
{
    std::unique_ptr<Picture> queued;
    {
        const std::scoped_lock lock(_lock);
        if (_queue.size() >= _queueDepth)
            return false;
        if (!_pool.empty()) {
            queued = std::move(_pool.back());
            _pool.pop_back();
        }
    }
    if (!queued)
        queued = std::make_unique<Picture>();
    if (picture.owner)
        queued->view = picture;
    else
        copy(picture, *queued);
    queued->changed.assign(changed.begin(), changed.end());
    queued->tick = tick;
    {
        const std::scoped_lock lock(_lock);
        _queue.push_back(std::move(queued));
    }
    _changed.notify_one();
    return true;
}

void VideoTrack::copy(const PictureView &from, Picture &to) const
{
    const auto width = static_cast<std::size_t>(_width);
    const auto height = static_cast<std::size_t>(_height);
    to.copy.resize(width * height * 3 / 2);
    std::uint8_t *out = to.copy.data();
    const auto plane = [&out](const std::uint8_t *in, int stride, std::size_t columns, std::size_t rows) {
        for (std::size_t row = 0; row < rows; ++row, in += stride, out += columns)
            std::memcpy(out, in, columns);
    };
    plane(from.y, from.strideY, width, height);
    plane(from.u, from.strideUV, width / 2, height / 2);
    plane(from.v, from.strideUV, width / 2, height / 2);
    const std::uint8_t *y = to.copy.data();
    to.view = {y, y + width * height, y + width * height * 5 / 4, _width, _width / 2, {}};
}

void VideoTrack::run()
{
    for (;;) {
        bool isRest = false;
        std::unique_ptr<Picture> picture = nextPicture(isRest);
        if (isRest) {
            rest();
        } else if (picture) {
            encode(*picture, picture->tick, false);
            recycle(std::exchange(_last, std::move(picture)));
        } else {
            return;
        }
    }
}

// The next one in the queue; none when it rests or everything is done.
std::unique_ptr<VideoTrack::Picture> VideoTrack::nextPicture(bool &isRest)
{
    std::unique_lock lock(_lock);
    for (;;) {
        if (!_queue.empty()) {
            std::unique_ptr<Picture> picture = std::move(_queue.front());
            _queue.pop_front();
            return picture;
        }
        if (_ending)
            return {};
        if (!_last || _hasFailed) {
            _changed.wait(lock);
            continue;
        }
        const std::chrono::nanoseconds wait = untilRest();
        isRest = wait.count() <= 0;
        if (isRest)
            return {};
        _changed.wait_for(lock, wait);
    }
}

// A quarter of a second of grace, so that a picture under way comes first.
std::chrono::nanoseconds VideoTrack::untilRest() const
{
    const double due = (static_cast<double>(_encoder->nextKeyTick()) / _framesPerSecond + 0.25) * 1e9;
    return std::chrono::nanoseconds(_tickZero + static_cast<std::int64_t>(due) - monotonicNow());
}

void VideoTrack::encode(const Picture &picture, std::int64_t tick, bool isRepeat)
{
    _lastTick = std::max(tick, _lastTick + 1);
    if (_hasFailed)
        return;
    const std::span<const PixelRect> changed = isRepeat ? std::span<const PixelRect>() : picture.changed;
    check(_encoder->encode(picture.view, changed, _lastTick,
                           [this](const H264Encoder::Packet &packet) { write(packet); }));
    if (isRepeat)
        return;
    _isSettled = false;
    _changeTick = _lastTick;
    if (!_hasFailed)
        _ledger.noteWrittenFrame(static_cast<double>(_lastTick) / _framesPerSecond);
}

// A key picture is due and nothing has changed. Another one follows it: two
// equal key pictures in a row are no stream, alternating with others they are.
void VideoTrack::rest()
{
    const std::int64_t keyTick = std::max(_encoder->nextKeyTick(), _lastTick + 1);
    const std::int64_t tick = keyTick + std::max(1, _framesPerSecond / 8);
    if (_isSettled && repeatPair(keyTick, tick))
        return;
    const bool isAtRest = keyTick - _changeTick >= _framesPerSecond;
    if (isAtRest) {
        _lastTick = keyTick;
        check(_encoder->encodeResting(_last->view, keyTick,
                                      [this](const H264Encoder::Packet &packet) { write(packet); }));
    } else {
        encode(*_last, keyTick, true);
    }
    _isSettled = isAtRest && _encoder->isSettled();
    encode(*_last, tick, true);
}

bool VideoTrack::repeatPair(std::int64_t keyTick, std::int64_t tick)
{
    const auto repeated = _writer.repeatPair(keyTick * unitsPerTick, tick * unitsPerTick);
    if (!repeated)
        fail(repeated.error());
    if (!repeated || !*repeated)
        return !repeated;
    _encoder->wasRepeated(keyTick, tick);
    _lastTick = tick;
    return true;
}

void VideoTrack::check(const Result<void> &done)
{
    if (!done)
        fail(done.error());
}

void VideoTrack::write(const H264Encoder::Packet &packet)
{
    if (_hasFailed)
        return;
    check(_writer.add(0, packet.bytes, packet.tick * unitsPerTick, packet.isKey));
}

void VideoTrack::recycle(std::unique_ptr<Picture> picture)
{
    if (!picture)
        return;
    picture->view = {};
    const std::scoped_lock lock(_lock);
    _pool.push_back(std::move(picture));
}

void VideoTrack::fail(Failure reason)
{
    if (!std::exchange(_hasFailed, true))
        _failed(std::move(reason));
}

std::optional<std::int64_t> VideoTrack::finish(std::int64_t lastTick)
{
    if (_thread.joinable()) {
        {
            const std::scoped_lock lock(_lock);
            _ending = true;
        }
        _changed.notify_one();
        _thread.join();
    }
    if (!_last)
        return {};
    // A last picture of its own: players disagree about how long the last one lasts.
    if (_lastTick < lastTick - 1)
        encode(*_last, lastTick - 1, true);
    return std::max(lastTick, _lastTick + 1) * unitsPerTick;
}

} // namespace velbrix
