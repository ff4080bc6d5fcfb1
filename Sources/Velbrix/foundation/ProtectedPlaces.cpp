#include "foundation/FolderHandle.h"
#include "foundation/Removal.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QList<QString> homePlaces()
{
    const QString home = QDir::homePath();
    QList<QString> places{home, home + u"/Library"_s, home + u"/.ssh"_s, home + u"/.gnupg"_s};
    for (const auto kind : {QStandardPaths::DesktopLocation, QStandardPaths::DocumentsLocation,
                            QStandardPaths::DownloadLocation, QStandardPaths::PicturesLocation,
                            QStandardPaths::MusicLocation, QStandardPaths::MoviesLocation,
                            QStandardPaths::GenericDataLocation, QStandardPaths::GenericConfigLocation}) {
        places.append(QStandardPaths::standardLocations(kind).value(0));
    }
    return places;
}

} // namespace

QList<QByteArray> protectedHostPlaces()
{
    QList<QByteArray> places{"/", "/var/lib", "/private/var", "/var/db", "/usr/local"};
    const auto floor = FolderHandle::open("/").names();
    for (const QByteArray &name : floor.value_or(QList<QByteArray>())) {
        if (name != "tmp")
            places.append('/' + name);
    }
    for (const QString &place : homePlaces())
        places.append(QFile::encodeName(place));

    QList<QByteArray> found;
    for (const QByteArray &place : std::as_const(places)) {
        const QString canonical = QDir(QFile::decodeName(place)).canonicalPath();
        if (!canonical.isEmpty() && !found.contains(QFile::encodeName(canonical)))
            found.append(QFile::encodeName(canonical));
    }
    return found;
}

} // namespace velbrix
