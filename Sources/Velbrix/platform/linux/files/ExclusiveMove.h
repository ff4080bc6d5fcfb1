#pragma once

#include <QByteArray>

#include <optional>

namespace velbrix {

// Moves a file, link or folder within one volume and never replaces what is
// there. 0 or the errno: EEXIST, EXDEV … Native absolute paths.
int moveExclusively(const QByteArray &from, const QByteArray &to);

// Which volume a path lies on: its device and mount. A rename works only within
// both. The entry itself is asked; nothing with errno when there is none.
struct Volume {
    unsigned deviceMajor = 0;
    unsigned deviceMinor = 0;
    unsigned long long mount = 0;

    bool operator==(const Volume &) const = default;
};
std::optional<Volume> volumeOf(const QByteArray &path);
// Of the path or else of the nearest folder above it that is there.
std::optional<Volume> volumeAt(QByteArray path);

} // namespace velbrix
