#pragma once

#include <QColor>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
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

// Nothing for a display that is not among them: what it shows is the user's.
std::optional<ScreenPicture> pictureFor(const ScreenPictures &pictures, quint32 display);

// Puts the other file in the place of those that are not there any more, and
// answers these.
QStringList replaceGone(ScreenPictures &pictures, const QString &other,
                        const std::function<bool(const QString &path)> &isThere);

} // namespace velbrix
