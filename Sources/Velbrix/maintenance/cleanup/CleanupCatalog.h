#pragma once

#include "maintenance/cleanup/CleanupTypes.h"
#include "platform/HostFamily.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace velbrix {

// Headings of the page, in order.
enum class CleanupGroup { system, development, packages, browsers, editors, advanced, custom };

QString title(CleanupGroup group);

// What one item means: a line of the host's table, or a folder of the user's.
// In a table's folders a whole component may be "*", for every folder there.
struct CleanupRule {
    CleanupItem item; // its initial state
    CleanupGroup group = CleanupGroup::system;
    CleanupTarget target;
    QStringList measured;          // folders that make up its size; none: not measured
    QStringList owners = {};       // programs that use it, as RunningPrograms names them
    QStringList furtherPaths = {}; // emptied like the target's path
    bool onlyOldOwnFiles = false;  // this user's, untouched for a day
    QString program = {};          // without it on this machine there is no such item
    QStringList sparedPaths = {};  // stay in what is emptied: no caches, though they lie among them
    // What uses one of a pattern's folders, as RunningPrograms names it; "%1"
    // stands for the name of the folder that "*" means. Empty: nothing.
    QString folderOwner = {};
    bool takesPart = false; // of what is measured, and nobody knows how much
};

inline const QString trashItemId = QStringLiteral("trash");

// Where the user keeps things on a host of the freedesktop kind.
struct UserFolders {
    QString home;
    QString config;
    QString cache;
    QString data;

    static UserFolders ofThisUser();
};

// The tables, in their order.
QList<CleanupRule> macCleanupCatalog(const QString &home);
QList<CleanupRule> freedesktopCleanupCatalog(const UserFolders &folders);
// The host's own, without what this machine has no program for.
QList<CleanupRule> cleanupCatalog(HostFamily family);

// Where programs built on IntelliJ keep their local history among caches, and
// the file contents that it needs.
QStringList localHistories(const QString &caches);

// Absolute, without "~", "..", "." and doubled slashes.
QString standardizedPath(const QString &path);
// What cleaning a folder of the user's choice means; already selected.
CleanupRule customRule(const QString &standardizedPath);

// Whether the rule means every folder of a kind, whoever made it.
bool hasPattern(const CleanupRule &rule);
// What cleaning empties at this moment; nothing when it runs a command.
QStringList emptiedFolders(const CleanupRule &rule);
// What makes up the size at this moment.
QStringList measuredFolders(const CleanupRule &rule);
// What uses this one of the emptied folders; empty when nothing does.
QString ownerOf(const QString &folder, const CleanupRule &rule);
// The folders a pattern means at this moment, sorted. Real ones only: what lies
// behind a link is not the pattern's. A path that is none means itself.
QStringList matchingFolders(const QString &pattern);

} // namespace velbrix
