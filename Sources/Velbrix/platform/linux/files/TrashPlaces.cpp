#include "platform/linux/files/TrashPlaces.h"
#include "foundation/Paths.h"
#include "platform/linux/files/ExclusiveMove.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QByteArray ownName()
{
    return ".Trash-" + QByteArray::number(::getuid());
}

QByteArray joined(const QByteArray &folder, const QByteArray &name)
{
    return folder == "/" ? '/' + name : folder + '/' + name;
}

// In a mount table blanks and the like stand as three octal digits.
QByteArray unescaped(const QByteArray &text)
{
    QByteArray plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        bool isNumber = false;
        const int code = text[i] == '\\' ? text.mid(i + 1, 3).toInt(&isNumber, 8) : 0;
        if (isNumber)
            i += 3;
        plain += isNumber ? static_cast<char>(code) : text[i];
    }
    return plain;
}

bool isOwnFolder(const QByteArray &path)
{
    struct stat facts{};
    return ::lstat(path.constData(), &facts) == 0 && S_ISDIR(facts.st_mode) && facts.st_uid == ::getuid();
}

// The administrator's folder for everybody's trash counts only when nobody can
// take away another's.
bool isSharedTrash(const QByteArray &path)
{
    struct stat facts{};
    return ::lstat(path.constData(), &facts) == 0 && S_ISDIR(facts.st_mode) && (facts.st_mode & S_ISVTX);
}

bool makeOwnFolder(const QByteArray &path)
{
    return (::mkdir(path.constData(), 0700) == 0 || errno == EEXIST) && isOwnFolder(path);
}

bool makeTrash(const QByteArray &path)
{
    return makeOwnFolder(path) && makeOwnFolder(path + "/files") && makeOwnFolder(path + "/info");
}

Result<TrashFolder> homeTrash()
{
    const QByteArray path = TrashPlaces::home();
    // A link instead of the folder is the user's own arrangement.
    const QByteArray there = canonicalPath(path);
    if (there.isEmpty() && !QDir().mkpath(QFile::decodeName(splitPath(path).first)))
        return failure(u"不能创建废纸篓"_s);
    const QByteArray folder = there.isEmpty() ? path : there;
    if (!makeTrash(folder))
        return failure(u"不能使用废纸篓：%1"_s.arg(QFile::decodeName(folder)));
    return TrashFolder{canonicalPath(folder), {}};
}

QByteArray topOf(const QByteArray &folder, const Volume &volume)
{
    QByteArray top = folder;
    while (top != "/" && volumeOf(splitPath(top).first) == volume)
        top = splitPath(top).first;
    return top;
}

} // namespace

QList<QByteArray> trashVolumes(const QByteArray &mountTable)
{
    // Those whose device is made up and which are disks all the same.
    static const QSet<QByteArray> disks{"btrfs", "zfs", "bcachefs", "tmpfs", "overlay"};
    QList<QByteArray> volumes;
    for (const QByteArray &line : mountTable.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype separator = fields.indexOf("-");
        if (separator < 6 || fields.size() <= separator + 1)
            continue;
        const bool isMadeUp = fields[2].startsWith("0:");
        const bool isReadOnly = fields[5].split(',').contains("ro");
        const QByteArray place = unescaped(fields[4]);
        if (!isReadOnly && (!isMadeUp || disks.contains(fields[separator + 1])) && !volumes.contains(place))
            volumes.append(place);
    }
    return volumes;
}

QByteArray TrashPlaces::home()
{
    QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (!QDir::isAbsolutePath(data))
        data = QDir::homePath() + u"/.local/share"_s;
    return QFile::encodeName(QDir::cleanPath(data)) + "/Trash";
}

QList<TrashFolder> TrashPlaces::all() const
{
    QList<TrashFolder> folders{{home(), {}}};
    QFile table(QFile::decodeName(_mountTable));
    if (!table.open(QIODevice::ReadOnly))
        return folders;
    for (const QByteArray &top : trashVolumes(table.readAll())) {
        folders.append({joined(top, ".Trash/" + QByteArray::number(::getuid())), top});
        folders.append({joined(top, ownName()), top});
    }
    return folders;
}

Result<TrashFolder> TrashPlaces::serving(const QByteArray &folder)
{
    const auto volume = volumeOf(folder);
    if (!volume)
        return failure(u"文件夹不存在"_s);
    if (volumeAt(home()) == volume)
        return homeTrash();
    const QByteArray top = topOf(folder, *volume);
    const QByteArray shared = joined(top, ".Trash");
    const QByteArray inShared = shared + '/' + QByteArray::number(::getuid());
    if (isSharedTrash(shared) && makeTrash(inShared))
        return TrashFolder{inShared, top};
    const QByteArray own = joined(top, ownName());
    if (makeTrash(own))
        return TrashFolder{own, top};
    return failure(u"所在的磁盘没有可用的废纸篓"_s);
}

std::optional<TrashFolder> TrashPlaces::around(const QByteArray &folder)
{
    const auto [trash, name] = splitPath(folder);
    if (name != "files" || !isOwnFolder(trash))
        return std::nullopt;
    if (trash == canonicalPath(home()))
        return TrashFolder{trash, {}};
    auto [top, last] = splitPath(trash);
    if (last != ownName()) {
        const auto [above, shared] = splitPath(top);
        if (last != QByteArray::number(::getuid()) || shared != ".Trash" || !isSharedTrash(top))
            return std::nullopt;
        top = above;
    }
    const auto volume = volumeOf(trash);
    return volume && topOf(top, *volume) == top ? std::optional(TrashFolder{trash, top}) : std::nullopt;
}

} // namespace velbrix
