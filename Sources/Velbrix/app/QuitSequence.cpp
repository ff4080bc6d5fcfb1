#include "app/QuitSequence.h"

#include "app/AppServices.h"

#include <utility>

using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto quitLimit = 10s;

} // namespace

QuitSequence::QuitSequence(AppServices &services, QObject *parent) : QObject(parent), _services(services) {}

QuitSequence::~QuitSequence() = default;

void QuitSequence::begin()
{
    ScreenRecorderController &recorder = _services.recorder;
    // Queued: whoever ends is still inside its own change of state.
    connect(&_services.wallpaper, &WallpaperController::isSettledChanged, this,
            &QuitSequence::finishWhenDone, Qt::QueuedConnection);
    connect(&recorder, &ScreenRecorderController::isStartingChanged, this, &QuitSequence::finishWhenDone,
            Qt::QueuedConnection);
    connect(&recorder.session(), &RecordingSession::isProcessingChanged, this, &QuitSequence::finishWhenDone,
            Qt::QueuedConnection);
    // A movie can be repaired and the desktop put back at the next start; a
    // program that does not end cannot be helped.
    _limit = _services.clock.after(quitLimit, [this] { finish(); });
    stopWallpaper();
    if (recorder.isRecording() || recorder.isProcessing())
        recorder.stop();
    finishWhenDone();
}

void QuitSequence::stopWallpaper()
{
    if (!std::exchange(_hasStoppedWallpaper, true))
        _services.wallpaper.shutDown();
}

bool QuitSequence::isDone() const
{
    const ScreenRecorderController &recorder = _services.recorder;
    return _services.wallpaper.isSettled() && !recorder.isRecording() && !recorder.isProcessing();
}

void QuitSequence::finishWhenDone()
{
    if (isDone())
        finish();
}

void QuitSequence::finish()
{
    if (std::exchange(_isFinished, true))
        return;
    _limit.reset();
    Q_EMIT finished();
}

} // namespace velbrix
