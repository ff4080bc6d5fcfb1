#pragma once

#include "foundation/ProcessRunner.h"
#include "maintenance/cleanup/FolderCleaning.h"

#include <QByteArray>
#include <QCoroTask>
#include <QList>
#include <QSet>
#include <QString>

namespace velbrix {

class AdminShell;
class CleanupTable;
class TrashCan;

// Cleans one item: empties its folders or the trash, or runs its command.
class ItemCleaner {
public:
    struct Hosts {
        TrashCan &trash;
        AdminShell &admin;
    };

    struct Bounds {
        QSet<QString> items;       // of this clean; the folders of all others stay
        QList<QByteArray> leftOut; // entries that stay, of any item: one may lie inside another
    };

    // Everything must outlive every cleaning.
    ItemCleaner(const CleanupTable &table, Hosts hosts, Clock &clock)
        : _table(table), _hosts(hosts), _processes(clock)
    {
    }

    // Ends after the entry it is at, or with its command, once it is cancelled.
    QCoro::Task<Cleaned> clean(QString id, Bounds bounds, Cancellation work);

private:
    QCoro::Task<Cleaned> emptyTrash(QString name, Cancellation work);
    QCoro::Task<Cleaned> emptyFolders(QString id, Bounds bounds, Cancellation work);

    const CleanupTable &_table;
    Hosts _hosts;
    ProcessRunner _processes;
};

} // namespace velbrix
