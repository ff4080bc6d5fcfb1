#include "maintenance/uninstall/DataSearch.h"

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

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

namespace fs = std::filesystem;

struct Entry {
    QString name;
    bool isLink = false;
};

QList<Entry> entriesOf(const QString &folder)
{
    QList<Entry> entries;
    std::error_code problem;
    fs::directory_iterator each(QFile::encodeName(folder).toStdString(), problem);
    for (; !problem && each != fs::directory_iterator(); each.increment(problem)) {
        const QByteArray bytes = QByteArray::fromStdString(each->path().filename().native());
        const QString name = QFile::decodeName(bytes);
        std::error_code ignored;
        // Under a name that does not lead back to it the entry cannot be asked for.
        if (QFile::encodeName(name) == bytes)
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
    const fs::path target = fs::weakly_canonical(QFile::encodeName(link).toStdString(), problem);
    if (problem)
        return true;
    return !isWithin(QFile::decodeName(QByteArray::fromStdString(target.native())), canonicalPath(folder));
}

} // namespace

bool isThere(const QString &path)
{
    std::error_code problem;
    const fs::file_status status = fs::symlink_status(QFile::encodeName(path).toStdString(), problem);
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
            items.append({.path = path,
                          .reason = match->reason,
                          .why = match->why,
                          .caution = match->caution,
                          .library = folder.kind,
                          .bytes = {},
                          .isTicked = match->caution.isEmpty(),
                          .isFixed = false});
        }
    }
    return items;
}

} // namespace velbrix
