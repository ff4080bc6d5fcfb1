#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Removal.h"
#include "maintenance/cleanup/CleanupCatalog.h"

#include <QByteArray>
#include <QCoroTask>
#include <QList>
#include <QString>
#include <QStringList>
#include <QThreadPool>

namespace velbrix {

class AdminShell;
class TrashCan;

// Where folders are listed and emptied. Never waited for: a folder on a disk
// that is gone would hold up the end.
QThreadPool &cleanupThreads();

// The entries that emptying these folders would take, by their path; hidden
// ones stay. A folder that cannot be listed has none and is named in the
// problem. Blocking.
struct CleanableEntries {
    QList<QByteArray> paths;
    QString problem;
};

CleanableEntries cleanableEntries(const QStringList &folders, const RemovalRules &rules);

// What cleaning an item did.
struct Cleaned {
    qint64 count = 0;    // entries that were to go, gone or not; the trash and a command are one each
    qint64 ownBytes = 0; // of those entries themselves, not of what is in them
    RemovalReport removal = {};

    void add(const Cleaned &other);
};

// What an item's cleaning must respect.
struct CleanupBounds {
    RemovalRules rules;
    // Stay without a word where they lie inside what is emptied.
    QStringList otherFolders;   // of items that are not to be cleaned
    QList<QByteArray> excluded; // entries, of any item: one may lie inside another
};

// Cleans one item: empties its folders or the trash, or runs its command.
class ItemCleaner {
public:
    struct Ports {
        TrashCan &trash;
        AdminShell &admin;
    };

    // Ports and clock must outlive every cleaning.
    ItemCleaner(Ports ports, Clock &clock) : _ports(ports), _processes(clock) {}

    // Ends after the entry it is at, or with its command, once it is cancelled.
    QCoro::Task<Cleaned> clean(CleanupRule rule, CleanupBounds bounds, Cancellation work);

private:
    QCoro::Task<Cleaned> emptyTrash(QString name, RemovalRules rules, Cancellation work);
    QCoro::Task<> runCommand(CleanupTarget target, Cancellation work);

    Ports _ports;
    ProcessRunner _processes;
};

} // namespace velbrix
