#pragma once

#include "foundation/Clock.h"
#include "foundation/ProcessRunner.h"
#include "platform/linux/applications/PackageManager.h"

#include <QCoroTask>
#include <QHash>
#include <QStringList>

namespace velbrix {

// A run of a program and its arguments whose answer is in English and keeps
// every letter of names.
ProcessRequest hostCommand(const QStringList &command);

// What a program said last, for the user.
QString lastLine(const ProcessOutcome &outcome);

// What the host's package manager answers; nothing here changes a package. The
// clock must outlive every task.

// The package of each path that has one; a failure when nobody can tell.
QCoro::Task<Result<QHash<QString, QString>>> packageOwners(Clock &clock, PackageManager manager,
                                                           QStringList paths);
// Of those it knows.
QCoro::Task<QHash<QString, PackageFacts>> packageFacts(Clock &clock, PackageManager manager,
                                                       QStringList packages);

} // namespace velbrix
