#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace velbrix {

struct FlatpakApplication {
    QString id;
    QString name;
    QString version;
    std::optional<qint64> size;
    bool isUsers = false; // else of the whole system

    bool operator==(const FlatpakApplication &) const = default;
};

// The lines of `flatpak list --app --columns=application,name,version,size,installation`.
// Extra installations of an administrator are left out.
QList<FlatpakApplication> flatpakApplications(const QByteArray &output);

// Version by name, from `snap list`.
QHash<QString, QString> snapVersions(const QByteArray &output);

} // namespace velbrix
