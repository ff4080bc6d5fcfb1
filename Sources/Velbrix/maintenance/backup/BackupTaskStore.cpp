#include "maintenance/backup/BackupTaskStore.h"

#include "foundation/SettingsStore.h"

#include <QJsonArray>
#include <QSet>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString defaultsKey = u"Velbrix_FileBackupTasks_v2"_s;
const QString unreadableKey = defaultsKey + u"_unreadable"_s;

QJsonValue storedValue(const SettingsStore &settings)
{
    if (const auto value = settings.json(defaultsKey))
        return *value;
    if (const auto value = settings.string(defaultsKey))
        return *value;
    if (const auto value = settings.real(defaultsKey))
        return *value;
    if (const auto value = settings.boolean(defaultsKey))
        return *value;
    return {};
}

} // namespace

QList<BackupTask> BackupTaskStore::load()
{
    const QJsonValue stored = storedValue(_settings);
    if (!stored.isArray()) {
        if (!stored.isNull()) {
            keepAside(stored);
            _problem = u"备份任务无法读取，原内容已保留在设置项 "_s + unreadableKey;
        }
        return {};
    }
    QList<BackupTask> tasks;
    QSet<QString> ids;
    int unreadable = 0;
    const QJsonArray list = stored.toArray();
    for (const QJsonValue &entry : list) {
        auto task = backupTaskFromJson(entry.toObject());
        if (!task) {
            keepAside(entry);
            ++unreadable;
            continue;
        }
        if (ids.contains(task->id))
            task->id = QUuid::createUuid().toString(QUuid::WithoutBraces);
        ids.insert(task->id);
        tasks.append(normalised(*task));
    }
    if (unreadable > 0)
        _problem = u"%1 个备份任务无法读取，原内容已保留在设置项 %2"_s.arg(unreadable).arg(unreadableKey);
    return tasks;
}

void BackupTaskStore::save(const QList<BackupTask> &tasks)
{
    QJsonArray list;
    for (const BackupTask &task : tasks)
        list.append(toJson(task));
    _settings.set(defaultsKey, list);
}

void BackupTaskStore::keepAside(const QJsonValue &unreadable)
{
    QJsonArray kept = _settings.json(unreadableKey).value_or(QJsonArray()).toArray();
    if (kept.contains(unreadable))
        return;
    kept.append(unreadable);
    _settings.set(unreadableKey, kept);
}

} // namespace velbrix
