#pragma once

#include "maintenance/cleanup/CleanupTypes.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

class SettingsStore;

// What the user has chosen to clean, in the settings. They must outlive it.
class CleanupChoices {
public:
    static inline const QString defaultsKey = QStringLiteral("VelbClean_CleanupSelection");
    static inline const QString customPathsKey = QStringLiteral("VelbClean_CustomPaths");

    explicit CleanupChoices(SettingsStore &settings) : _settings(settings) {}

    // Ids of the selected items; nothing while none were ever stored.
    std::optional<QStringList> selected() const;
    // The user's own folders, standardized; each once.
    QStringList customPaths() const;
    // Both, as the items have them.
    void save(const QList<CleanupItem> &items);
    void saveSelection(const QList<CleanupItem> &items);

private:
    SettingsStore &_settings;
};

} // namespace velbrix
