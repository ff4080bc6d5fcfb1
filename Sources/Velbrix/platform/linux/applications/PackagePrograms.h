#pragma once

#include <QString>

namespace velbrix {

// Absolute paths; empty for what the host has not.
struct PackagePrograms {
    QString dpkgQuery;
    QString aptGet;
    QString rpm;
    QString dnf;
    QString zypper;
    QString pacman;
    QString flatpak;
    QString snap;
    QString pkexec;
    QString env;

    // In the system's own folders only: some of them run as root.
    static PackagePrograms ofThisHost();
};

} // namespace velbrix
