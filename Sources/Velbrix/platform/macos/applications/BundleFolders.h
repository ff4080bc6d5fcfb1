#pragma once

#include "foundation/Result.h"
#include "platform/ApplicationCatalog.h"

#include <QString>
#include <QStringList>

namespace velbrix {

// Where macOS applications keep a user's data, in the order of the search.
QList<LibraryFolder> libraryFoldersUnder(const QString &home);

// The paths of the folder's entries that end in ".app", sorted. Blocking.
Result<QStringList> bundlesIn(const QString &folder);

// Those that are installed elsewhere: a floor below the folder, by the system,
// by the user alone. What cannot be read is left out. Blocking.
QStringList bundlesBeside(const QString &folder, const QString &home);

// Whether a bundle lies where a browser or a disk image leaves it, or where the
// system has put a quarantined one to run ("app translocation").
bool isLeftByDownload(const QString &bundle, const QString &home);

// Of a bundle's path, as the Finder shows it.
QString bundleName(const QString &path);

} // namespace velbrix
