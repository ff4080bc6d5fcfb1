#include "capture/FinishedRecording.h"

#include "capture/RecordingSession.h"
#include "platform/MediaProbe.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Twice the size at which it is shown, for dense screens.
constexpr QSize thumbnailBound(336, 210);

} // namespace

FinishedRecording::FinishedRecording(RecordingSession &session, MediaProbe &probe, TrashCan &trash,
                                     QObject *parent)
    : QObject(parent), _probe(probe), _trash(trash)
{
    connect(&session, &RecordingSession::outcomeChanged, this, [this, &session] { take(session.outcome()); });
}

FinishedRecording::~FinishedRecording()
{
    _cancellation.cancel();
}

void FinishedRecording::take(const RecordingOutcome &outcome)
{
    std::exchange(_cancellation, {}).cancel();
    _isBusy = false;
    _trashed = QString();
    _canPutBack = false;
    _problem = QString();
    _thumbnail = QImage();
    _path = outcome.file;
    _place = outcome.file.isEmpty() ? Place::none : Place::there;
    if (outcome.hasMovie())
        findThumbnail(outcome.duration / 2);
}

QCoro::Task<> FinishedRecording::findThumbnail(double seconds)
{
    const QPointer self(this);
    const Cancellation cancellation = _cancellation;
    const auto picture = co_await _probe.frame(_path, seconds, thumbnailBound, cancellation);
    if (self && !cancellation.isCancelled() && picture)
        _thumbnail = *picture;
}

QCoro::Task<bool> FinishedRecording::look()
{
    const QPointer self(this);
    const QString path = _path;
    if (_place != Place::there && _place != Place::missing)
        co_return false;
    const auto isThere = co_await _probe.isFile(path);
    if (!self || _path != path || _place == Place::trashed)
        co_return false;
    // A disk that does not answer says nothing of the file.
    if (isThere)
        _place = *isThere ? Place::there : Place::missing;
    co_return _place == Place::there;
}

void FinishedRecording::rename(const QString &name)
{
    if (_place == Place::there && begin())
        runRename(name);
}

void FinishedRecording::moveToTrash()
{
    if (_place == Place::there && begin())
        runMoveToTrash();
}

void FinishedRecording::putBack()
{
    if (_canPutBack && begin())
        runPutBack();
}

bool FinishedRecording::begin()
{
    if (std::exchange(_isBusy, true))
        return false;
    _problem = QString();
    return true;
}

QCoro::Task<> FinishedRecording::runRename(QString name)
{
    const QPointer self(this);
    const Cancellation cancellation = _cancellation;
    const QFuture<Result<QString>> answer = QtConcurrent::run(renameMovie, _path.value(), name);
    const Result<QString> renamed = co_await answer;
    if (!self || cancellation.isCancelled())
        co_return;
    _isBusy = false;
    if (renamed)
        _path = *renamed;
    else
        _problem = renamed.error().message;
    look();
}

QCoro::Task<> FinishedRecording::runMoveToTrash()
{
    const QPointer self(this);
    const Cancellation cancellation = _cancellation;
    const auto trashed = co_await _trash.moveToTrash(_path);
    if (!self || cancellation.isCancelled())
        co_return;
    _isBusy = false;
    if (!trashed) {
        _problem = u"没有移到废纸篓："_s + trashed.error().message;
        look();
        co_return;
    }
    _trashed = *trashed;
    _canPutBack = !trashed->isEmpty();
    _place = Place::trashed;
}

QCoro::Task<> FinishedRecording::runPutBack()
{
    const QPointer self(this);
    const Cancellation cancellation = _cancellation;
    const auto restored = co_await _trash.putBack(_trashed, _path);
    if (!self || cancellation.isCancelled())
        co_return;
    _isBusy = false;
    if (!restored) {
        _problem = u"没有放回原处："_s + restored.error().message;
        co_return;
    }
    _canPutBack = false;
    _place = Place::there;
}

} // namespace velbrix
