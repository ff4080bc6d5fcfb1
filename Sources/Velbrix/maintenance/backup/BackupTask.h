#pragma once

#include "maintenance/backup/BackupSchedule.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

class SettingsStore;

enum class BackupTaskKind { backup, sync };

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
    QString destVolumeId;  // which disk it was; empty when it cannot be told
    QString sourceVolumeId;
    bool requiresMark = false; // only with its mark is a mirror its own; older tasks have left none
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

// The tasks in the settings, as one list.
class BackupTaskStore {
public:
    explicit BackupTaskStore(SettingsStore &settings) : _settings(settings) {}

    // What cannot be read is kept under another key and told of in problem().
    QList<BackupTask> load();
    void save(const QList<BackupTask> &tasks);
    const QString &problem() const { return _problem; }

private:
    void keepAside(const QJsonValue &unreadable);

    SettingsStore &_settings;
    QString _problem;
};

} // namespace velbrix
