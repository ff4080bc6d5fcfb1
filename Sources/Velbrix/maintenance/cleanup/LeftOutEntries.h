#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace velbrix {

class SettingsStore;

// Entries that cleaning leaves alone, by the item of whose folders they are;
// kept in the settings. Paths are native and absolute.
class LeftOutEntries {
public:
    static inline const QString defaultsKey = QStringLiteral("VelbClean_LeftOutEntries");
    // As many are kept in the settings; the others hold until the program ends.
    static constexpr qsizetype mostKept = 1000;

    // The settings must outlive it.
    explicit LeftOutEntries(SettingsStore &settings) : _settings(settings) {}

    // What the settings hold of these items.
    void load(const QStringList &ids);

    bool contains(const QString &id, const QByteArray &path) const
    {
        return _entries.value(id).contains(path);
    }
    qsizetype count(const QString &id) const { return _entries.value(id).size(); }
    // Of all items.
    QList<QByteArray> all() const;

    void set(const QString &id, const QByteArray &path, bool isLeftOut);
    void remove(const QString &id);
    // Drops those that are missing among the entries listed of their folders.
    // A folder without any entry may be that of a disk which is not there.
    void dropMissing(const QString &id, const QList<QByteArray> &listed);

private:
    void save();

    SettingsStore &_settings;
    QHash<QString, QSet<QByteArray>> _entries;
};

} // namespace velbrix
