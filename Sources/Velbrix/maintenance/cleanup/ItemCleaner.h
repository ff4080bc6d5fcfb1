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

// A folder that stays with all that is in it, though it lies in one that is
// emptied.
struct KeptFolder {
    QString folder;
    QString why; // for the user
};

// What an item's cleaning empties, and what it must respect. A direct entry
// goes whole or stays whole: one that holds anything kept stays.
struct CleanupBounds {
    QStringList folders;
    bool areOthers = false; // others may have laid links among them, which are left alone
    bool isTrash = false;   // hidden entries go, too; and where a link leads is the user's arrangement
    RemovalRules rules;
    QList<KeptFolder> kept;
    QList<QByteArray> excluded; // entries, of any item: one may lie inside another
};

// The entries in the folders, hidden ones left out. A folder that is itself a
// link is not emptied: it may lead to what is no cache.
struct CleanableEntries {
    struct Entry {
        QByteArray path;
        QString whyStays; // for the user; empty when it goes
    };
    QList<Entry> entries;
    QString problem;         // why a folder is not emptied
    qint64 notOldEnough = 0; // or somebody else's; not among the entries
};

// Blocking.
CleanableEntries cleanableEntries(const CleanupBounds &bounds);

// What cleaning an item did.
struct Cleaned {
    qint64 count = 0;    // entries that were to go, gone or not; the trash and a command are one each
    qint64 ownBytes = 0; // of those entries themselves, not of what is in them
    RemovalReport removal = {};
    QList<CleanupNote> kept = {}; // entries that stayed whole for something in them
    QString failure = {};         // why the command or the trash did not do it
    bool isMeasured = true;       // whether the removal tells what was freed

    void add(const Cleaned &other); // of another item; failures are that item's alone
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
    QCoro::Task<Cleaned> emptyTrash(RemovalRules rules, Cancellation work);
    QCoro::Task<Cleaned> runCommand(CleanupTarget target, Cancellation work);

    Ports _ports;
    ProcessRunner _processes;
};

} // namespace velbrix
