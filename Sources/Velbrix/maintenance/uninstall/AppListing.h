#pragma once

#include "foundation/ProcessRunner.h"
#include "maintenance/uninstall/UninstallTypes.h"

#include <QCoroTask>
#include <QList>

namespace velbrix {

class DiskUsage;
class RunningPrograms;

// What an application is known by. Paths with their links resolved.
struct SelfTraits {
    QString path;
    QString name;
    QString identifier; // empty when it has none or could not be read

    bool operator==(const SelfTraits &) const = default;
};

// Whether the application is this very program, which is never listed and
// never taken away. Any likeness will do.
bool isSelf(const SelfTraits &application, const SelfTraits &own);

// With the links resolved. Blocking: the disk is asked.
SelfTraits selfTraits(const InstalledApplication &application);
SelfTraits selfTraits(const OwnIdentity &own);

// What the application's program may be called while it runs.
QStringList programNames(const AppInfo &app);
// Whether the application is open at this moment. Both are only used within the call.
QCoro::Task<bool> isRunning(const AppInfo &app, const RunningPrograms &programs);

// The rows of the uninstaller from what the host has found: this program and
// what is not listed dropped, missing sizes measured, sorted by name. The ids are left to the
// caller. Answers with nothing once cancelled.
QCoro::Task<QList<AppInfo>> listedApps(QList<InstalledApplication> found, OwnIdentity own, DiskUsage &usage,
                                       Cancellation cancellation);

} // namespace velbrix
