#include "maintenance/cleanup/LeftOutEntries.h"

#include "foundation/SettingsStore.h"

#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QByteArray folderOf(const QByteArray &path)
{
    return path.first(path.lastIndexOf('/'));
}

} // namespace

void LeftOutEntries::load(const QStringList &ids)
{
    const QJsonObject stored = _settings.json(defaultsKey).value_or(QJsonValue()).toObject();
    for (const QString &id : ids) {
        const QJsonArray paths = stored.value(id).toArray();
        for (const QJsonValue &value : paths) {
            // No text could hold every name that a file may have.
            const QByteArray path = QByteArray::fromPercentEncoding(value.toString().toUtf8());
            if (path.startsWith('/'))
                _entries[id].insert(path);
        }
    }
}

QList<QByteArray> LeftOutEntries::all() const
{
    QList<QByteArray> paths;
    for (const QSet<QByteArray> &entries : _entries)
        paths += entries.values();
    return paths;
}

void LeftOutEntries::set(const QString &id, const QByteArray &path, bool isLeftOut)
{
    if (isLeftOut)
        _entries[id].insert(path);
    else
        _entries[id].remove(path);
    save();
}

void LeftOutEntries::remove(const QString &id)
{
    if (_entries.remove(id))
        save();
}

void LeftOutEntries::dropMissing(const QString &id, const QList<QByteArray> &listed)
{
    const auto known = _entries.find(id);
    if (known == _entries.end())
        return;
    QSet<QByteArray> folders;
    for (const QByteArray &path : listed)
        folders.insert(folderOf(path));
    const QSet<QByteArray> there(listed.begin(), listed.end());
    const auto isMissing = [&](const QByteArray &path) {
        return folders.contains(folderOf(path)) && !there.contains(path);
    };
    if (known->removeIf(isMissing) > 0)
        save();
}

void LeftOutEntries::save()
{
    QJsonObject stored;
    qsizetype kept = 0;
    for (auto entries = _entries.cbegin(); entries != _entries.cend(); ++entries) {
        QJsonArray paths;
        for (const QByteArray &path : *entries) {
            if (kept++ < mostKept)
                paths.append(QString::fromLatin1(path.toPercentEncoding("/ ")));
        }
        if (!paths.isEmpty())
            stored.insert(entries.key(), paths);
    }
    if (stored.isEmpty())
        _settings.remove(defaultsKey);
    else
        _settings.set(defaultsKey, stored);
}

} // namespace velbrix
