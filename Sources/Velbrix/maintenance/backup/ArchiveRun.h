#pragma once

#include "maintenance/backup/BackupRun.h"

namespace velbrix {

class Archiver;

// Writes one archive of the task's source. Either a whole and tested archive
// appears under its name or nothing does. Main thread; the archiver must
// outlive the run.
QCoro::Task<BackupOutcome> archiveFolder(Archiver &archiver, BackupRunRequest request);

} // namespace velbrix
