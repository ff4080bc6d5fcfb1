#include "maintenance/backup/BackupTask.h"

#include "foundation/SettingsStore.h"

#include <QDir>
#include <QJsonArray>
#include <QSet>
#include <QUuid>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString defaultsKey = u"Velbrix_FileBackupTasks_v2"_s;
const QString unreadableKey = defaultsKey + u"_unreadable"_s;

constexpr qint64 referenceSecs = 978307200; // 2001-01-01 00:00 UTC since 1970
constexpr double furthestSecs = 1e11;       // some three thousand years

template <typename Kind> struct NamedKind {
    Kind kind;
    QLatin1StringView name;
};

constexpr NamedKind<BackupTaskKind> taskKinds[] = {{BackupTaskKind::backup, "backup"_L1},
                                                   {BackupTaskKind::sync, "sync"_L1}};
constexpr NamedKind<BackupScheduleKind> scheduleKinds[] = {{BackupScheduleKind::daily, "daily"_L1},
                                                           {BackupScheduleKind::monthly, "monthly"_L1},
                                                           {BackupScheduleKind::yearly, "yearly"_L1}};

template <typename Kind, size_t N> QString nameOf(const NamedKind<Kind> (&kinds)[N], Kind kind)
{
    const auto *const found = std::ranges::find(kinds, kind, &NamedKind<Kind>::kind);
    return found != std::end(kinds) ? QString(found->name) : QString();
}

QJsonValue toJson(const QDateTime &date)
{
    if (!date.isValid())
        return {};
    return static_cast<double>(date.toMSecsSinceEpoch() - referenceSecs * 1000) / 1000;
}

QDateTime dateFrom(const QJsonValue &value)
{
    if (value.isString())
        return QDateTime::fromString(value.toString(), Qt::ISODateWithMs).toLocalTime();
    const double secs = value.toDouble(furthestSecs);
    if (!(std::abs(secs) < furthestSecs))
        return {};
    return QDateTime::fromMSecsSinceEpoch(std::llround(secs * 1000) + referenceSecs * 1000);
}

// Reads members of the expected types; what is absent or null has its default.
class Reader {
public:
    explicit Reader(const QJsonObject &json) : _json(json) {}

    bool isSound() const { return _isSound; }

    void read(QLatin1StringView key, QString &field)
    {
        take(key, {QJsonValue::String}, [&](auto v) { field = v.toString(); });
    }
    void read(QLatin1StringView key, bool &field)
    {
        take(key, {QJsonValue::Bool}, [&](auto v) { field = v.toBool(); });
    }
    void read(QLatin1StringView key, int &field, int least, int most)
    {
        take(key, {QJsonValue::Double}, [&](auto v) {
            field = static_cast<int>(std::clamp(v.toDouble(), double(least), double(most)));
        });
    }
    void read(QLatin1StringView key, QDateTime &field)
    {
        take(key, {QJsonValue::Double, QJsonValue::String}, [&](auto v) { field = dateFrom(v); });
    }
    void read(QLatin1StringView key, std::optional<QDateTime> &field)
    {
        QDateTime date;
        read(key, date);
        field = date.isValid() ? std::optional(date) : std::nullopt;
    }
    void read(QLatin1StringView key, std::optional<QString> &field)
    {
        take(key, {QJsonValue::String}, [&](auto v) { field = v.toString(); });
    }
    void read(QLatin1StringView key, QStringList &field)
    {
        take(key, {QJsonValue::Array}, [&](auto v) {
            const QJsonArray list = v.toArray();
            for (const QJsonValue &entry : list) {
                if (entry.isString())
                    field.append(entry.toString());
            }
        });
    }
    template <typename Kind, size_t N>
    void read(QLatin1StringView key, const NamedKind<Kind> (&kinds)[N], Kind &field)
    {
        const QString name = _json.value(key).toString();
        const auto *const found = std::ranges::find(kinds, name, &NamedKind<Kind>::name);
        if (found == std::end(kinds))
            _isSound = false;
        else
            field = found->kind;
    }

private:
    template <typename Store>
    void take(QLatin1StringView key, std::initializer_list<QJsonValue::Type> types, Store store)
    {
        const QJsonValue value = _json.value(key);
        if (value.isUndefined() || value.isNull())
            return;
        if (std::ranges::find(types, value.type()) == types.end())
            _isSound = false;
        else
            store(value);
    }

    const QJsonObject &_json;
    bool _isSound = true;
};

QJsonObject toJson(const BackupScheduleTime &schedule)
{
    return {{u"kind"_s, nameOf(scheduleKinds, schedule.kind)},
            {u"hour"_s, schedule.hour},
            {u"minute"_s, schedule.minute},
            {u"dayOfMonth"_s, schedule.dayOfMonth},
            {u"month"_s, schedule.month}};
}

std::optional<BackupScheduleTime> scheduleFrom(const QJsonObject &json)
{
    BackupScheduleTime schedule;
    Reader reader(json);
    reader.read("kind"_L1, scheduleKinds, schedule.kind);
    reader.read("hour"_L1, schedule.hour, 0, 23);
    reader.read("minute"_L1, schedule.minute, 0, 59);
    reader.read("dayOfMonth"_L1, schedule.dayOfMonth, 1, 31);
    reader.read("month"_L1, schedule.month, 1, 12);
    return reader.isSound() ? std::optional(schedule) : std::nullopt;
}

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

BackupTask normalised(BackupTask task)
{
    const auto clean = [](const QString &path) { return path.isEmpty() ? path : QDir::cleanPath(path); };
    task.sourcePath = clean(task.sourcePath);
    task.destPath = clean(task.destPath);
    task.name = task.name.trimmed();
    if (task.name.isEmpty())
        task.name = QDir(task.sourcePath).dirName();
    if (task.name.isEmpty())
        task.name = u"备份"_s;
    QStringList excludes;
    for (const QString &pattern : std::as_const(task.excludes)) {
        if (!pattern.trimmed().isEmpty() && !excludes.contains(pattern.trimmed()))
            excludes.append(pattern.trimmed());
    }
    task.excludes = excludes;
    task.keepLast = std::max(task.keepLast, 0);
    return task;
}

QJsonObject toJson(const BackupTask &task)
{
    QJsonObject json{{u"id"_s, task.id},
                     {u"name"_s, task.name},
                     {u"kind"_s, nameOf(taskKinds, task.kind)},
                     {u"sourcePath"_s, task.sourcePath},
                     {u"destPath"_s, task.destPath},
                     {u"schedule"_s, toJson(task.schedule)},
                     {u"isEnabled"_s, task.isEnabled},
                     {u"nextRunAt"_s, toJson(task.nextRunAt)},
                     {u"keepLast"_s, task.keepLast},
                     {u"excludes"_s, QJsonArray::fromStringList(task.excludes)},
                     {u"setsAside"_s, task.setsAside},
                     {u"destVolume"_s, task.destVolume},
                     {u"sourceVolume"_s, task.sourceVolume},
                     {u"lastFailed"_s, task.lastFailed},
                     {u"lastCancelled"_s, task.lastCancelled},
                     {u"toldFailure"_s, task.toldFailure},
                     {u"toldOverdue"_s, task.toldOverdue}};
    if (task.lastRunAt)
        json.insert(u"lastRunAt"_s, toJson(*task.lastRunAt));
    if (task.lastResult)
        json.insert(u"lastResult"_s, *task.lastResult);
    if (task.failingSince)
        json.insert(u"failingSince"_s, toJson(*task.failingSince));
    return json;
}

std::optional<BackupTask> backupTaskFromJson(const QJsonObject &json)
{
    const auto schedule = scheduleFrom(json.value("schedule"_L1).toObject());
    if (!schedule)
        return std::nullopt;
    BackupTask task;
    task.schedule = *schedule;
    Reader reader(json);
    reader.read("id"_L1, task.id);
    reader.read("name"_L1, task.name);
    reader.read("kind"_L1, taskKinds, task.kind);
    reader.read("sourcePath"_L1, task.sourcePath);
    reader.read("destPath"_L1, task.destPath);
    reader.read("isEnabled"_L1, task.isEnabled);
    reader.read("nextRunAt"_L1, task.nextRunAt);
    reader.read("lastRunAt"_L1, task.lastRunAt);
    reader.read("lastResult"_L1, task.lastResult);
    reader.read("keepLast"_L1, task.keepLast, 0, 100000);
    reader.read("excludes"_L1, task.excludes);
    reader.read("setsAside"_L1, task.setsAside);
    reader.read("destVolume"_L1, task.destVolume);
    reader.read("sourceVolume"_L1, task.sourceVolume);
    reader.read("lastFailed"_L1, task.lastFailed);
    reader.read("lastCancelled"_L1, task.lastCancelled);
    reader.read("failingSince"_L1, task.failingSince);
    reader.read("toldFailure"_L1, task.toldFailure);
    reader.read("toldOverdue"_L1, task.toldOverdue);
    if (!reader.isSound() || task.id.isEmpty() || task.sourcePath.isEmpty() || task.destPath.isEmpty())
        return std::nullopt;
    return task;
}

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
