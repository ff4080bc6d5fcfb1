#pragma once

#include <QDateTime>
#include <QJsonObject>
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
    bool lastFailed = false;

    bool operator==(const BackupTask &) const = default;
};

QJsonObject toJson(const BackupTask &task);
// Nothing for what is no task: wrong types, unknown kinds, no id or paths.
// Numbers out of range are clamped.
std::optional<BackupTask> backupTaskFromJson(const QJsonObject &json);

// The first time after the instant, in its time zone. A time that a change of
// the clocks leaves out runs as soon as the clocks have it.
QDateTime nextRun(const BackupScheduleTime &schedule, const QDateTime &after);

// Why the task cannot be saved, in words for the user; else empty. `source`
// and `destination` are looked at on the disk.
QString backupObstacle(const BackupTask &task);

// "每天 09:00", "每月 28 日 09:00", "每年 3 月 1 日 09:00".
QString scheduleText(const BackupScheduleTime &schedule);

} // namespace velbrix
