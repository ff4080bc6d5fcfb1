#include "maintenance/cleanup/ItemCleaner.h"

#include "foundation/Paths.h"
#include "maintenance/cleanup/CleanupTable.h"
#include "platform/AdminShell.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QFile>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

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

// What stays is told to the gate by its real name, for a link may lead into
// what is emptied. What is emptied itself cannot be kept.
Cleaned run(FolderCleaning cleaning, const QStringList &foldersOfOthers, const QList<QByteArray> &leftOut,
            const Cancellation &work)
{
    const QList<QByteArray> emptied = canonical(cleaning.folders);
    for (const QByteArray &place : canonical(foldersOfOthers) + leftOut) {
        if (std::ranges::any_of(emptied, [&](const QByteArray &folder) { return isInside(place, folder); }))
            cleaning.kept.append(place);
    }
    cleaning.rules.protectedPlaces += cleaning.kept;
    return clean(cleaning, work);
}

} // namespace

QCoro::Task<Cleaned> ItemCleaner::clean(QString id, Bounds bounds, Cancellation work)
{
    const CleanupRule *known = _table.rule(id);
    const CleanupTarget target = known ? known->target : CleanupTarget();
    Cleaned cleaned = {.count = 1};
    if (id == trashItemId) {
        cleaned = co_await emptyTrash(target.name, work);
    } else if (!target.command) {
        cleaned = co_await emptyFolders(id, bounds, work);
    } else if (target.requiresAdmin) {
        co_await _hosts.admin.run(*target.command, work);
    } else {
        ProcessRequest request;
        request.program = u"/bin/bash"_s;
        request.arguments = {u"-c"_s, *target.command};
        request.cancellation = work;
        co_await _processes.run(request);
    }
    co_return cleaned;
}

QCoro::Task<Cleaned> ItemCleaner::emptyTrash(QString name, Cancellation work)
{
    const auto emptied = co_await _hosts.trash.empty(_table.removalRules(trashItemId), work);
    Cleaned cleaned = {.count = 1};
    if (emptied)
        cleaned.removal = *emptied;
    else
        cleaned.removal.add({0, 0, {{QFile::encodeName(name), emptied.error().message}}, 1});
    co_return cleaned;
}

QCoro::Task<Cleaned> ItemCleaner::emptyFolders(QString id, Bounds bounds, Cancellation work)
{
    auto emptying = QtConcurrent::run(&cleanupThreads(), run, _table.cleaning(id),
                                      _table.foldersOutside(bounds.items), bounds.leftOut, work);
    co_return co_await emptying;
}

} // namespace velbrix
