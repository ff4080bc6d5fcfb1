#include "maintenance/cleanup/CleanupSizes.h"

#include "foundation/FolderHandle.h"
#include "foundation/Paths.h"
#include "maintenance/cleanup/CleanupTable.h"
#include "maintenance/cleanup/ItemCleaner.h"
#include "platform/DiskUsage.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

namespace velbrix {
namespace {

// The direct entry of the folder that holds the place.
QByteArray entryAround(const QByteArray &place, const QByteArray &folder)
{
    const qsizetype end = place.indexOf('/', folder.size() + 1);
    return end < 0 ? place : place.first(end);
}

// Above the folders that are emptied, and the entries in them that stay, in
// turns: what is inside the one belongs to it until the other begins.
struct Mark {
    QByteArray path;
    bool goes = false;

    bool isInside(const Mark &other) const
    {
        return velbrix::isInside(path, other.path) || (path == other.path && goes && !other.goes);
    }
    bool operator==(const Mark &) const = default;
};

const Mark *innermostAround(const Mark &mark, const QList<Mark> &marks)
{
    const Mark *innermost = nullptr;
    for (const Mark &other : marks) {
        if (mark.isInside(other) && (!innermost || other.isInside(*innermost)))
            innermost = &other;
    }
    return innermost;
}

// Of these folders, and of the entries that stay in them for the places.
QList<Mark> marksOf(const QList<QByteArray> &folders, const QList<QByteArray> &staying)
{
    QList<Mark> marks;
    const auto addOnce = [&marks](const Mark &mark) {
        if (!marks.contains(mark))
            marks.append(mark);
    };
    for (const QByteArray &folder : folders) {
        addOnce({folder, true});
        for (const QByteArray &place : staying) {
            if (isInside(place, folder))
                addOnce({entryAround(place, folder), false});
        }
    }
    return marks;
}

bool isHidden(const QByteArray &name)
{
    return name.startsWith('.') && name != ".DS_Store";
}

} // namespace

// A folder above that is a link is the folder it leads to, as for the cleaning.
QList<CleanupSizes::Folder> CleanupSizes::lookUp(const Wanted &wanted)
{
    const bool isTrash = wanted.rule.item.id == trashItemId;
    const bool isEmptied = !wanted.rule.target.command && !isTrash;
    QList<Folder> folders;
    for (const QString &path : isTrash ? wanted.trash : measuredFolders(wanted.rule)) {
        const QString canonical = canonicalPath(path);
        const bool isLeftAlone = isEmptied && QFileInfo(path).isSymbolicLink();
        Folder folder;
        folder.path = QFile::encodeName(canonical.isEmpty() ? path : canonical);
        folder.isEmpty = isLeftAlone || isEmptyFolder(canonical);
        if (isEmptied && !folder.isEmpty) {
            for (const QByteArray &name :
                 FolderHandle::open(folder.path).names().value_or(QList<QByteArray>())) {
                if (isHidden(name))
                    folder.staying.append(folder.path + '/' + name);
            }
            for (const QString &pattern : wanted.rule.sparedPaths) {
                for (const QString &place : matchingFolders(pattern))
                    folder.staying.append(canonicalPath(QFile::encodeName(place)));
            }
        }
        folders.append(folder);
    }
    return folders;
}

QList<QList<CleanupSizes::Folder>> CleanupSizes::lookUpAll(const QList<Wanted> &wanted)
{
    QList<QList<Folder>> all;
    for (const Wanted &each : wanted)
        all.append(lookUp(each));
    return all;
}

QCoro::Task<> CleanupSizes::measure(QStringList ids, QList<QByteArray> staying, Cancellation work)
{
    const QPointer self(this);
    QList<Wanted> wanted;
    for (const QString &id : ids) {
        if (const CleanupRule *const rule = _table.rule(id))
            wanted.append({*rule, id == trashItemId ? _table.trashFolders() : QStringList()});
    }
    auto looking = QtConcurrent::run(&cleanupThreads(), &CleanupSizes::lookUpAll, wanted);
    const QList<QList<Folder>> found = co_await looking;
    if (!self)
        co_return;
    QList<Folder> folders;
    QStringList owners; // of each folder: the item
    QHash<QString, qsizetype> missing;
    for (qsizetype i = 0; i < found.size(); ++i) {
        const QString id = wanted[i].rule.item.id;
        _folders.remove(id);
        if (!_table.rule(id)) // taken away meanwhile
            continue;
        if (found[i].isEmpty())
            set(id, 0);
        else
            _folders[id] = found[i];
        folders += found[i];
        owners += QStringList(found[i].size(), id);
        missing[id] = found[i].size();
    }
    QHash<QString, qint64> sums;
    const auto add = [&](const QString &id, const QByteArray &path, qint64 bytes) {
        if (!self)
            return;
        learn(path, bytes);
        sums[id] += bytes;
        if (!id.isEmpty() && --missing[id] == 0)
            set(id, sums[id]);
    };
    QList<QByteArray> paths;
    QStringList ownersOfPaths;
    for (qsizetype i = 0; i < folders.size(); ++i) {
        // The blocks of the folder itself stay, however often it is cleaned.
        if (folders[i].isEmpty) {
            add(owners[i], folders[i].path, 0);
            continue;
        }
        paths.append(folders[i].path);
        ownersOfPaths.append(owners[i]);
    }
    for (const QString &id : _folders.keys())
        staying += this->folders(id);
    for (const Mark &mark : marksOf(QList(paths), staying + alwaysStaying(ids))) {
        if (!mark.goes && !paths.contains(mark.path))
            paths.append(mark.path);
    }
    const DiskUsage::Measured told = [&](qsizetype index, qint64 bytes) {
        add(ownersOfPaths.value(index), paths[index], bytes); // entries are nobody's
    };
    co_await _usage.measure(paths, told, work);
}

void CleanupSizes::set(const QString &id, qint64 bytes)
{
    if (!_table.rule(id))
        return; // taken away meanwhile
    _known.insert(id);
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

QList<QByteArray> CleanupSizes::folders(const QString &id) const
{
    QList<QByteArray> paths;
    for (const Folder &folder : _folders.value(id)) {
        if (!folder.isEmpty)
            paths.append(folder.path);
    }
    return paths;
}

QList<QByteArray> CleanupSizes::alwaysStaying(const QStringList &ids) const
{
    QList<QByteArray> places;
    for (const QString &id : ids) {
        for (const Folder &folder : _folders.value(id))
            places += folder.staying;
    }
    return places;
}

qint64 CleanupSizes::going(const QStringList &ids, const QList<QByteArray> &staying) const
{
    QList<QByteArray> emptied;
    for (const QString &id : ids)
        emptied += folders(id);
    emptied.removeIf([&](const QByteArray &folder) { return staying.contains(folder); });
    const QList<Mark> marks = marksOf(emptied, staying + alwaysStaying(ids));
    qint64 bytes = 0;
    for (const Mark &mark : marks) {
        const Mark *const around = innermostAround(mark, marks);
        const bool isInWhatGoes = around && around->goes;
        if (mark.goes != isInWhatGoes)
            bytes += (mark.goes ? 1 : -1) * _bytesOfPlaces.value(mark.path);
    }
    return std::max<qint64>(bytes, 0);
}

void CleanupSizes::forget(const QString &id)
{
    _bytes.remove(id);
    _known.remove(id);
    _folders.remove(id);
}

} // namespace velbrix
