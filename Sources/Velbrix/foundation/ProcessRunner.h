#pragma once

#include "foundation/Cancellation.h"
#include "foundation/Clock.h"
#include "foundation/Result.h"

#include <QByteArray>
#include <QCoroTask>
#include <QHash>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>

namespace velbrix {

struct ProcessRequest {
    QString program; // absolute path; never a shell line
    QStringList arguments;
    QHash<QString, QString> environment; // added to the program's own
    QString workingDirectory;
    std::chrono::milliseconds timeout{0}; // none when zero
    // Output as it comes, in pieces of any size; kept in the outcome as well
    // up to the limit.
    std::function<void(const QByteArray &)> onOutput;
    std::function<void(const QByteArray &)> onErrorOutput;
    qsizetype outputLimit = 1 << 20; // bytes kept of each channel
    // Ends, with all that it started, when this program does, however that ends.
    bool endsWithUs = false;
    Cancellation cancellation;
};

struct ProcessOutcome {
    int exitCode = 0;
    bool crashed = false;
    bool timedOut = false;
    bool cancelled = false;
    QByteArray output;
    QByteArray errorOutput;

    bool succeeded() const { return exitCode == 0 && !crashed && !timedOut && !cancelled; }
};

// Runs other programs. Main thread only; the clock must outlive every run.
class ProcessRunner {
public:
    explicit ProcessRunner(Clock &clock) : _clock(clock) {}

    // A program that cannot be started is a failure, whatever comes after is
    // an outcome. A run that times out or is cancelled is asked to end, with
    // all that it started, and killed two seconds later.
    QCoro::Task<Result<ProcessOutcome>> run(ProcessRequest request);

private:
    Clock &_clock;
};

} // namespace velbrix
