#pragma once

#include "foundation/Clock.h"
#include "maintenance/backup/BackupRun.h"

#include <QString>

namespace velbrix {

// Makes the task's mirror equal to its source, with the rsync at that path. Main
// thread; the clock must outlive the run.
QCoro::Task<BackupOutcome> runMirror(Clock &clock, BackupRunRequest request,
                                     QString rsync = QStringLiteral("/usr/bin/rsync"));

} // namespace velbrix
