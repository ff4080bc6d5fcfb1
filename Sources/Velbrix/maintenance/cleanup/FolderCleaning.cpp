#include "maintenance/cleanup/FolderCleaning.h"

#include "foundation/Paths.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// What keeps a place the user wants kept is no news, nor that the folders
// around it are still there.
void dropExpected(RemovalReport &report, const QList<QByteArray> &kept)
{
    report.problemCount -= report.problems.removeIf([&](const RemovalProblem &problem) {
        return std::ranges::any_of(kept,
                                   [&](const QByteArray &place) { return isWithin(place, problem.path); });
    });
}

} // namespace

QThreadPool &cleanupThreads()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

void Cleaned::add(const Cleaned &other)
{
    count += other.count;
    ownBytes += other.ownBytes;
    removal.add(other.removal);
}

bool isCleanable(const QByteArray &name)
{
    return !name.startsWith('.') || name == ".DS_Store";
}

Cleaned clean(const FolderCleaning &cleaning, const Cancellation &cancellation)
{
    Cleaned cleaned;
    for (const QString &folder : cleaning.folders) {
        const QByteArray native = QFile::encodeName(folder);
        const RemovalRoot root(native, cleaning.rules);
        if (cleaning.withoutLinks && root.canonicalPath() != native)
            continue;
        if (!root.isOpen() && QFileInfo::exists(folder))
            cleaned.removal.add({0, 0, {{native, RemovalRoot::obstacle(native, cleaning.rules)}}, 1});
        for (const QByteArray &name : root.entries()) {
            const QByteArray path = root.canonicalPath() + '/' + name;
            if (!isCleanable(name) || cleaning.kept.contains(path))
                continue;
            if (cancellation.isCancelled())
                return cleaned;
            cleaned.ownBytes += root.ownSize(name);
            RemovalReport removal = root.remove(name, cancellation);
            dropExpected(removal, cleaning.kept);
            cleaned.removal.add(removal);
            ++cleaned.count;
        }
    }
    return cleaned;
}

CleanableEntries cleanableEntries(const QStringList &folders, const RemovalRules &rules)
{
    CleanableEntries found;
    for (const QString &folder : folders) {
        const QByteArray native = QFile::encodeName(folder);
        // A missing folder is an empty one.
        if (!QFileInfo::exists(folder))
            continue;
        found.problem = RemovalRoot::obstacle(native, rules);
        const RemovalRoot root(native, rules);
        for (const QByteArray &name : root.entries()) {
            if (isCleanable(name))
                found.paths.append(root.canonicalPath() + '/' + name);
        }
    }
    return found;
}

} // namespace velbrix
