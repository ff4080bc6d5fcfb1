#pragma once

#include "maintenance/backup/BackupRun.h"

namespace velbrix {

class Archiver;

// Removes from the folder what runs of this installation that were killed have
// left there, whichever task's they were. Blocking.
void removeLeftovers(const QString &folder, const QString &installation);

// Writes one archive of the task's source. Either a whole and tested archive
// appears under its name or nothing does; older ones go as far as the task
// keeps no more. Main thread; the archiver must outlive the run.
QCoro::Task<BackupOutcome> runArchive(Archiver &archiver, BackupRunRequest request);

} // namespace velbrix
