#pragma once

#include "foundation/Removal.h"
#include "maintenance/cleanup/CleanupCatalog.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace velbrix {

class Clock;
class RunningPrograms;
class TrashCan;
struct CleanupBounds;

// What programs use at a moment.
struct CleanupUse {
    QStringList items;                    // ids
    QHash<QString, QString> folders = {}; // of patterns: the owner's name by the folder
};

// The items that there are, the host's and the folders that the user has
// added, and within what bounds they are emptied.
class CleanupTable {
public:
    struct Ports {
        const TrashCan &trash;
        const RunningPrograms &programs;
    };

    // Ports and clock must outlive the table. `ownPaths`: what of this program
    // must never be removed.
    CleanupTable(QList<CleanupRule> catalog, Ports ports, Clock &clock, QList<QByteArray> ownPaths);

    const QList<CleanupRule> &rules() const { return _rules; }
    // Null when there is no such item; valid until the table changes.
    const CleanupRule *rule(const QString &id) const;
    void add(const CleanupRule &rule) { _rules.append(rule); }
    void remove(const QString &id);

    // What cleaning the item together with these others empties at this moment;
    // the excluded entries are left to the caller.
    CleanupBounds bounds(const CleanupRule &rule, const QSet<QString> &ids, const CleanupUse &use) const;
    // What makes up the size of an item at this moment.
    QStringList measuredFolders(const CleanupRule &rule) const;
    RemovalRules removalRules(const CleanupRule &rule) const;

    CleanupUse use() const;

private:
    QList<CleanupRule> _rules;
    Ports _ports;
    Clock &_clock;
    QList<QByteArray> _ownPaths;
};

} // namespace velbrix
