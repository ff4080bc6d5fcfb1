#pragma once

#include "maintenance/backup/BackupRun.h"

namespace velbrix {

class Archiver;

struct RestoreRequest {
    QString archive;
    QString folder; // must be there
    std::function<void(const QString &line, double share)> progress = [](const QString &, double) {};
    Cancellation cancellation;
};

// Unpacks an archive into a new folder inside the chosen one, or leaves nothing
// there. Main thread; the archiver must outlive the run.
QCoro::Task<BackupOutcome> restoreArchive(Archiver &archiver, RestoreRequest request);

} // namespace velbrix
