// Cleaning the selected items, one after another.
#include "maintenance/cleanup/SystemCleaner.h"

#include "maintenance/cleanup/CleanupThreads.h"
#include "maintenance/cleanup/FolderCleaning.h"
#include "platform/AdminShell.h"
#include "platform/TrashCan.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto afterEachItem = 100ms;

QList<QByteArray> canonical(const QStringList &folders)
{
    QList<QByteArray> paths;
    for (const QString &folder : folders) {
        const QString path = QFileInfo(folder).canonicalFilePath();
        if (!path.isEmpty())
            paths.append(QFile::encodeName(path));
    }
    return paths;
}

// What stays is told to the gate by its real name, for a link may lead into
// what is emptied. What is emptied itself cannot be kept.
FolderCleaned run(FolderCleaning cleaning, const QStringList &foldersOfOthers,
                  const QList<QByteArray> &leftOut, const std::shared_ptr<std::atomic_bool> &cancelled)
{
    const QList<QByteArray> emptied = canonical(cleaning.folders);
    for (const QByteArray &place : canonical(foldersOfOthers) + leftOut) {
        if (std::ranges::any_of(emptied,
                                [&](const QByteArray &folder) { return place.startsWith(folder + '/'); }))
            cleaning.kept.append(place);
    }
    cleaning.rules.protectedPlaces += cleaning.kept;
    return clean(cleaning, *cancelled);
}

} // namespace

QThreadPool &cleanupThreads()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

struct SystemCleaner::Act {
    qint64 count = 0;
    qint64 bytes = 0;
    RemovalReport removal;
};

void SystemCleaner::clean(const QStringList &ids)
{
    if (_isCleaning)
        return;
    _work.cancel();
    refreshBusyItems();
    if (const QString reason = obstacle(ids); !reason.isEmpty()) {
        CleanupReport report;
        report.skipped = itemsToSkip(ids);
        report.outcome = CleanupPhase::failed(reason);
        _report = report;
        _phase = report.outcome;
        return;
    }
    runClean(ids);
}

QCoro::Task<> SystemCleaner::runClean(QStringList ids)
{
    const QPointer self(this);
    _isCleaning = true;
    const Cancellation work;
    _work = work;
    _stopRemoval = std::make_shared<std::atomic_bool>(false);
    const QList<CleanupItem> items = itemsToClean(ids);
    QSet<QString> cleaned;
    for (const CleanupItem &item : items)
        cleaned.insert(item.id);
    CleanupReport report;
    report.skipped = itemsToSkip(ids);
    Act total;
    for (qsizetype i = 0; i < items.size() && !work.isCancelled(); ++i) {
        _phase = CleanupPhase::cleaning(items[i].name);
        _progress = static_cast<double>(i) / static_cast<double>(items.size());
        const Act act = co_await cleanItem(items[i], cleaned);
        if (!self)
            co_return;
        total.count += act.count;
        total.bytes += act.bytes;
        total.removal.add(act.removal);
        co_await Pause(_clock, afterEachItem);
        if (!self)
            co_return;
    }
    report.wasCancelled = work.isCancelled();
    report.removal = total.removal;
    report.outcome = CleanupPhase::done(total.count, total.bytes);
    _isCleaning = false;
    _report = report;
    _progress = 1.0;
    _phase = report.outcome;
    calculate();
    for (const QString &id : QStringList(_openings.keys())) {
        close(id);
        open(id);
    }
}

QCoro::Task<SystemCleaner::Act> SystemCleaner::cleanItem(CleanupItem item, QSet<QString> cleaned)
{
    const Cancellation work = _work;
    const CleanupTarget target = this->target(item);
    if (item.id == trashItemId) {
        const auto emptied = co_await _hosts.trash.empty(removalRules(item.id), work);
        Act act{1, 0, {}};
        if (emptied)
            act.removal = *emptied;
        else
            act.removal.add({0, 0, {{QFile::encodeName(item.name), emptied.error().message}}, 1});
        co_return act;
    }
    if (!target.command) {
        const Act act = co_await emptyFolders(item.id, cleaned);
        co_return act;
    }
    if (target.requiresAdmin) {
        co_await _hosts.admin.run(*target.command, work);
    } else {
        ProcessRequest request;
        request.program = u"/bin/bash"_s;
        request.arguments = {u"-c"_s, *target.command};
        request.cancellation = work;
        co_await _processes.run(request);
    }
    // However it ended: the commands always exit well.
    const Act one{1, 0, {}};
    co_return one;
}

QCoro::Task<SystemCleaner::Act> SystemCleaner::emptyFolders(QString id, QSet<QString> cleaned)
{
    FolderCleaning cleaning;
    cleaning.folders = emptiedFolders(id);
    cleaning.rules = removalRules(id);
    const CleanupRule *known = rule(id);
    cleaning.withoutLinks = known && known->target.path && isPattern(*known->target.path);
    // Also those left out of other items: one may lie inside another.
    auto emptying = QtConcurrent::run(&cleanupThreads(), run, cleaning, foldersOfOthers(id, cleaned),
                                      _leftOut.all(), _stopRemoval);
    const FolderCleaned done = co_await emptying;
    const Act act{done.count, done.ownBytes, done.removal};
    co_return act;
}

} // namespace velbrix
