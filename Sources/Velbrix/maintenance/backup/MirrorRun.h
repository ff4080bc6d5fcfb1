#pragma once

#include "foundation/Clock.h"
#include "maintenance/backup/BackupRun.h"

namespace velbrix {

// Makes the task's mirror equal to its source, with rsync. Main thread; the
// clock must outlive the run.
QCoro::Task<BackupOutcome> mirrorFolder(Clock &clock, BackupRunRequest request);

} // namespace velbrix
