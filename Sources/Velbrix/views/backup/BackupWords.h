#pragma once

#include "maintenance/backup/BackupTask.h"

#include <QDateTime>
#include <QString>

namespace velbrix {

QString kindName(BackupTaskKind kind);
QString kindLine(BackupTaskKind kind);
QString kindSymbol(BackupTaskKind kind); // SF Symbol name

// "今天 09:00", "明天 09:00", "3 月 1 日 09:00", with the year when it is another.
QString whenText(const QDateTime &at, const QDateTime &now);
// "每天 09:00 · 下次运行 明天 09:00".
QString planText(const BackupTask &task, const QDateTime &now);

} // namespace velbrix
