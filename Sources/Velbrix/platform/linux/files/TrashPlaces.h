#pragma once

#include "platform/linux/files/TrashFolder.h"

#include <QList>

#include <optional>
#include <utility>

namespace velbrix {

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
