#pragma once

#include "foundation/Cancellation.h"
#include "foundation/Removal.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <QThreadPool>

namespace velbrix {

// Where folders are listed and emptied. Never waited for: a folder on a disk
// that is gone would hold up the end.
QThreadPool &cleanupThreads();

// Whether emptying a folder takes the entry of this name: hidden ones stay.
bool isCleanable(const QByteArray &name);

// Emptying folders. Blocking; for a thread of its own.
struct FolderCleaning {
    QStringList folders;
    RemovalRules rules;
    QList<QByteArray> kept; // places inside that stay without a word; among the protected ones
    // A folder that a link leads to stays as it is: others may have laid it.
    bool withoutLinks = false;
};

struct Cleaned {
    qint64 count = 0;    // entries that were to go, gone or not; the trash and a command are one each
    qint64 ownBytes = 0; // of those entries themselves, not of what is in them
    RemovalReport removal = {};

    void add(const Cleaned &other);
};

Cleaned clean(const FolderCleaning &cleaning, const Cancellation &cancellation);

// The entries that cleaning would take, by their path. A folder that cannot be
// listed has none and is named in the problem.
struct CleanableEntries {
    QList<QByteArray> paths;
    QString problem;
};

CleanableEntries cleanableEntries(const QStringList &folders, const RemovalRules &rules);

} // namespace velbrix
