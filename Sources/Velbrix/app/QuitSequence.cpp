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

void QuitSequence::observe()
{
    // Queued: whoever ends is still inside its own change of state.
    const auto finishAfter = [this](const auto &sender, auto signal) {
        connect(&sender, signal, this, &QuitSequence::finishWhenDone, Qt::QueuedConnection);
    };
    finishAfter(_services.wallpaper, &WallpaperController::isSettledChanged);
    finishAfter(_services.recorder, &ScreenRecorderController::isStartingChanged);
    finishAfter(_services.recorder.session(), &RecordingSession::isProcessingChanged);
    finishAfter(_services.cleaner, &SystemCleaner::phaseChanged);
    finishAfter(_services.fileBackup, &FileBackupController::isRunningBackupChanged);
    finishAfter(_services.fileBackup.restorer(), &ArchiveRestorer::isRestoringChanged);
    finishAfter(_services.uninstaller, &AppScanner::isUninstallingChanged);
    finishAfter(_services.uninstaller, &AppScanner::isPuttingBackChanged);
    finishAfter(_services.uninstaller, &AppScanner::finished);
}

void QuitSequence::begin()
{
    observe();
    _limit = _services.clock.after(quitLimit, [this] { finishAtLimit(); });
    stopWallpaper();
    stopMaintenance();
    ScreenRecorderController &recorder = _services.recorder;
    if (recorder.isRecording() || recorder.isProcessing())
        recorder.stop();
    finishWhenDone();
}

void QuitSequence::stopMaintenance()
{
    _services.cleaner.cancel();
    _services.uninstaller.cancelUninstall();
    _services.fileBackup.cancelRun();
    _services.fileBackup.restorer().cancel();
}

void QuitSequence::stopWallpaper()
{
    if (!std::exchange(_hasStoppedWallpaper, true))
        _services.wallpaper.shutDown();
}

bool QuitSequence::isDone() const
{
    const ScreenRecorderController &recorder = _services.recorder;
    return _services.wallpaper.isSettled() && !recorder.isRecording() && !recorder.isProcessing() &&
           isMaintenanceDone();
}

bool QuitSequence::isMaintenanceDone() const
{
    return !_services.cleaner.isCleaning() && !_services.uninstaller.isBusy() &&
           !_services.uninstaller.isPuttingBack() && !_services.fileBackup.isRunningBackup() &&
           !_services.fileBackup.restorer().isRestoring();
}

// A movie can be repaired and the desktop put back at the next start; a program
// that does not end cannot be helped.
void QuitSequence::finishAtLimit()
{
    if (_services.uninstaller.isBusy())
        _limit = _services.clock.after(quitLimit, [this] { finishAtLimit(); });
    else
        finish();
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
