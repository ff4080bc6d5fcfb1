#pragma once

#include "platform/linux/applications/PackagePrograms.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

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

} // namespace velbrix
