#include "maintenance/uninstall/DataSearch.h"

#include "foundation/FolderHandle.h"
#include "foundation/Paths.h"
#include "foundation/Removal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

namespace fs = std::filesystem;

struct Entry {
    QString name;
    bool isLink = false;
};

fs::path pathOf(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

// Whether both are names of one entry: where the composition of letters makes
// no difference, a name may be asked for in another one than it has.
bool areOne(const fs::path &one, const fs::path &other)
{
    struct stat facts{}, others{};
    return ::lstat(one.c_str(), &facts) == 0 && ::lstat(other.c_str(), &others) == 0 &&
           FileIdentity::of(facts) == FileIdentity::of(others);
}

QList<Entry> entriesOf(const QString &folder)
{
    QList<Entry> entries;
    std::error_code problem;
    fs::directory_iterator each(pathOf(folder), problem);
    for (; !problem && each != fs::directory_iterator(); each.increment(problem)) {
        const QByteArray bytes = QByteArray::fromStdString(each->path().filename().native());
        const QString name = QFile::decodeName(bytes);
        std::error_code ignored;
        // Under a name that does not lead back to it the entry cannot be asked for.
        if (QFile::encodeName(name) == bytes || areOne(each->path(), pathOf(folder + u'/' + name)))
            entries.append({name, each->is_symlink(ignored)});
    }
    std::ranges::sort(entries, {}, &Entry::name);
    return entries;
}

// The links of the folders above are resolved, the last name is not.
QString withoutLinksAbove(const QString &path)
{
    const QFileInfo info(QDir::cleanPath(path));
    const QString folder = canonicalPath(info.path());
    if (info.fileName().isEmpty() || folder.isEmpty())
        return info.filePath();
    return (folder == u'/' ? QString() : folder) + u'/' + info.fileName();
}

bool leadsOutOf(const QString &folder, const QString &link)
{
    std::error_code problem;
    const fs::path target = fs::weakly_canonical(pathOf(link), problem);
    if (problem)
        return true;
    return !isWithin(QFile::decodeName(QByteArray::fromStdString(target.native())), canonicalPath(folder));
}

// Development environments keep what was ever edited where others keep what can
// be made again.
bool holdsHistory(const QString &cache)
{
    const QDir folder(cache);
    const QStringList parts = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    return parts.contains(u"LocalHistory"_s) || std::ranges::any_of(parts, [&](const QString &part) {
               return QFileInfo(folder.filePath(part + u"/LocalHistory"_s)).isDir();
           });
}

} // namespace

bool isThere(const QString &path)
{
    std::error_code problem;
    const fs::file_status status = fs::symlink_status(pathOf(path), problem);
    return fs::exists(status);
}

QThreadPool &uninstallWorkers()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

ProtectedPaths::ProtectedPaths(const QStringList &places)
{
    QStringList all = places;
    for (const QByteArray &place : protectedHostPaths())
        all.append(QFile::decodeName(place));
    for (const QString &place : std::as_const(all)) {
        for (QString path : {QDir::cleanPath(place), withoutLinksAbove(place), canonicalPath(place)}) {
            for (; path.startsWith(u'/') && !_paths.contains(path); path = QFileInfo(path).path())
                _paths.insert(path);
        }
    }
}

bool ProtectedPaths::hold(const QString &path) const
{
    return _paths.contains(QDir::cleanPath(path)) || _paths.contains(withoutLinksAbove(path));
}

QList<ReviewItem> findData(const DataSearch &search)
{
    const DataMatcher matcher(search.subject);
    const ProtectedPaths places(search.protectedPaths);
    QList<ReviewItem> items;
    QSet<QString> seen;
    for (const LibraryFolder &folder : search.folders) {
        const QString parent = QDir::cleanPath(folder.path);
        const QString canonicalParent = canonicalPath(parent);
        for (const Entry &entry : entriesOf(parent)) {
            const QString path = parent + u'/' + entry.name;
            const bool leadsElsewhere = entry.isLink && leadsOutOf(parent, path);
            const auto match = matcher.match(entry.name, leadsElsewhere);
            if (!match || seen.contains(path) || places.holdCanonical(path) ||
                places.holdCanonical(canonicalParent + u'/' + entry.name))
                continue;
            seen.insert(path);
            QString caution = match->caution;
            if (caution.isEmpty() && folder.kind == LibraryKind::caches && holdsHistory(path))
                caution = u"里面有本地历史记录，不只是缓存"_s;
            items.append({.path = path,
                          .reason = match->reason,
                          .why = match->why,
                          .caution = caution,
                          .library = folder.kind,
                          .bytes = {},
                          .isTicked = caution.isEmpty(),
                          .isFixed = false});
        }
    }
    return items;
}

} // namespace velbrix
