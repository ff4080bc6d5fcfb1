#pragma once

#include "foundation/Removal.h"
#include "maintenance/cleanup/CleanupCatalog.h"
#include "maintenance/cleanup/ItemCleaner.h"

#include <QByteArray>
#include <QCoroTask>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

class RunningPrograms;
class SeenTime;
class TrashCan;

// What programs use at a moment.
struct CleanupUse {
    // One of a pattern's folders whose owner runs.
    struct Folder {
        QString item; // id
        QString path;
        QString owner;
    };

    QStringList items = {}; // ids
    QList<Folder> folders = {};
    std::optional<QSet<QByteArray>> sockets = {}; // see RunningPrograms
};

// The items that there are, the host's and the folders that the user has
// added, and within what bounds they are emptied.
class CleanupTable {
public:
    struct Ports {
        const TrashCan &trash;
        const RunningPrograms &programs;
    };

    // Ports and `seen` must outlive the table. `ownPaths`: what of this program
    // must never be removed.
    CleanupTable(QList<CleanupRule> catalog, Ports ports, const SeenTime &seen, QList<QByteArray> ownPaths);

    const QList<CleanupRule> &rules() const { return _rules; }
    // Null when there is no such item; valid until the table changes.
    const CleanupRule *rule(const QString &id) const;
    void add(const CleanupRule &rule) { _rules.append(rule); }
    void remove(const QString &id);

    // What makes up the size of the trash.
    QStringList trashFolders() const;
    // What cleaning the item together with these others empties at this moment;
    // the excluded entries are left to the caller.
    QCoro::Task<CleanupBounds> bounds(CleanupRule rule, QSet<QString> ids, CleanupUse use) const;
    // Without the host's own places, which the disk must be asked for.
    RemovalRules removalRules(const CleanupRule &rule, const CleanupUse &use) const;
    QCoro::Task<CleanupUse> use() const;

private:
    QList<CleanupRule> _rules;
    Ports _ports;
    const SeenTime &_seen;
    QList<QByteArray> _ownPaths;
    QObject _life; // of what waits
};

} // namespace velbrix
