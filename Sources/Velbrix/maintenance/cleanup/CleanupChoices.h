#pragma once

#include "maintenance/cleanup/CleanupTypes.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

class SettingsStore;

// What the user has chosen, kept in the settings: which items are cleaned,
// folders of their own, and entries that are excluded from every clean.
class CleanupChoices {
public:
    static inline const QString selectionKey = QStringLiteral("VelbClean_CleanupSelection");
    static inline const QString customPathsKey = QStringLiteral("VelbClean_CustomPaths");
    static inline const QString excludedKey = QStringLiteral("VelbClean_LeftOutEntries");
    // As many excluded entries are kept in the settings; the others hold until
    // the program ends.
    static constexpr qsizetype mostKept = 1000;

    // The settings must outlive it.
    explicit CleanupChoices(SettingsStore &settings) : _settings(settings) {}

    // Ids of the selected items; nothing while none were ever stored.
    std::optional<QStringList> selected() const;
    // The user's own folders, standardized; each once.
    QStringList customPaths() const;
    // Both, as the items have them.
    void save(const QList<CleanupItem> &items);
    void saveSelection(const QList<CleanupItem> &items);

    // Excluded entries by the item of whose folders they are; paths are native
    // and absolute. Until they are loaded, none are.
    void loadExcluded(const QStringList &ids);
    QSet<QByteArray> excludedOf(const QString &id) const { return _excluded.value(id); }
    // Of all items.
    QList<QByteArray> excluded() const;
    void setExcluded(const QString &id, const QByteArray &path, bool isExcluded);
    void includeAll(const QString &id);

private:
    void saveExcluded();

    SettingsStore &_settings;
    QHash<QString, QSet<QByteArray>> _excluded;
};

} // namespace velbrix
