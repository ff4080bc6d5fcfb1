#pragma once

#include "maintenance/cleanup/CleanupTypes.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace velbrix {

// Headings of the page, in order.
enum class CleanupGroup { system, development, packages, browsers, editors, advanced, custom };

QString title(CleanupGroup group);

// What the built-in table says of one item.
struct CleanupRule {
    CleanupItem item; // its initial state
    CleanupGroup group = CleanupGroup::system;
    CleanupTarget target;
    QStringList measured;         // folders whose sizes make up the item's; none: not measured
    QStringList owners;           // programs that use it while they run, as RunningPrograms names them
    bool takesHidden = false;     // entries that begin with a dot go, too
    bool onlyOldOwnFiles = false; // this user's, untouched for a day
};

// Where the user keeps things on a host of the freedesktop kind.
struct UserFolders {
    QString home;
    QString config;
    QString cache;
    QString data;
    QString state;

    static UserFolders ofThisUser();
};

// The tables, in their order.
QList<CleanupRule> macCleanupCatalog(const QString &home);
QList<CleanupRule> freedesktopCleanupCatalog(const UserFolders &folders);

} // namespace velbrix
