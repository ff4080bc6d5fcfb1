#pragma once

#include "foundation/Result.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>

#include <optional>

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

// Where the user's trash is.
class TrashPlaces {
public:
    // The mount table is given so that tests show volumes of their own.
    explicit TrashPlaces(QByteArray mountTable = "/proc/self/mountinfo") : _mountTable(std::move(mountTable))
    {
    }

    static QByteArray home();
    // The home trash and those of this user on other volumes, there or not.
    // Asks nothing of any volume.
    QList<TrashFolder> all() const;
    // The one that serves the canonical folder; made when it is missing.
    static Result<TrashFolder> serving(const QByteArray &folder);
    // The trash whose files/ is the canonical folder; none when it is no trash.
    static std::optional<TrashFolder> around(const QByteArray &folder);

private:
    QByteArray _mountTable;
};

// The places at which disks are mounted that may have a trash of their own:
// neither made up by the kernel nor on the network.
QList<QByteArray> trashVolumes(const QByteArray &mountTable);

} // namespace velbrix
