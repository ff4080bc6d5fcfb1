#include "app/QuitSequence.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto quitLimit = 10s;

} // namespace

QuitSequence::QuitSequence(Clock &clock, QList<Job *> jobs, std::function<void()> shutDown, QObject *parent)
    : QObject(parent), _clock(clock), _jobs(std::move(jobs)), _shutDown(std::move(shutDown))
{
}

QuitSequence::~QuitSequence() = default;

void QuitSequence::begin()
{
    if (_isEnding)
        return;
    _isEnding = true;
    for (Job *job : _jobs) {
        // Queued: whoever ends or begins is still inside its own change of state.
        connect(job, &Job::finished, this, &QuitSequence::finishWhenDone, Qt::QueuedConnection);
        // On a schedule, or after a question that was open before the end.
        connect(job, &Job::started, this, [job] { job->cancel(); }, Qt::QueuedConnection);
    }
    _limit = _clock.after(quitLimit, [this] { finishAtLimit(); });
    shutDownTools();
    for (Job *job : _jobs)
        job->cancel();
    finishWhenDone();
}

void QuitSequence::endAtOnce()
{
    _isEnding = true;
    shutDownTools();
}

void QuitSequence::takeOverSystemRequests()
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool QuitSequence::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != QCoreApplication::instance() || event->type() != QEvent::Quit)
        return QObject::eventFilter(watched, event);
    event->ignore();
    begin();
    return true;
}

void QuitSequence::shutDownTools()
{
    if (const auto shutDown = std::exchange(_shutDown, nullptr))
        shutDown();
}

// A movie can be repaired and the desktop put back at the next start; a program
// that does not end cannot be helped.
void QuitSequence::finishAtLimit()
{
    if (std::ranges::any_of(_jobs, [](const Job *job) { return job->state().mustFinish; }))
        _limit = _clock.after(quitLimit, [this] { finishAtLimit(); });
    else
        finish();
}

void QuitSequence::finishWhenDone()
{
    if (std::ranges::none_of(_jobs, &Job::isBusy))
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
