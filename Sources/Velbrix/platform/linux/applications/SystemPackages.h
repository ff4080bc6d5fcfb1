#pragma once

#include "foundation/Clock.h"
#include "foundation/Result.h"
#include "platform/linux/applications/PackageManager.h"

#include <QCoroTask>
#include <QHash>
#include <QStringList>

namespace velbrix {

// What the host's package manager answers; nothing here changes a package. The
// clock must outlive every task.

// The package of each path that has one; a failure when nobody can tell.
QCoro::Task<Result<QHash<QString, QString>>> packageOwners(Clock &clock, PackageManager manager,
                                                           QStringList paths);
// Of those it knows.
QCoro::Task<QHash<QString, PackageFacts>> packageFacts(Clock &clock, PackageManager manager,
                                                       QStringList packages);
// What would go with the package, itself included. A failure in words when the
// manager refuses, or when the system or the owner of `ownExecutable` would go.
QCoro::Task<Result<QStringList>> simulatedRemoval(Clock &clock, PackageManager manager, QString package,
                                                  QString ownExecutable);

} // namespace velbrix
