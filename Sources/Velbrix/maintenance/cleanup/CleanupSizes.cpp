#include "maintenance/cleanup/CleanupSizes.h"

#include "maintenance/cleanup/CleanupTable.h"
#include "platform/DiskUsage.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

namespace velbrix {
namespace {

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

bool lieInside(const QStringList &folders, const QStringList &others)
{
    return std::ranges::any_of(folders, [&](const QString &folder) {
        return std::ranges::any_of(others,
                                   [&](const QString &other) { return folder.startsWith(other + u'/'); });
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
        const QStringList own = _table.measuredFolders(id);
        if (own.isEmpty())
            set(id, 0);
        folders += own;
        owners += QStringList(own.size(), id);
        missing[id] = own.size();
    }
    auto resolving = QtConcurrent::run(&cleanupThreads(), canonicalPaths, folders);
    const QList<QByteArray> paths = co_await resolving;
    if (!self)
        co_return;
    QHash<QString, qint64> sums;
    const DiskUsage::Measured told = [&](qsizetype index, qint64 bytes) {
        const QString &id = owners[index];
        sums[id] += bytes;
        if (self && --missing[id] == 0)
            set(id, sums[id]);
    };
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
        foldersOfEach.append(_table.measuredFolders(id));
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
