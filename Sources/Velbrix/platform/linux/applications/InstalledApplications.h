#pragma once

#include "platform/linux/applications/AppImages.h"
#include "platform/linux/applications/LauncherScan.h"
#include "platform/linux/applications/PackageManager.h"

namespace velbrix {

// What was found on the host, from which the list of applications follows.
struct HostFindings {
    QList<Launcher> launchers;
    QList<AppImage> images;
    QString manager;                // of the system; empty when there is none or it did not answer
    QHash<QString, QString> owners; // package by the launcher's path
    QHash<QString, PackageFacts> facts;
    QList<FlatpakApplication> flatpaks;
    QHash<QString, QString> snaps;
};

// What the menu shows is listed, but for what can be removed neither through a
// manager nor as a file; an entry of the system that no package manager owns is
// listed only when the user may delete its file. On the main thread, for the
// icons.
QList<InstalledApplication> installedApplications(const ApplicationPlaces &places,
                                                  const HostFindings &findings);

} // namespace velbrix
