#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Result.h"
#include "maintenance/backup/BackupTask.h"
#include "platform/VolumeIdentity.h"

#include <QCoroTask>
#include <QDateTime>
#include <QString>

#include <functional>
#include <optional>
#include <sys/types.h>

class QThreadPool;

namespace velbrix {

// How a run has ended.
struct BackupOutcome {
    enum class State { done, failed, cancelled };

    State state = State::failed;
    QString message;        // for the user
    bool isPartial = false; // done, but for some files

    static BackupOutcome done(const QString &message) { return {State::done, message}; }
    static BackupOutcome partial(const QString &message) { return {State::done, message, true}; }
    static BackupOutcome failed(const QString &message) { return {State::failed, message}; }
    // With what was done until then, in words, when it stays done.
    static BackupOutcome cancelled(const QString &done = {});
    bool operator==(const BackupOutcome &) const = default;
};

// What a run does only when the user agrees.
struct BackupDoubt {
    enum class Kind {
        deletions,     // the mirror loses files
        foreignMirror, // it does, and nothing says that it is the task's
        shrunkSource,  // the source has lost files since the archive before
    };

    Kind kind = Kind::deletions;
    qint64 lost = 0;     // files
    qint64 existing = 0; // of so many

    bool operator==(const BackupDoubt &) const = default;
};

struct BackupRunRequest {
    BackupTask task;
    QString installation; // see installationId()
    QDateTime at;
    // The progress line, and 0…1 or below 0 while nobody knows.
    std::function<void(const QString &line, double share)> progress = [](const QString &, double) {};
    // Whether the user agrees; without it what is in doubt is not done.
    std::function<QCoro::Task<bool>(BackupDoubt)> approve = {};
    VolumeIdentity volumes = {};
    Cancellation cancellation;
};

// Asks for what the figures say. Nothing when the user agrees, else how the run
// ends without what it is not to do ("同步").
QCoro::Task<std::optional<BackupOutcome>> refusal(BackupRunRequest request, BackupDoubt doubt,
                                                  QString figures, QString notDone);

// Of so many files so many may be lost without a question: a day's tidying. More
// looks like a source whose files are not there.
qint64 harmlessLosses(qint64 existing);

// For work on disks that may be slow or gone; never waited for.
QThreadPool &backupWorkers();

// What runs do on the disk. Blocking: for backupWorkers().

// Removes the entries that `isOurs` knows from a folder that a task writes.
// The source of the task is never touched.
void removeOwn(const BackupTask &task, const QString &folder,
               const std::function<bool(const QString &)> &isOurs);

// Gives the file its name once it has reached the disk; nothing is replaced.
Result<void> publishFile(const QString &from, const QString &to);
// It may be there already, but not as a link. The folder around it is not made:
// without it a disk is not mounted.
Result<void> makeFolder(const QString &path, mode_t mode = 0777);

} // namespace velbrix
