#pragma once

#include "maintenance/backup/BackupTask.h"
#include "platform/UserNotifications.h"

#include <optional>

namespace velbrix {

// What the user is told of a task that fails by itself, each thing once. They
// remember in the task what was told.

// After a run on schedule that failed; `due` is when it should have run.
std::optional<UserNotification> failureNotification(BackupTask &task, const QDateTime &due,
                                                    const QDateTime &now);
// After a run on schedule that did all but some files.
std::optional<UserNotification> partialNotification(BackupTask &task);
// Of a task whose runs have failed for long.
std::optional<UserNotification> delayNotification(BackupTask &task, const QDateTime &now);
// After a run that succeeded.
void forgetFailures(BackupTask &task);

} // namespace velbrix
