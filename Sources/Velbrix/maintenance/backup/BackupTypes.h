#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

enum class BackupTaskKind { backup, sync };
enum class BackupScheduleKind { daily, monthly, yearly };

struct BackupScheduleTime {
    BackupScheduleKind kind = BackupScheduleKind::daily;
    int hour = 9;       // 0…23
    int minute = 0;     // 0…59
    int dayOfMonth = 1; // 1…31 as entered; runs on the 28th at the latest
    int month = 1;      // 1…12

    bool operator==(const BackupScheduleTime &) const = default;
};

struct BackupTask {
    QString id;
    QString name;
    BackupTaskKind kind = BackupTaskKind::backup;
    QString sourcePath;
    QString destPath;
    BackupScheduleTime schedule;
    bool isEnabled = true;
    QDateTime nextRunAt;
    std::optional<QDateTime> lastRunAt;
    std::optional<QString> lastResult;

    // Beyond what a run needs; absent in older settings.
    int keepLast = 0;      // archives kept, the newest; 0: all
    QStringList excludes;  // shell patterns
    bool setsAside = true; // a sync keeps for 30 days what it deletes or replaces
    QString destVolume;    // where the destination's disk was mounted when the task was saved
    QString sourceVolume;  // and the source's
    bool lastFailed = false;
    bool lastCancelled = false;
    std::optional<QDateTime> failingSince; // no run has succeeded since
    QString toldFailure;                   // what the user was notified of since then
    bool toldOverdue = false;

    // The last run has done what it should; false also when there was none.
    bool hasSucceeded() const { return lastResult && !lastFailed && !lastCancelled; }

    bool operator==(const BackupTask &) const = default;
};

// Clean paths, no empty patterns, and the source folder's name for an empty one.
BackupTask normalised(BackupTask task);

QJsonObject toJson(const BackupTask &task);
// Nothing for what is no task: wrong types, unknown kinds, no id or paths.
// Numbers out of range are clamped, what is absent has its default. Dates are
// seconds since 2001-01-01, or ISO 8601; one that is neither is invalid.
std::optional<BackupTask> backupTaskFromJson(const QJsonObject &json);

// The first time after the instant, in its time zone. A time that a change of
// the clocks leaves out comes as soon as the clocks have passed it, one that
// comes twice the first time.
QDateTime nextRun(const BackupScheduleTime &schedule, const QDateTime &after);

// Later than any correct next time: the clock was wrong when it was computed.
bool isTooFarAhead(const BackupScheduleTime &schedule, const QDateTime &nextRunAt, const QDateTime &now);

// Why the task cannot be saved, in words for the user; else empty. Source and
// destination are looked at on the disk: call it off the main thread.
QString backupObstacle(const BackupTask &task);
// Why it cannot be beside the others: they would write over each other, or copy
// each other's copies without end. Looks at the paths only; the task itself may
// be among the others.
QString backupConflict(const BackupTask &task, const QList<BackupTask> &others);

// "每天 09:00", "每月 28 日 09:00", "每年 3 月 1 日 09:00".
QString scheduleText(const BackupScheduleTime &schedule);

} // namespace velbrix
