#pragma once

#include "platform/linux/applications/ApplicationPlaces.h"
#include "platform/linux/applications/LauncherScan.h"

#include <QList>

namespace velbrix {

// An AppImage with what was made for it.
struct AppImage {
    QString path; // a link is not followed
    QString name;
    QString version;    // from the launcher or the file's name
    QString identifier; // of its launcher; empty without one
    QList<ApplicationCompanion> companions;
    QString iconName; // of its launcher, as it stands there
    QString iconFile;
};

// By name or by the mark in the file.
bool isAppImage(const QString &path);

// "Krita-5.2.2-x86_64.AppImage": name, version, machine.
struct AppImageName {
    QString name;
    QString version;

    bool operator==(const AppImageName &) const = default;
};
AppImageName appImageName(const QString &fileName);

// Those in the folders where AppImages are kept. Takes the launchers that
// start one of them off the list: such a launcher is no application of its
// own; says of the others whether they start an AppImage. Blocking.
QList<AppImage> takeAppImages(const ApplicationPlaces &places, QList<Launcher> &launchers);

} // namespace velbrix
