#pragma once

#include "foundation/ProcessRunner.h"
#include "maintenance/backup/BackupTypes.h"

#include <QCoroTask>
#include <QDateTime>
#include <QString>

#include <functional>

class QThreadPool;

namespace velbrix {

struct BackupOutcome {
    enum class State { done, failed, cancelled };

    State state = State::failed;
    QString message; // for the user

    static BackupOutcome done(const QString &message) { return {State::done, message}; }
    static BackupOutcome failed(const QString &message) { return {State::failed, message}; }
    static BackupOutcome cancelled();
    bool operator==(const BackupOutcome &) const = default;
};

struct BackupRunRequest {
    BackupTask task;
    QDateTime at;
    // The progress line, and 0…1 or below 0 while nobody knows.
    std::function<void(const QString &line, double share)> progress = [](const QString &, double) {};
    // Whether a mirror may lose so many of its files; without it one that
    // would lose many is left as it is.
    std::function<QCoro::Task<bool>(qint64 deletions, qint64 existing)> approve = {};
    Cancellation cancellation;
};

// For work on disks that may be slow or gone; never waited for.
QThreadPool &backupWorkers();

} // namespace velbrix
