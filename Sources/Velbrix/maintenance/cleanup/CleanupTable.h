#pragma once

#include "foundation/Removal.h"
#include "maintenance/cleanup/CleanupCatalog.h"
#include "maintenance/cleanup/FolderCleaning.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace velbrix {

class Clock;
class RunningPrograms;
class TrashCan;

// Which folders each item means at this moment, and within what bounds they
// are emptied: of the host's items and of the folders the user has added.
// Looks at the disk when asked. An id it does not know has no folders.
class CleanupTable {
public:
    struct Hosts {
        const TrashCan &trash;
        const RunningPrograms &programs;
    };

    // Hosts and clock must outlive the table. `ownPlaces`: what of this program
    // must never be removed.
    CleanupTable(QList<CleanupRule> catalog, Hosts hosts, Clock &clock, QList<QByteArray> ownPlaces);

    const QList<CleanupRule> &rules() const { return _rules; }
    // Null when there is no such item; valid until the table changes.
    const CleanupRule *rule(const QString &id) const;
    void add(const CleanupRule &rule) { _rules.append(rule); }
    void remove(const QString &id);

    // What cleaning empties; nothing when it runs a command.
    QStringList emptiedFolders(const QString &id) const;
    // The same of all items but these.
    QStringList foldersOutside(const QSet<QString> &ids) const;
    // What makes up the size.
    QStringList measuredFolders(const QString &id) const;

    RemovalRules removalRules(const QString &id) const;
    // How its folders are emptied, with nothing kept.
    FolderCleaning cleaning(const QString &id) const;

    // Ids of the items whose owner runs.
    QStringList busyItems() const;

private:
    QList<CleanupRule> _rules;
    Hosts _hosts;
    Clock &_clock;
    QList<QByteArray> _ownPlaces;
};

} // namespace velbrix
