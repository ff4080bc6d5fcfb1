#include "maintenance/backup/BackupSchedule.h"

#include <QTime>
#include <QTimeZone>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int lastDay = 28;                // every month has it
constexpr int longestGapMinutes = 25 * 60; // a zone can skip a whole day

bool shows(const QDateTime &instant, QDate date, QTime time)
{
    return instant.isValid() && instant.date() == date && instant.time() == time;
}

QDateTime inZoneOf(const QDateTime &reference, QDate date, QTime time)
{
    if (reference.timeSpec() == Qt::LocalTime)
        return {date, time};
    return {date, time, reference.timeZone()};
}

// The first instant at which the clocks of the zone show the time or have
// just passed over it.
QDateTime firstInstant(const QDateTime &zone, QDate date, QTime time)
{
    for (int gap = 0; gap <= longestGapMinutes; ++gap) {
        const QDateTime wall = QDateTime(date, time, Qt::UTC).addSecs(gap * 60LL);
        const QDateTime instant = inZoneOf(zone, wall.date(), wall.time());
        if (!shows(instant, wall.date(), wall.time()))
            continue;
        for (const int shift : {7200, 3600, 1800}) {
            const QDateTime before = instant.addSecs(-shift);
            if (shows(before, wall.date(), wall.time()))
                return before;
        }
        return instant;
    }
    return inZoneOf(zone, date, time);
}

QDate candidateDay(const BackupScheduleTime &schedule, QDate today)
{
    const int day = std::clamp(schedule.dayOfMonth, 1, lastDay);
    switch (schedule.kind) {
    case BackupScheduleKind::daily:
        return today;
    case BackupScheduleKind::monthly:
        return {today.year(), today.month(), day};
    case BackupScheduleKind::yearly:
        return {today.year(), std::clamp(schedule.month, 1, 12), day};
    }
    return today;
}

// A day, month or year later.
template <typename Moment> Moment onePeriodAfter(BackupScheduleKind kind, const Moment &moment)
{
    switch (kind) {
    case BackupScheduleKind::daily:
        return moment.addDays(1);
    case BackupScheduleKind::monthly:
        return moment.addMonths(1);
    case BackupScheduleKind::yearly:
        return moment.addYears(1);
    }
    return moment;
}

} // namespace

QDateTime nextRun(const BackupScheduleTime &schedule, const QDateTime &after)
{
    const QTime time(std::clamp(schedule.hour, 0, 23), std::clamp(schedule.minute, 0, 59));
    const QDate day = candidateDay(schedule, after.date());
    const QDateTime candidate = firstInstant(after, day, time);
    return candidate > after ? candidate : firstInstant(after, onePeriodAfter(schedule.kind, day), time);
}

bool isTooFarAhead(const BackupScheduleTime &schedule, const QDateTime &nextRunAt, const QDateTime &now)
{
    return nextRunAt > onePeriodAfter(schedule.kind, now);
}

QString scheduleText(const BackupScheduleTime &schedule)
{
    const QString time =
        QTime(std::clamp(schedule.hour, 0, 23), std::clamp(schedule.minute, 0, 59)).toString(u"HH:mm"_s);
    const int day = std::clamp(schedule.dayOfMonth, 1, lastDay);
    switch (schedule.kind) {
    case BackupScheduleKind::daily:
        return u"每天 "_s + time;
    case BackupScheduleKind::monthly:
        return u"每月 %1 日 %2"_s.arg(day).arg(time);
    case BackupScheduleKind::yearly:
        return u"每年 %1 月 %2 日 %3"_s.arg(schedule.month).arg(day).arg(time);
    }
    return time;
}

} // namespace velbrix
