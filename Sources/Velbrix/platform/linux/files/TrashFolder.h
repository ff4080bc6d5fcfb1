#pragma once

#include "foundation/Result.h"

#include <QByteArray>
#include <QDateTime>

namespace velbrix {

// One trash folder (freedesktop.org Trash 1.0): what was thrown away in files/,
// where each came from in info/. Paths are native bytes, absolute. Everything
// here blocks.
struct TrashFolder {
    QByteArray path;
    QByteArray top; // of the volume it serves; empty for the home trash

    // The item itself, never what it links to; where it lies afterwards. The
    // item's folder is canonical and on the trash's volume.
    Result<QByteArray> take(const QByteArray &item, const QDateTime &when) const;
    bool operator==(const TrashFolder &) const = default;
};

// What info/ says of one item.
QByteArray trashInfo(const QByteArray &path, const QDateTime &when);
// The name of an item's n-th attempt, short enough for a name of its info file.
QByteArray trashedName(const QByteArray &name, int attempt);

} // namespace velbrix
