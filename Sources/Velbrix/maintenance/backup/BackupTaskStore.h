#pragma once

#include "maintenance/backup/BackupTypes.h"

#include <QList>

namespace velbrix {

class SettingsStore;

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
