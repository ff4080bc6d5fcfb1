#pragma once

#include "foundation/Result.h"
#include "platform/CaptureSession.h"
#include "platform/ScreenCapture.h"
#include "platform/linux/media/recording/FrameCanvas.h"
#include "platform/linux/media/recording/MovieRecorder.h"
#include "platform/linux/media/recording/StopSignal.h"
#include "platform/linux/media/recording/TickClock.h"
#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/capture/FrameSource.h"

#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace velbrix {

// The thread that takes the pictures of one recording: at every tick of a
// constant clock it brings its picture up to date and hands what changed to
// the recorder. Ticks that come late are merged, never made up for.
class CaptureLoop {
public:
    struct Plan {
        CaptureFilter filter;
        StreamConfiguration configuration;
        X11Abilities abilities;
    };
    // All on the loop's thread.
    struct Events {
        // Exactly once: the first picture is on its way, or why there is none.
        std::function<void(Result<void>)> started;
        // At most once, after a start: there are no more pictures.
        std::function<void(Failure)> ended;
        std::function<void(QString)> warning;
    };

    // Recorder and ledger must outlive the loop.
    CaptureLoop(Plan plan, MovieRecorder &recorder, CaptureLedger &ledger, std::shared_ptr<StopSignal> stop,
                Events events);
    // Stops and joins.
    ~CaptureLoop();
    CaptureLoop(const CaptureLoop &) = delete;
    CaptureLoop &operator=(const CaptureLoop &) = delete;

    void start();
    // Any thread; returns at once.
    void requestStop();
    // Any other thread; returns when the last picture was handed over.
    void join();
    // The tick that the recording lasted to; after join().
    std::int64_t lastTick() const { return _lastTick; }

private:
    void run();
    Result<void> prepare();
    Result<TickClock> takeFirstPicture();
    // False when the recording has ended.
    bool step(std::int64_t tick);
    SourceUpdate updateSource();
    void readEvents();
    // Returns what of the canvas changed.
    std::vector<PixelRect> draw(const SourceUpdate &update);
    void submit(std::vector<PixelRect> changed, std::int64_t tick);
    void note(FrameStatus status);

    const Plan _plan;
    MovieRecorder &_recorder;
    CaptureLedger &_ledger;
    const std::shared_ptr<StopSignal> _stop;
    const Events _events;

    // Of the loop's thread alone.
    std::unique_ptr<X11Connection> _connection;
    std::unique_ptr<CursorTracker> _cursor;
    std::unique_ptr<FrameSource> _source;
    FrameCanvas _canvas;
    PixelRect _shownCursor; // in the picture
    int _shownCursorSerial = 0;
    std::vector<PixelRect> _carried; // drawn, but refused by a full queue

    std::atomic<std::int64_t> _lastTick = 0;
    std::mutex _joinLock;
    std::thread _thread;
};

} // namespace velbrix
