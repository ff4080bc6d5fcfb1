#pragma once

#include "foundation/Result.h"
#include "platform/linux/media/recording/StopSignal.h"
#include "platform/linux/x11/capture/CursorTracker.h"
#include "platform/linux/x11/capture/GrabBuffer.h"

#include <optional>
#include <vector>

namespace velbrix {

enum class FrameStatus { complete, idle, blank, suspended, stopped };

struct SourceUpdate {
    FrameStatus status = FrameStatus::idle;
    // Parts of the picture, inside it; all of it after its size changed.
    std::vector<PixelRect> changed;
    // There will be no more pictures, for this reason.
    std::optional<Failure> ended;
};

inline SourceUpdate outOfMemory()
{
    return {FrameStatus::stopped, {}, Failure{QStringLiteral("内存不足，无法取得屏幕画面")}};
}

struct PicturePoint {
    int x = 0;
    int y = 0;

    bool operator==(const PicturePoint &) const = default;
};

// Something on the screen that is filmed. Used by one thread.
class FrameSource {
public:
    virtual ~FrameSource() = default;

    // Prepares the first picture; waits at most 100 ms for windows to paint
    // what was covered.
    virtual Result<void> start(const StopSignal &stop) = 0;
    virtual void handleEvent(const xcb_generic_event_t &event) = 0;
    // Brings the picture up to date.
    virtual SourceUpdate update() = 0;
    // Whether an event has told of something that the last update may have
    // missed.
    virtual bool isOutdated() const { return false; }
    // As of the last update, without the pointer.
    virtual BitmapView picture() const = 0;
    // Where in the picture the pointer is shown; nothing when it is elsewhere.
    virtual std::optional<PicturePoint> locate(const PointerState &pointer) const = 0;
};

} // namespace velbrix
