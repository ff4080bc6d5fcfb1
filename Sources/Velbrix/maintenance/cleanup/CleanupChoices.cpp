#include "maintenance/cleanup/CleanupChoices.h"

#include "foundation/SettingsStore.h"
#include "maintenance/cleanup/CleanupCatalog.h"

#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QStringList strings(const QJsonArray &stored)
{
    QStringList values;
    for (const auto &value : stored) {
        if (value.isString())
            values.append(value.toString());
    }
    return values;
}

// A relative path would mean another folder with every start.
bool namesOneFolder(const QString &path)
{
    return path.startsWith(u'/') || path == u"~" || path.startsWith(u"~/");
}

} // namespace

std::optional<QStringList> CleanupChoices::selected() const
{
    const auto stored = _settings.json(selectionKey);
    return stored && stored->isArray() ? std::optional(strings(stored->toArray())) : std::nullopt;
}

QStringList CleanupChoices::customPaths() const
{
    QStringList paths;
    for (const QString &path : strings(_settings.json(customPathsKey).value_or(QJsonValue()).toArray())) {
        if (namesOneFolder(path))
            paths.append(standardizedPath(path));
    }
    paths.removeDuplicates();
    return paths;
}

void CleanupChoices::save(const QList<CleanupItem> &items)
{
    QJsonArray paths;
    for (const CleanupItem &item : items) {
        if (item.customPath)
            paths.append(*item.customPath);
    }
    _settings.set(customPathsKey, paths);
    saveSelection(items);
}

void CleanupChoices::saveSelection(const QList<CleanupItem> &items)
{
    QJsonArray selected;
    for (const CleanupItem &item : items) {
        if (item.isSelected)
            selected.append(item.id);
    }
    _settings.set(selectionKey, selected);
}

void CleanupChoices::loadExcluded(const QStringList &ids)
{
    const QJsonObject stored = _settings.json(excludedKey).value_or(QJsonValue()).toObject();
    for (const QString &id : ids) {
        const QJsonArray paths = stored.value(id).toArray();
        for (const auto &value : paths) {
            // No text could hold every name that a file may have.
            const QByteArray path = QByteArray::fromPercentEncoding(value.toString().toUtf8());
            if (path.startsWith('/'))
                _excluded[id].insert(path);
        }
    }
}

QList<QByteArray> CleanupChoices::excluded() const
{
    QList<QByteArray> paths;
    for (const QSet<QByteArray> &entries : _excluded)
        paths += entries.values();
    return paths;
}

void CleanupChoices::setExcluded(const QString &id, const QByteArray &path, bool isExcluded)
{
    if (isExcluded)
        _excluded[id].insert(path);
    else
        _excluded[id].remove(path);
    saveExcluded();
}

void CleanupChoices::includeAll(const QString &id)
{
    if (_excluded.remove(id))
        saveExcluded();
}

void CleanupChoices::saveExcluded()
{
    QJsonObject stored;
    qsizetype kept = 0;
    for (auto entries = _excluded.cbegin(); entries != _excluded.cend(); ++entries) {
        QJsonArray paths;
        for (const QByteArray &path : *entries) {
            if (kept++ < mostKept)
                paths.append(QString::fromLatin1(path.toPercentEncoding("/ ")));
        }
        if (!paths.isEmpty())
            stored.insert(entries.key(), paths);
    }
    if (stored.isEmpty())
        _settings.remove(excludedKey);
    else
        _settings.set(excludedKey, stored);
}

} // namespace velbrix
