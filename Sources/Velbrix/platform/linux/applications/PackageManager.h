#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

// The programs that manage packages, and those through which they run. Absolute
// paths; empty for what the host has not.
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

struct PackageFacts {
    QString version;
    std::optional<qint64> size; // bytes
    bool isEssential = false;   // the system does not work without it

    bool operator==(const PackageFacts &) const = default;
};

// How one package manager is asked and what its answers mean. A command is a
// program and its arguments, which file paths or packages follow.
struct PackageManager {
    QString name; // for the user
    QStringList ownerQuery;
    QStringList factsQuery;
    QStringList simulation; // changes nothing
    QStringList removal;    // as root

    // The package that owns each path; some answer for more than was asked.
    QHash<QString, QString> (*owners)(const QByteArray &output) = nullptr;
    QHash<QString, PackageFacts> (*facts)(const QByteArray &output) = nullptr;
    QStringList (*removed)(const QByteArray &output) = nullptr;
};

// The one that rules this host; none on a host we know nothing about.
std::optional<PackageManager> systemPackageManager(const PackagePrograms &programs);

// Whether it can stand in a command line: no option, no pattern.
bool isPackageName(const QString &name);

// "12.3 MB", "4.5 GiB", "512 bytes" as package managers print them in English;
// the space may be one that does not break.
std::optional<qint64> bytesOf(const QString &text);

struct FlatpakApplication {
    QString id;
    QString name;
    QString version;
    std::optional<qint64> size;
    bool isUsers = false; // else of the whole system

    bool operator==(const FlatpakApplication &) const = default;
};

// The lines of `flatpak list --app --columns=application,name,version,size,installation`,
// without the extra installations of an administrator.
QList<FlatpakApplication> flatpakApplications(const QByteArray &output);

// Version by name, from `snap list`.
QHash<QString, QString> snapVersions(const QByteArray &output);

} // namespace velbrix
