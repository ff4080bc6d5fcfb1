// How large the items are, and what is in them.
#include "maintenance/cleanup/SystemCleaner.h"

#include "foundation/ByteCount.h"
#include "maintenance/cleanup/CleanupThreads.h"
#include "maintenance/cleanup/FolderCleaning.h"
#include "platform/DiskUsage.h"

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

const QString unknownYet = u"计算中…"_s;
const QString nothingToShow = u"无数据"_s;
// Every update passes on the whole list, which can be very long.
std::chrono::milliseconds betweenUpdates(qsizetype entries)
{
    return entries < 2000 ? 150ms : 1000ms;
}

// A folder that is a link is the folder it leads to, as for the cleaning.
QList<QByteArray> canonicalPaths(const QStringList &folders)
{
    QList<QByteArray> paths;
    for (const QString &folder : folders) {
        const QString canonical = QFileInfo(folder).canonicalFilePath();
        paths.append(QFile::encodeName(canonical.isEmpty() ? folder : canonical));
    }
    return paths;
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

void SystemCleaner::calculateOnce()
{
    if (!_hasCalculated)
        recalculate();
}

void SystemCleaner::recalculate()
{
    if (!isWorking())
        calculate();
}

QCoro::Task<> SystemCleaner::calculate()
{
    const QPointer self(this);
    _hasCalculated = true;
    _work = Cancellation();
    const quint64 measuring = ++_measurings;
    _phase = CleanupPhase::calculating();
    refreshBusyItems();
    QStringList ids;
    for (const CleanupItem &item : _items.value())
        ids.append(item.id);
    co_await estimate(ids, _work);
    // A clean may have begun meanwhile, and another measuring after it.
    if (self && measuring == _measurings && _phase.value().kind == CleanupPhase::Kind::calculating)
        _phase = CleanupPhase();
}

QCoro::Task<> SystemCleaner::estimate(QStringList ids, Cancellation work)
{
    const QPointer self(this);
    QStringList folders;
    QStringList owners; // of each folder: the item
    QHash<QString, int> missing;
    for (const QString &id : ids) {
        const QStringList measured = measuredFolders(id);
        if (measured.isEmpty())
            setSize(id, 0);
        folders += measured;
        owners += QStringList(measured.size(), id);
        missing[id] = static_cast<int>(measured.size());
    }
    auto resolving = QtConcurrent::run(&cleanupThreads(), canonicalPaths, folders);
    const QList<QByteArray> paths = co_await resolving;
    if (!self)
        co_return;
    QHash<QString, qint64> sums;
    const DiskUsage::Measured measured = [&](qsizetype index, qint64 bytes) {
        const QString &id = owners[index];
        sums[id] += bytes;
        if (self && --missing[id] == 0)
            setSize(id, sums[id]);
    };
    co_await _hosts.usage.measure(paths, measured, work);
    if (!self)
        co_return;
    // Left over by a cancelling.
    for (const QString &id : ids)
        change(id, [](CleanupItem &item) {
            if (item.estimatedSize == unknownYet)
                item.estimatedSize = u"待计算"_s;
        });
}

void SystemCleaner::setSize(const QString &id, qint64 bytes)
{
    if (!item(id))
        return;
    if (bytes > 0)
        _bytes[id] = bytes;
    else
        _bytes.remove(id);
    change(id, [&](CleanupItem &item) {
        item.estimatedSize = bytes > 0 ? formatByteCount(bytes) : nothingToShow;
    });
}

void SystemCleaner::open(const QString &id)
{
    if (hasContents(id) && !_openings.contains(id))
        measureContents(id);
}

void SystemCleaner::close(const QString &id)
{
    if (!_openings.contains(id))
        return;
    _openings.take(id).cancel();
    CleanupContentsById all = _contents;
    all.remove(id);
    _contents = all;
}

QCoro::Task<> SystemCleaner::measureContents(QString id)
{
    const QPointer self(this);
    const Cancellation wanted;
    _openings[id] = wanted;
    CleanupContents contents;
    contents.isMeasuring = true;
    publishContents(id, contents);

    const QStringList folders = emptiedFolders(id);
    auto listing = QtConcurrent::run(&cleanupThreads(), cleanableEntries, folders, removalRules(id));
    const CleanableEntries found = co_await listing;
    if (!self || wanted.isCancelled())
        co_return;
    _leftOut.dropMissing(id, found.paths);
    contents.problem = found.problem;
    for (const QByteArray &path : found.paths)
        contents.entries.append(
            {path, shownName(path, folders.size() > 1), {}, !_leftOut.contains(id, path)});
    publishContents(id, contents);

    // Answers come while the user closes rows and ticks entries.
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
            publishContents(id, takeFresh());
    };
    co_await _hosts.usage.measure(found.paths, measured, wanted);
    if (!self || wanted.isCancelled())
        co_return;
    CleanupContents complete = takeFresh();
    complete.isMeasuring = false;
    sortBySize(complete);
    publishContents(id, complete);
}

void SystemCleaner::publishContents(const QString &id, const CleanupContents &contents)
{
    CleanupContentsById all = _contents;
    all[id] = contents;
    _contents = all;
}

void SystemCleaner::setIncluded(const QString &id, const QByteArray &entryPath, bool isIncluded)
{
    _leftOut.set(id, entryPath, !isIncluded);
    if (!_contents.value().contains(id))
        return;
    CleanupContents contents = _contents.value().value(id);
    const auto entry = std::ranges::find(contents.entries, entryPath, &CleanupEntry::path);
    if (entry == contents.entries.end())
        return;
    entry->isIncluded = isIncluded;
    publishContents(id, contents);
}

} // namespace velbrix
