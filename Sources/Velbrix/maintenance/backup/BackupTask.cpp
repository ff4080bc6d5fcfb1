#include "maintenance/backup/BackupTask.h"

#include "foundation/SettingsStore.h"

#include <QDir>
#include <QJsonArray>
#include <QSet>
#include <QUuid>

#include <algorithm>
#include <cmath>
#include <concepts>
#include <initializer_list>
#include <type_traits>
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

// The members of the stored form, for whoever reads or writes it.
template <typename Schedule, typename Visitor>
    requires std::same_as<std::remove_const_t<Schedule>, BackupScheduleTime>
void visitMembers(Schedule &schedule, Visitor &visit)
{
    visit("kind"_L1, schedule.kind, scheduleKinds);
    visit("hour"_L1, schedule.hour, 0, 23);
    visit("minute"_L1, schedule.minute, 0, 59);
    visit("dayOfMonth"_L1, schedule.dayOfMonth, 1, 31);
    visit("month"_L1, schedule.month, 1, 12);
}

template <typename Task, typename Visitor>
    requires std::same_as<std::remove_const_t<Task>, BackupTask>
void visitMembers(Task &task, Visitor &visit)
{
    visit("id"_L1, task.id);
    visit("name"_L1, task.name);
    visit("kind"_L1, task.kind, taskKinds);
    visit("sourcePath"_L1, task.sourcePath);
    visit("destPath"_L1, task.destPath);
    visit("schedule"_L1, task.schedule);
    visit("isEnabled"_L1, task.isEnabled);
    visit("nextRunAt"_L1, task.nextRunAt);
    visit("lastRunAt"_L1, task.lastRunAt);
    visit("lastResult"_L1, task.lastResult);
    visit("keepLast"_L1, task.keepLast, 0, 100000);
    visit("excludes"_L1, task.excludes);
    visit("setsAside"_L1, task.setsAside);
    visit("destVolume"_L1, task.destVolume);
    visit("sourceVolume"_L1, task.sourceVolume);
    visit("destVolumeId"_L1, task.destVolumeId);
    visit("sourceVolumeId"_L1, task.sourceVolumeId);
    visit("requiresMark"_L1, task.requiresMark);
    visit("lastFailed"_L1, task.lastFailed);
    visit("lastCancelled"_L1, task.lastCancelled);
    visit("failingSince"_L1, task.failingSince);
    visit("toldFailure"_L1, task.toldFailure);
    visit("toldOverdue"_L1, task.toldOverdue);
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

// Optional members are written when they are there.
class Writer {
public:
    template <typename T> static QJsonObject write(const T &value)
    {
        Writer writer;
        visitMembers(value, writer);
        return writer._json;
    }

    template <typename T> void operator()(QLatin1StringView key, const T &member)
    {
        _json.insert(key, valueOf(member));
    }
    template <typename T> void operator()(QLatin1StringView key, const std::optional<T> &member)
    {
        if (member)
            _json.insert(key, valueOf(*member));
    }
    void operator()(QLatin1StringView key, int member, int, int) { _json.insert(key, member); }
    template <typename Kind, size_t N>
    void operator()(QLatin1StringView key, Kind member, const NamedKind<Kind> (&kinds)[N])
    {
        _json.insert(key, std::ranges::find(kinds, member, &NamedKind<Kind>::kind)->name);
    }

private:
    static QJsonValue valueOf(const QString &text) { return text; }
    static QJsonValue valueOf(bool isSet) { return isSet; }
    static QJsonValue valueOf(const QDateTime &date) { return toJson(date); }
    static QJsonValue valueOf(const QStringList &list) { return QJsonArray::fromStringList(list); }
    static QJsonValue valueOf(const BackupScheduleTime &schedule) { return write(schedule); }

    QJsonObject _json;
};

// Reads members of the expected types; what is absent or null has its default.
class Reader {
public:
    // Nothing when a member is of another type.
    template <typename T> static std::optional<T> read(const QJsonObject &json)
    {
        T value;
        Reader reader(json);
        visitMembers(value, reader);
        return reader._isValid ? std::optional(value) : std::nullopt;
    }

    void operator()(QLatin1StringView key, QString &field)
    {
        take(key, {QJsonValue::String}, [&](const auto &v) { field = v.toString(); });
    }
    void operator()(QLatin1StringView key, bool &field)
    {
        take(key, {QJsonValue::Bool}, [&](const auto &v) { field = v.toBool(); });
    }
    void operator()(QLatin1StringView key, int &field, int least, int most)
    {
        take(key, {QJsonValue::Double}, [&](const auto &v) {
            field = static_cast<int>(std::clamp(v.toDouble(), double(least), double(most)));
        });
    }
    void operator()(QLatin1StringView key, QDateTime &field)
    {
        take(key, {QJsonValue::Double, QJsonValue::String}, [&](const auto &v) { field = dateFrom(v); });
    }
    void operator()(QLatin1StringView key, std::optional<QDateTime> &field)
    {
        QDateTime date;
        (*this)(key, date);
        field = date.isValid() ? std::optional(date) : std::nullopt;
    }
    void operator()(QLatin1StringView key, std::optional<QString> &field)
    {
        take(key, {QJsonValue::String}, [&](const auto &v) { field = v.toString(); });
    }
    void operator()(QLatin1StringView key, QStringList &field)
    {
        take(key, {QJsonValue::Array}, [&](const auto &v) {
            const QJsonArray list = v.toArray();
            for (const auto &entry : list) {
                if (entry.isString())
                    field.append(entry.toString());
            }
        });
    }
    template <typename Kind, size_t N>
    void operator()(QLatin1StringView key, Kind &field, const NamedKind<Kind> (&kinds)[N])
    {
        const QString name = _json.value(key).toString();
        const auto *const found = std::ranges::find(kinds, name, &NamedKind<Kind>::name);
        if (found == std::end(kinds))
            _isValid = false;
        else
            field = found->kind;
    }
    void operator()(QLatin1StringView key, BackupScheduleTime &field)
    {
        const auto schedule = read<BackupScheduleTime>(_json.value(key).toObject());
        _isValid = _isValid && schedule;
        field = schedule.value_or(field);
    }

private:
    explicit Reader(const QJsonObject &json) : _json(json) {}

    template <typename Store>
    void take(QLatin1StringView key, std::initializer_list<QJsonValue::Type> types, Store store)
    {
        const QJsonValue value = _json.value(key);
        if (value.isUndefined() || value.isNull())
            return;
        if (std::ranges::find(types, value.type()) == types.end())
            _isValid = false;
        else
            store(value);
    }

    const QJsonObject &_json;
    bool _isValid = true;
};

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
    return Writer::write(task);
}

std::optional<BackupTask> backupTaskFromJson(const QJsonObject &json)
{
    auto task = Reader::read<BackupTask>(json);
    if (!task || task->id.isEmpty() || task->sourcePath.isEmpty() || task->destPath.isEmpty())
        return std::nullopt;
    // Older settings tell by the words alone whether a run was completed.
    if (!json.contains("lastCancelled"_L1) && task->lastResult)
        task->lastCancelled = !task->lastResult->startsWith(u"✓ ");
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
    for (const auto &entry : list) {
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
