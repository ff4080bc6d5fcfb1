#pragma once

#include "foundation/Clock.h"
#include "foundation/Job.h"
#include "foundation/Published.h"

#include <QList>
#include <QObject>

#include <functional>
#include <memory>

namespace velbrix {

// What has to come to its end before the program may: the tools are shut down,
// so that the wallpaper gives the user's own desktop back, and their jobs
// cancelled, so that a recording is completed and a clean or a backup stops
// after the step it is at. Nothing of it may keep the program for long, but
// for a job that must finish.
class QuitSequence final : public QObject {
    Q_OBJECT
    // From the beginning on: nobody may begin anything.
    VELB_PUBLISHED(QuitSequence, bool, isEnding, false)

public:
    // The jobs must outlive the sequence. `shutDown` is called once.
    QuitSequence(Clock &clock, QList<Job *> jobs, std::function<void()> shutDown, QObject *parent = nullptr);
    ~QuitSequence() override;

    // Later calls do nothing. finished() may come before it returns.
    void begin();
    // The system ends the program: only what can be done without waiting.
    void endAtOnce();
    // Takes the system's wish to end the program (a menu's quit, the end of the
    // session) away from the event loop, which would end at once, and begins.
    void takeOverSystemRequests();

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void finished();

private:
    void shutDownTools();
    void finishAtLimit();
    void finishWhenDone();
    void finish();

    Clock &_clock;
    const QList<Job *> _jobs;
    std::function<void()> _shutDown;
    bool _isFinished = false;
    std::unique_ptr<Alarm> _limit;
};

} // namespace velbrix
