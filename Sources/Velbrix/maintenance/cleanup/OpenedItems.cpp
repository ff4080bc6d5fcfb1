#include "maintenance/cleanup/OpenedItems.h"

#include "foundation/Clock.h"
#include "maintenance/cleanup/CleanupTable.h"
#include "platform/DiskUsage.h"

#include <QCoroFuture>
#include <QFile>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace std::chrono_literals;

namespace velbrix {
namespace {

// Every update passes on the whole list, which can be very long.
std::chrono::milliseconds betweenUpdates(qsizetype entries)
{
    return entries < 2000 ? 150ms : 1000ms;
}

QString shownName(const QByteArray &path, bool withFolder)
{
    const qsizetype slash = path.lastIndexOf('/');
    return QFile::decodeName(withFolder ? path : path.sliced(slash + 1));
}

void sortBySize(CleanupContents &contents)
{
    std::ranges::sort(contents.entries, [](const CleanupEntry &a, const CleanupEntry &b) {
        const qint64 sizeOfA = a.bytes.value_or(-1);
        const qint64 sizeOfB = b.bytes.value_or(-1);
        return sizeOfA != sizeOfB ? sizeOfA > sizeOfB : a.path < b.path;
    });
}

} // namespace

OpenedItems::OpenedItems(const CleanupTable &table, DiskUsage &usage, SettingsStore &settings, Clock &clock)
    : _table(table), _usage(usage), _clock(clock), _leftOut(settings)
{
    QStringList ids;
    for (const CleanupRule &rule : table.rules())
        ids.append(rule.item.id);
    _leftOut.load(ids);
}

OpenedItems::~OpenedItems()
{
    for (Cancellation &opening : _openings)
        opening.cancel();
}

bool OpenedItems::canOpen(const QString &id) const
{
    return id != trashItemId && !_table.emptiedFolders(id).isEmpty();
}

void OpenedItems::open(const QString &id)
{
    if (canOpen(id) && !_openings.contains(id))
        measure(id);
}

void OpenedItems::close(const QString &id)
{
    if (!_openings.contains(id))
        return;
    _openings.take(id).cancel();
    CleanupContentsById all = _contents;
    all.remove(id);
    _contents = all;
}

void OpenedItems::lookAgain()
{
    for (const QString &id : _openings.keys()) {
        close(id);
        open(id);
    }
}

QCoro::Task<> OpenedItems::measure(QString id)
{
    const QPointer self(this);
    const Cancellation wanted;
    _openings[id] = wanted;
    CleanupContents contents;
    contents.isMeasuring = true;
    publish(id, contents);

    const QStringList folders = _table.emptiedFolders(id);
    auto listing = QtConcurrent::run(&cleanupThreads(), cleanableEntries, folders, _table.removalRules(id));
    const CleanableEntries found = co_await listing;
    if (!self || wanted.isCancelled())
        co_return;
    _leftOut.dropMissing(id, found.paths);
    contents.problem = found.problem;
    for (const QByteArray &path : found.paths)
        contents.entries.append(
            {path, shownName(path, folders.size() > 1), {}, !_leftOut.contains(id, path)});
    publish(id, contents);

    // Answers come while the user closes items and ticks entries.
    QHash<qsizetype, qint64> fresh;
    auto shownAt = _clock.uptime();
    const auto takeFresh = [&] {
        CleanupContents current = _contents.value().value(id);
        for (auto answer = fresh.begin(); answer != fresh.end(); ++answer)
            current.entries[answer.key()].bytes = answer.value();
        fresh.clear();
        shownAt = _clock.uptime();
        return current;
    };
    const DiskUsage::Measured measured = [&](qsizetype index, qint64 bytes) {
        if (!self || wanted.isCancelled())
            return;
        fresh[index] = bytes;
        if (_clock.uptime() - shownAt >= betweenUpdates(found.paths.size()))
            publish(id, takeFresh());
    };
    co_await _usage.measure(found.paths, measured, wanted);
    if (!self || wanted.isCancelled())
        co_return;
    CleanupContents complete = takeFresh();
    complete.isMeasuring = false;
    sortBySize(complete);
    publish(id, complete);
}

void OpenedItems::publish(const QString &id, const CleanupContents &contents)
{
    CleanupContentsById all = _contents;
    all[id] = contents;
    _contents = all;
}

void OpenedItems::setIncluded(const QString &id, const QByteArray &entryPath, bool isIncluded)
{
    _leftOut.set(id, entryPath, !isIncluded);
    if (!_contents.value().contains(id))
        return;
    CleanupContents contents = _contents.value().value(id);
    const auto entry = std::ranges::find(contents.entries, entryPath, &CleanupEntry::path);
    if (entry == contents.entries.end())
        return;
    entry->isIncluded = isIncluded;
    publish(id, contents);
}

void OpenedItems::forget(const QString &id)
{
    close(id);
    _leftOut.remove(id);
}

} // namespace velbrix
