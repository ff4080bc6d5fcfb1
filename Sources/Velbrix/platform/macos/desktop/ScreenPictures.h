#pragma once

#include <QColor>
#include <QJsonObject>
#include <QMap>
#include <QString>

#include <optional>

namespace velbrix {

// The desktop picture of one screen. Options that the system did not name
// stay unnamed, so that it takes its own defaults again.
struct ScreenPicture {
    QString path;
    std::optional<int> scaling; // the system's number
    std::optional<bool> clips;
    std::optional<QColor> fill;

    bool operator==(const ScreenPicture &) const = default;
};

// By display.
using ScreenPictures = QMap<quint32, ScreenPicture>;

QJsonObject toJson(const ScreenPictures &pictures);
// Leaves out what it cannot read.
ScreenPictures screenPictures(const QJsonObject &json);

// A display that came later gets the picture of another; empty if there is none.
std::optional<ScreenPicture> pictureFor(const ScreenPictures &pictures, quint32 display);

} // namespace velbrix
