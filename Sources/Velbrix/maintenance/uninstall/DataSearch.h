#pragma once

#include "maintenance/uninstall/DataMatch.h"
#include "maintenance/uninstall/UninstallTypes.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

class QThreadPool;

namespace velbrix {

// Places that must stay, with those no tool ever removes: each of them and
// whatever contains one. A link counts as itself, not as what it leads to.
class ProtectedPaths {
public:
    // Blocking: links on the way are resolved.
    explicit ProtectedPaths(const QStringList &places);

    // Blocking.
    bool hold(const QString &path) const;
    // A path without links on the way.
    bool holdCanonical(const QString &path) const { return _paths.contains(path); }

private:
    QSet<QString> _paths;
};

// Where and for what to look.
struct DataSearch {
    QList<LibraryFolder> folders;
    DataSubject subject;
    QStringList protectedPaths; // never found
};

// What is to go, and within what bounds.
struct UninstallPlan {
    UninstallReview review;
    DataSearch search; // its folders are those from which data may go
};

// The direct entries of the folders that belong to the application, folder by
// folder, sorted by name; ticked where nothing speaks against it. Folders that
// cannot be read have none, and names that are not Unicode are passed over.
// Blocking.
QList<ReviewItem> findData(const DataSearch &search);

// Whether anything is there by that name, be it a link to nowhere. Blocking.
bool isThere(const QString &path);

// Where the blocking work of uninstalling is done. Never waited for.
QThreadPool &uninstallWorkers();

} // namespace velbrix
