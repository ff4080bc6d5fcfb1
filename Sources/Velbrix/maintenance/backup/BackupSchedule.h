#pragma once

#include <QDateTime>
#include <QString>

namespace velbrix {

enum class BackupScheduleKind { daily, monthly, yearly };

struct BackupScheduleTime {
    BackupScheduleKind kind = BackupScheduleKind::daily;
    int hour = 9;       // 0…23
    int minute = 0;     // 0…59
    int dayOfMonth = 1; // 1…31 as entered; runs on the 28th at the latest
    int month = 1;      // 1…12

    bool operator==(const BackupScheduleTime &) const = default;
};

// The first time after the instant, in its time zone. A time that a change of
// the clocks leaves out comes as soon as the clocks have passed it, one that
// comes twice the first time.
QDateTime nextRun(const BackupScheduleTime &schedule, const QDateTime &after);

// Later than any correct next time: the clock was wrong when it was computed.
bool isTooFarAhead(const BackupScheduleTime &schedule, const QDateTime &nextRunAt, const QDateTime &now);

// "每天 09:00", "每月 28 日 09:00", "每年 3 月 1 日 09:00".
QString scheduleText(const BackupScheduleTime &schedule);

} // namespace velbrix
