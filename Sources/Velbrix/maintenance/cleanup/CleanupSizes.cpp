#include "maintenance/cleanup/CleanupSizes.h"

#include "foundation/Paths.h"
#include "maintenance/cleanup/CleanupTable.h"
#include "maintenance/cleanup/ItemCleaner.h"
#include "platform/DiskUsage.h"

#include <QCoroFuture>
#include <QFile>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

namespace velbrix {
namespace {

struct Place {
    QByteArray path;
    bool isEmpty = false;
};

// A folder that is a link is the folder it leads to, as for the cleaning.
QList<Place> placesOf(const QStringList &folders)
{
    QList<Place> places;
    for (const QString &folder : folders) {
        const QString canonical = canonicalPath(folder);
        places.append(
            {QFile::encodeName(canonical.isEmpty() ? folder : canonical), isEmptyFolder(canonical)});
    }
    return places;
}

bool lieInside(const QStringList &folders, const QStringList &others)
{
    return std::ranges::any_of(folders, [&](const QString &folder) {
        return std::ranges::any_of(others, [&](const QString &other) { return isInside(folder, other); });
    });
}

} // namespace

QCoro::Task<> CleanupSizes::measure(QStringList ids, Cancellation work)
{
    const QPointer self(this);
    QStringList folders;
    QStringList owners; // of each folder: the item
    QHash<QString, qsizetype> missing;
    for (const QString &id : ids) {
        const CleanupRule *const rule = _table.rule(id);
        const QStringList own = rule ? _table.measuredFolders(*rule) : QStringList();
        if (own.isEmpty())
            set(id, 0);
        folders += own;
        owners += QStringList(own.size(), id);
        missing[id] = own.size();
    }
    auto resolving = QtConcurrent::run(&cleanupThreads(), placesOf, folders);
    const QList<Place> places = co_await resolving;
    if (!self)
        co_return;
    QHash<QString, qint64> sums;
    const auto add = [&](const QString &id, qint64 bytes) {
        sums[id] += bytes;
        if (self && --missing[id] == 0)
            set(id, sums[id]);
    };
    QList<QByteArray> paths;
    QStringList ownersOfPaths;
    for (qsizetype i = 0; i < places.size(); ++i) {
        // The blocks of the folder itself stay, however often it is cleaned.
        if (places[i].isEmpty) {
            add(owners[i], 0);
            continue;
        }
        paths.append(places[i].path);
        ownersOfPaths.append(owners[i]);
    }
    const DiskUsage::Measured told = [&](qsizetype index, qint64 bytes) { add(ownersOfPaths[index], bytes); };
    co_await _usage.measure(paths, told, work);
}

void CleanupSizes::set(const QString &id, qint64 bytes)
{
    if (!_table.rule(id))
        return; // taken away meanwhile
    if (bytes > 0)
        _bytes[id] = bytes;
    else
        _bytes.remove(id);
    Q_EMIT measured(id, bytes);
}

std::optional<qint64> CleanupSizes::bytes(const QString &id) const
{
    const auto found = _bytes.find(id);
    return found == _bytes.end() ? std::nullopt : std::optional(*found);
}

qint64 CleanupSizes::total(const QStringList &ids) const
{
    QList<QStringList> foldersOfEach;
    QStringList all;
    for (const QString &id : ids) {
        const CleanupRule *const rule = _table.rule(id);
        foldersOfEach.append(rule ? _table.measuredFolders(*rule) : QStringList());
        all += foldersOfEach.last();
    }
    qint64 total = 0;
    for (qsizetype i = 0; i < ids.size(); ++i) {
        if (!lieInside(foldersOfEach[i], all))
            total += bytes(ids[i]).value_or(0);
    }
    return total;
}

} // namespace velbrix
