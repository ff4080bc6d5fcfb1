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
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto afterEachItem = 100ms;

// What stays is told to the gate by its real name. An entry left out of one row
// may be the folder that another row empties.
void keep(FolderCleaning &cleaning, const QStringList &folders)
{
    for (const QString &folder : std::as_const(cleaning.folders))
        cleaning.kept.removeAll(QFile::encodeName(QFileInfo(folder).canonicalFilePath()));
    for (const QString &folder : folders) {
        const QString canonical = QFileInfo(folder).canonicalFilePath();
        if (!canonical.isEmpty())
            cleaning.kept.append(QFile::encodeName(canonical));
    }
    cleaning.rules.protectedPlaces += cleaning.kept;
}

FolderCleaned run(FolderCleaning cleaning, const QStringList &kept,
                  const std::shared_ptr<std::atomic_bool> &cancelled)
{
    keep(cleaning, kept);
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
    CleanupReport report;
    if (itemsToClean(ids).isEmpty()) {
        report.skipped = itemsToSkip(ids);
        report.outcome = CleanupPhase::failed(
            report.skipped.isEmpty() ? u"没有选择任何清理项"_s : u"所选项目的应用正在运行，没有清理"_s);
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
        const auto emptied = co_await _hosts.trash.empty(removalRules(item.id));
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
    cleaning.leftOut = _leftOut.value(id);
    // Another row's entry may lie deeper in here.
    for (const auto &[other, entries] : std::as_const(_leftOut).asKeyValueRange()) {
        if (other != id)
            cleaning.kept += entries.values();
    }
    auto emptying =
        QtConcurrent::run(&cleanupThreads(), run, cleaning, keptFolders(id, cleaned), _stopRemoval);
    const FolderCleaned done = co_await emptying;
    const Act act{done.count, done.ownBytes, done.removal};
    co_return act;
}

} // namespace velbrix
