#pragma once

#include <QByteArray>
#include <QString>

#include <utility>

namespace velbrix {

// Paths of this host, as text or in its native bytes. Any thread.

// Whether the path lies in the folder, or is the folder itself. By the text
// alone: both should be clean, and canonical where links matter. A folder may
// end with a slash; one without a name holds nothing.
bool isWithin(const QString &path, const QString &folder);
bool isWithin(const QByteArray &path, const QByteArray &folder);
// The same without the folder itself.
bool isInside(const QString &path, const QString &folder);
bool isInside(const QByteArray &path, const QByteArray &folder);

// The path with all its links resolved; empty when nothing is there, in bytes
// with errno. Blocking.
QString canonicalPath(const QString &path);
QByteArray canonicalPath(const QByteArray &path);
// The same, and the path itself, cleaned, when nothing is there.
QString resolvedPath(const QString &path);

// As people write it: "~/Desktop" for what lies in the home folder, which is an
// absolute path of its own.
QString shortenedPath(const QString &path, const QString &home);

// "/a/b" → "/a" and "b".
std::pair<QByteArray, QByteArray> splitPath(const QByteArray &path);

// Whether there is a folder in which nothing can be listed, not even hidden
// entries. Blocking.
bool isEmptyFolder(const QString &path);

} // namespace velbrix
