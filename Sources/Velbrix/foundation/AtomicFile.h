#pragma once

#include "foundation/Result.h"

#include <QByteArray>
#include <QImage>
#include <QString>

namespace velbrix {

// The files that the program keeps. Any thread; blocking.

// Puts the content under the path as a whole: after a kill, a power cut or on
// a full disk there is the old content or the new one, and success means that
// the new one is on the disk. Makes the folder; follows a link; keeps the
// permissions of what it replaces, and leaves a new file to the user alone.
// The error is words for the user.
Result<void> replaceFile(const QString &path, const QByteArray &content);
// The same with a picture as "JPG" or "PNG", in a quality from 0 to 100 or, at
// -1, the format's own.
Result<void> replaceFile(const QString &path, const QImage &picture, const char *format, int quality = -1);

// Makes a new file of the user's alone; 0 when the medium has it, else the errno
// (EEXIST: the name is taken) and there is no such file.
int createFile(const QByteArray &path, const QByteArray &content);

// Removes what replacements that were killed have left. Only while nobody
// replaces the file.
void removeUnfinished(const QString &path);

// Moves a file that makes no sense to a free name that ends in ".damaged" or
// ".damaged-2" and so on; the new path.
Result<QString> setAside(const QString &path);

// Returns when the medium has what was written to the open file or folder; 0
// or the errno. A file system that cannot tell is not an error.
int synced(int descriptor);
int synced(const QString &path);

// Why writing has failed, in words for the user.
QString writeReason(int error);

} // namespace velbrix
