#pragma once

#include "foundation/ProcessRunner.h"
#include "maintenance/uninstall/UninstallTypes.h"

#include <QCoroTask>
#include <QList>

namespace velbrix {

class DiskUsage;

// The rows of the uninstaller from what the host has found: this program
// dropped, missing sizes measured, sorted by name. The ids are left to the
// caller. Answers with nothing once cancelled.
QCoro::Task<QList<AppInfo>> listedApps(QList<InstalledApplication> found, OwnIdentity own, DiskUsage &usage,
                                       Cancellation cancellation);

} // namespace velbrix
