#include "maintenance/cleanup/CleanupChoices.h"

#include "foundation/SettingsStore.h"
#include "maintenance/cleanup/CustomFolder.h"

#include <QJsonArray>

namespace velbrix {
namespace {

QStringList strings(const QJsonArray &stored)
{
    QStringList values;
    for (const QJsonValue &value : stored) {
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
    const auto stored = _settings.json(defaultsKey);
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
    _settings.set(defaultsKey, selected);
}

} // namespace velbrix
