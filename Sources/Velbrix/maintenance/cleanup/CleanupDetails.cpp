#include "maintenance/cleanup/CleanupDetails.h"

#include "foundation/Clock.h"
#include "maintenance/cleanup/CleanupChoices.h"
#include "maintenance/cleanup/CleanupTable.h"
#include "maintenance/cleanup/ItemCleaner.h"
#include "platform/DiskUsage.h"

#include <QCoroFuture>
#include <QFile>
#include <QPointer>
#include <QSet>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// Every update passes on the whole list, which can be very long: of a list that
// is drawn at once no step is seen, a longer one must leave time to scroll.
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

CleanupDetails::CleanupDetails(const CleanupTable &table, CleanupChoices &choices, Bounds bounds,
                               DiskUsage &usage, Clock &clock)
    : _table(table), _choices(choices), _bounds(std::move(bounds)), _usage(usage), _clock(clock)
{
}

CleanupDetails::~CleanupDetails()
{
    for (Cancellation &opening : _openings)
        opening.cancel();
}

bool CleanupDetails::canOpen(const QString &id) const
{
    const CleanupRule *const rule = _table.rule(id);
    return rule && rule->target.path;
}

void CleanupDetails::open(const QString &id)
{
    if (canOpen(id) && !_openings.contains(id))
        measure(id);
}

void CleanupDetails::close(const QString &id)
{
    if (!_openings.contains(id))
        return;
    _openings.take(id).cancel();
    CleanupContentsById all = _contents;
    all.remove(id);
    _contents = all;
}

void CleanupDetails::lookAgain()
{
    for (const QString &id : _openings.keys()) {
        _openings.take(id).cancel();
        measure(id);
    }
}

QCoro::Task<CleanupContents> CleanupDetails::list(QString id, QStringList ids)
{
    const QPointer self(this);
    CleanupContents contents;
    const CleanupRule *const rule = _table.rule(id);
    if (!rule)
        co_return contents;
    const CleanupBounds bounds = co_await _bounds(*rule, ids);
    auto listing = QtConcurrent::run(&cleanupThreads(), cleanableEntries, bounds);
    const CleanableEntries found = co_await listing;
    if (!self)
        co_return contents;
    contents.problem = found.problem;
    if (found.notOldEnough > 0)
        contents.note =
            u"另有 %1 个条目属于其他用户，或还不能确认已 24 小时未改动，保留"_s.arg(found.notOldEnough);
    const bool withFolder = bounds.folders.size() > 1 && !bounds.isTrash;
    QSet<QByteArray> missing = _choices.excludedOf(id);
    for (const CleanableEntries::Entry &entry : found.entries) {
        const bool isExcluded = missing.remove(entry.path);
        contents.entries.append({entry.path,
                                 shownName(entry.path, withFolder),
                                 {},
                                 !isExcluded,
                                 isExcluded ? QString() : entry.whyStays,
                                 bounds.isTrash});
    }
    for (const QByteArray &path : missing)
        contents.entries.append({path, shownName(path, withFolder), 0, false});
    co_return contents;
}

QCoro::Task<CleanupContents> CleanupDetails::look(QString id, QStringList ids)
{
    const QPointer self(this);
    CleanupContents contents = co_await list(id, ids);
    if (!self)
        co_return contents;
    QList<QByteArray> paths;
    for (const CleanupEntry &entry : std::as_const(contents.entries))
        paths.append(entry.path);
    const DiskUsage::Measured measured = [&contents](qsizetype index, qint64 bytes) {
        contents.entries[index].bytes = bytes;
    };
    co_await _usage.measure(paths, measured, Cancellation());
    sortBySize(contents);
    co_return contents;
}

QCoro::Task<> CleanupDetails::measure(QString id)
{
    const QPointer self(this);
    const Cancellation wanted;
    _openings[id] = wanted;
    CleanupContents contents = _contents.value().value(id);
    contents.isMeasuring = true;
    publish(id, contents);

    const CleanupContents listed = co_await list(id, {});
    if (!self || wanted.isCancelled())
        co_return;
    QHash<QByteArray, std::optional<qint64>> known;
    for (const CleanupEntry &entry : std::as_const(contents.entries))
        known.insert(entry.path, entry.bytes);
    contents = listed;
    contents.isMeasuring = true;
    QList<QByteArray> paths;
    for (CleanupEntry &entry : contents.entries) {
        entry.bytes = entry.bytes ? entry.bytes : known.value(entry.path);
        paths.append(entry.path);
    }
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
        if (_clock.uptime() - shownAt >= betweenUpdates(paths.size()))
            publish(id, takeFresh());
    };
    co_await _usage.measure(paths, measured, wanted);
    if (!self || wanted.isCancelled())
        co_return;
    CleanupContents complete = takeFresh();
    complete.isMeasuring = false;
    sortBySize(complete);
    publish(id, complete);
}

void CleanupDetails::publish(const QString &id, const CleanupContents &contents)
{
    CleanupContentsById all = _contents;
    all[id] = contents;
    _contents = all;
}

void CleanupDetails::setIncluded(const QString &id, const QByteArray &entryPath, bool isIncluded)
{
    _choices.setExcluded(id, entryPath, !isIncluded);
    if (!_contents.value().contains(id))
        return;
    CleanupContents contents = _contents.value().value(id);
    const auto entry = std::ranges::find(contents.entries, entryPath, &CleanupEntry::path);
    if (entry == contents.entries.end())
        return;
    entry->isIncluded = isIncluded;
    publish(id, contents);
}

} // namespace velbrix
