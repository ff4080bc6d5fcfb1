#pragma once

#include "foundation/Result.h"
#include "platform/CaptureLedger.h"
#include "platform/linux/media/mp4/Mp4Writer.h"
#include "platform/linux/media/recording/H264Encoder.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

namespace velbrix {

// The pictures of a movie: a queue, and the thread that encodes what is in it.
// While no picture comes it shows the last one again once a second as a key
// picture, so that the movie on the disk keeps up with the time and players find
// their way in it; once that one is as good as it can be, its bytes are shown
// again instead of new ones.
class VideoTrack {
public:
    // Units of the track's timescale in a tick.
    static constexpr int unitsPerTick = 1000;

    // `failed` is called once at most, on the thread of the track.
    VideoTrack(const MovieSettings &settings, int queueDepth, std::unique_ptr<H264Encoder> encoder,
               Mp4Writer &writer, CaptureLedger &ledger, std::function<void(Failure)> failed);
    // Ends the thread; what is queued still goes into the movie.
    ~VideoTrack();

    void begin(std::int64_t tickZero);
    bool submit(const PictureView &picture, std::span<const PixelRect> changed, std::int64_t tick);
    // Blocks for the queue. The end of the track in its units; none without a
    // picture.
    std::optional<std::int64_t> finish(std::int64_t lastTick);

private:
    struct Picture {
        PictureView view;
        Bytes copy; // what the view shows when it has no owner
        std::vector<PixelRect> changed;
        std::int64_t tick = 0;
    };

    void run();
    std::unique_ptr<Picture> nextPicture(bool &isRest);
    void encode(const Picture &picture, std::int64_t tick, bool isRepeat);
    void rest();
    bool repeatPair(std::int64_t keyTick, std::int64_t tick);
    void check(const Result<void> &done);
    void write(const H264Encoder::Packet &packet);
    void recycle(std::unique_ptr<Picture> picture);
    void copy(const PictureView &from, Picture &to) const;
    std::chrono::nanoseconds untilRest() const;
    void fail(Failure reason);

    const int _width;
    const int _height;
    const int _framesPerSecond;
    const std::size_t _queueDepth;
    const std::unique_ptr<H264Encoder> _encoder;
    Mp4Writer &_writer;
    CaptureLedger &_ledger;
    const std::function<void(Failure)> _failed;

    std::mutex _lock; // of what follows
    std::condition_variable _changed;
    std::deque<std::unique_ptr<Picture>> _queue;
    std::vector<std::unique_ptr<Picture>> _pool;
    std::int64_t _tickZero = 0;
    bool _ending = false;

    // Of the thread.
    std::unique_ptr<Picture> _last;
    std::int64_t _lastTick = -1;
    std::int64_t _changeTick = 0; // of the last picture that is no repeat
    bool _isSettled = false;      // the last two are a pair to repeat
    bool _hasFailed = false;
    std::thread _thread;
};

} // namespace velbrix
