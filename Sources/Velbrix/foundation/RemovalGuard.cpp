#include "foundation/RemovalGuard.h"

#include "foundation/AtomicFile.h"
#include "foundation/FolderHandle.h"
#include "foundation/Paths.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Where no user's data is. Absent ones do no harm.
QList<QByteArray> systemFolders()
{
    return {"/bin",    "/boot",  "/dev",         "/etc",          "/lib",        "/lib32", "/lib64",
            "/libx32", "/proc",  "/private/etc", "/sbin",         "/snap",       "/sys",   "/System",
            "/usr",    "/cores", "/Network",     "/var/lib/dpkg", "/run/systemd"};
}

std::optional<FileIdentity> identity(const QByteArray &path)
{
    struct stat facts{};
    if (path.isEmpty() || ::stat(path.constData(), &facts) != 0)
        return std::nullopt;
    return FileIdentity::of(facts);
}

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

QList<QByteArray> protectedHostPaths()
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
        const QByteArray canonical = canonicalPath(place);
        if (!canonical.isEmpty() && !found.contains(canonical))
            found.append(canonical);
    }
    return found;
}

RemovalGuard::RemovalGuard(RemovalRules rules) : _rules(std::move(rules))
{
    _sealed = _rules.sealedPaths + systemFolders();
    _paths = _rules.protectedPaths + _sealed;
    for (const QByteArray &place : std::as_const(_paths)) {
        if (const auto found = identity(place))
            _identities.insert(*found);
        for (QByteArray above = place; above != "/";) {
            above = splitPath(above).first;
            if (const auto found = identity(above))
                _containing.insert(*found);
        }
    }
    for (const QByteArray &place : std::as_const(_sealed)) {
        if (const auto found = identity(place))
            _sealedIdentities.insert(*found);
    }
    for (const QByteArray &socket : _rules.boundSockets.value_or(QSet<QByteArray>())) {
        if (!socket.startsWith('/'))
            _boundNames.insert(socket.mid(socket.lastIndexOf('/') + 1));
        else if (const auto found = identity(socket))
            _boundIdentities.insert(*found);
    }
}

QString RemovalGuard::rootObstacle(const QByteArray &canonicalPath, const struct stat &facts) const
{
    const QString refusal = u"是受保护的位置"_s;
    if (canonicalPath == "/" || _paths.contains(canonicalPath) ||
        _identities.contains(FileIdentity::of(facts)))
        return refusal;
    for (QByteArray above = splitPath(canonicalPath).first;; above = splitPath(above).first) {
        const auto found = identity(above);
        if (_sealed.contains(above) || (found && _sealedIdentities.contains(*found)))
            return refusal;
        if (above == "/")
            return {};
    }
}

QString RemovalGuard::entryObstacle(const QByteArray &path, const struct stat &facts) const
{
    const FileIdentity what = FileIdentity::of(facts);
    if (_paths.contains(path) || _identities.contains(what))
        return u"是受保护的位置"_s;
    if (_containing.contains(what) ||
        std::ranges::any_of(_paths, [&](const QByteArray &place) { return isInside(place, path); }))
        return u"里面有受保护的位置"_s;
    if (S_ISSOCK(facts.st_mode) && isBound(path, facts))
        return u"套接字正在使用"_s;
    return {};
}

bool RemovalGuard::isBound(const QByteArray &path, const struct stat &facts) const
{
    return !_rules.boundSockets || _rules.boundSockets->contains(path) ||
           _boundIdentities.contains(FileIdentity::of(facts)) ||
           _boundNames.contains(path.mid(path.lastIndexOf('/') + 1));
}

bool RemovalGuard::isOthers(const struct stat &facts) const
{
    return hasMinimumAge() && facts.st_uid != ::geteuid();
}

bool RemovalGuard::isYoung(const struct stat &facts) const
{
    const qint64 touched = std::max<qint64>(facts.st_mtime, facts.st_ctime);
    return _rules.minimumAge && _rules.now - touched < _rules.minimumAge->count();
}

QString removalReason(int error)
{
    switch (error) {
    case EPERM:
        return u"系统不允许删除（已锁定或属于其他用户）"_s;
    case EBUSY:
    case ETXTBSY:
        return u"正在使用"_s;
    case ENOTEMPTY:
    case EEXIST:
        return u"删除时又写入了新文件"_s;
    case ELOOP:
    case ENOTDIR:
    case EISDIR:
        return u"删除时被换成了别的东西"_s;
    case ENOENT:
        return u"已经不在了"_s;
    default:
        return writeReason(error);
    }
}

} // namespace velbrix
