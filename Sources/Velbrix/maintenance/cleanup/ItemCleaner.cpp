#include "maintenance/cleanup/ItemCleaner.h"

#include "foundation/Paths.h"
#include "platform/AdminShell.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

bool isCleanable(const QByteArray &name)
{
    return !name.startsWith('.') || name == ".DS_Store";
}

QList<QByteArray> canonical(const QStringList &folders)
{
    QList<QByteArray> paths;
    for (const QString &folder : folders) {
        const QString path = canonicalPath(folder);
        if (!path.isEmpty())
            paths.append(QFile::encodeName(path));
    }
    return paths;
}

// What stays inside these folders, by its real name, for a link may lead into
// them. What is emptied itself cannot be kept.
QList<QByteArray> keptPlaces(const QStringList &folders, const CleanupBounds &bounds)
{
    const QList<QByteArray> emptied = canonical(folders);
    QList<QByteArray> kept;
    for (const QByteArray &place : canonical(bounds.otherFolders) + bounds.excluded) {
        if (std::ranges::any_of(emptied, [&](const QByteArray &folder) { return isInside(place, folder); }))
            kept.append(place);
    }
    return kept;
}

// What keeps a place the user wants kept is no news, nor that the folders
// around it are still there.
void dropExpected(RemovalReport &report, const QList<QByteArray> &kept)
{
    report.problemCount -= report.problems.removeIf([&](const RemovalProblem &problem) {
        return std::ranges::any_of(kept,
                                   [&](const QByteArray &place) { return isWithin(place, problem.path); });
    });
}

// Blocking; for a thread of its own. With a pattern, a folder that a link leads
// to stays as it is: others may have laid it.
Cleaned emptyFolders(const QStringList &folders, bool isPattern, CleanupBounds bounds,
                     const Cancellation &work)
{
    const QList<QByteArray> kept = keptPlaces(folders, bounds);
    bounds.rules.protectedPaths += kept;
    Cleaned cleaned;
    for (const QString &folder : folders) {
        const QByteArray native = QFile::encodeName(folder);
        const RemovalRoot root(native, bounds.rules);
        if (isPattern && root.canonicalPath() != native)
            continue;
        if (!root.isOpen() && QFileInfo::exists(folder))
            cleaned.removal.add({0, 0, {{native, RemovalRoot::obstacle(native, bounds.rules)}}, 1});
        for (const QByteArray &name : root.entries()) {
            const QByteArray path = root.canonicalPath() + '/' + name;
            if (!isCleanable(name) || kept.contains(path))
                continue;
            if (work.isCancelled())
                return cleaned;
            cleaned.ownBytes += root.ownSize(name);
            RemovalReport removal = root.remove(name, work);
            dropExpected(removal, kept);
            cleaned.removal.add(removal);
            ++cleaned.count;
        }
    }
    return cleaned;
}

} // namespace

QThreadPool &cleanupThreads()
{
    static auto *const pool = new QThreadPool;
    return *pool;
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

void Cleaned::add(const Cleaned &other)
{
    count += other.count;
    ownBytes += other.ownBytes;
    removal.add(other.removal);
}

QCoro::Task<Cleaned> ItemCleaner::clean(CleanupRule rule, CleanupBounds bounds, Cancellation work)
{
    if (rule.item.id == trashItemId)
        co_return co_await emptyTrash(rule.target.name, bounds.rules, work);
    if (rule.target.command) {
        co_await runCommand(rule.target, work);
        co_return Cleaned{.count = 1};
    }
    auto emptying = QtConcurrent::run(&cleanupThreads(), emptyFolders, emptiedFolders(rule), hasPattern(rule),
                                      bounds, work);
    co_return co_await emptying;
}

QCoro::Task<Cleaned> ItemCleaner::emptyTrash(QString name, RemovalRules rules, Cancellation work)
{
    const auto emptied = co_await _ports.trash.empty(rules, work);
    Cleaned cleaned = {.count = 1};
    if (emptied)
        cleaned.removal = *emptied;
    else
        cleaned.removal.add({0, 0, {{QFile::encodeName(name), emptied.error().message}}, 1});
    co_return cleaned;
}

QCoro::Task<> ItemCleaner::runCommand(CleanupTarget target, Cancellation work)
{
    const QString command = target.command.value_or(QString());
    if (target.requiresAdmin) {
        co_await _ports.admin.run(command, work);
        co_return;
    }
    ProcessRequest request;
    request.program = u"/bin/bash"_s;
    request.arguments = {u"-c"_s, command};
    request.cancellation = work;
    co_await _processes.run(request);
}

} // namespace velbrix
