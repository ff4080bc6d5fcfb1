#pragma once

#include "foundation/Result.h"
#include "platform/CaptureLedger.h"
#include "platform/CaptureSession.h"
#include "platform/linux/media/recording/PixelRects.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace velbrix {

// A picture of the movie's size in I420, BT.601 limited range.
struct PictureView {
    const std::uint8_t *y = nullptr;
    const std::uint8_t *u = nullptr;
    const std::uint8_t *v = nullptr;
    int strideY = 0;
    int strideUV = 0;
    // Where set, the planes stay as they are while somebody holds it; it may
    // be let go on any thread.
    std::shared_ptr<const void> owner;
};

// Pictures and sounds in, one movie file out: encodes and writes on threads of
// its own. Destroying it early leaves the file as far as it got, playable.
class MovieRecorder {
public:
    struct Events {
        // The movie cannot go on (the disk is full, say); at most once.
        std::function<void(Failure)> failed;
        // A sound source was lost or came back.
        std::function<void(QString)> warning;
    };

    // Creates the file at once. The events come on threads of the recorder;
    // the ledger must outlive it.
    static Result<std::unique_ptr<MovieRecorder>> create(const MovieSettings &settings, int queueDepth,
                                                         CaptureLedger &ledger, Events events);
    virtual ~MovieRecorder() = default;

    virtual MovieTracks tracks() const = 0;
    // Which sources feed the tracks; before begin().
    virtual void useSystemAudio() = 0;
    virtual void useMicrophone(std::optional<QString> deviceId) = 0;

    // Starts the sound sources. CLOCK_MONOTONIC nanoseconds of tick 0; a tick
    // is one frame interval and the time stamp of pictures.
    virtual void begin(std::int64_t tickZero) = 0;
    // Holds the picture's owner or, without one, takes a copy of the picture;
    // only `changed` differs from the picture before. False: the queue is full
    // and nothing was taken, so the caller carries the rectangles over to the
    // next tick. Called by one thread.
    virtual bool submit(const PictureView &picture, std::span<const PixelRect> changed,
                        std::int64_t tick) = 0;
    // Ends the movie at `lastTick`, repeating the last picture until then, and
    // completes the file. Blocks for the queue and the final write. After
    // events.failed it completes what there is. Fails without a picture, and
    // when the file could not be completed (it is playable all the same).
    virtual Result<void> finish(std::int64_t lastTick) = 0;
};

} // namespace velbrix
