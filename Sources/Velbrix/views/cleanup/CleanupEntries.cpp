#include "views/cleanup/CleanupEntries.h"

#include "foundation/ByteCount.h"
#include "foundation/OneLine.h"
#include "views/PlainTip.h"

#include <QFile>
#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString sizeText(const CleanupEntry &entry)
{
    return entry.bytes ? formatByteCount(*entry.bytes) : u"计算中…"_s;
}

bool areSamePaths(const QList<CleanupEntry> &one, const QList<CleanupEntry> &other)
{
    return std::ranges::equal(one, other, {}, &CleanupEntry::path, &CleanupEntry::path);
}

} // namespace

void CleanupEntries::show(const QList<CleanupEntry> &entries)
{
    if (entries.constData() == _entries.constData())
        return;
    if (entries.size() != _entries.size()) {
        beginResetModel();
        _entries = entries;
        endResetModel();
    } else if (areSamePaths(entries, _entries)) {
        _entries = entries;
        if (!entries.isEmpty())
            Q_EMIT dataChanged(index(0), index(static_cast<int>(entries.size()) - 1));
    } else {
        reorder(entries);
    }
}

void CleanupEntries::reorder(const QList<CleanupEntry> &entries)
{
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList held = persistentIndexList();
    QHash<QByteArray, int> places;
    if (!held.isEmpty()) {
        places.reserve(entries.size());
        for (int row = 0; row < entries.size(); ++row)
            places.insert(entries[row].path, row);
    }
    QModelIndexList moved;
    for (const QModelIndex &old : held) {
        const auto place = places.constFind(_entries[old.row()].path);
        moved.append(place == places.cend() ? QModelIndex() : index(*place));
    }
    _entries = entries;
    changePersistentIndexList(held, moved);
    Q_EMIT layoutChanged();
}

int CleanupEntries::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(_entries.size());
}

QVariant CleanupEntries::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= _entries.size())
        return {};
    const CleanupEntry &entry = _entries[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return oneLine(entry.name);
    case Qt::ToolTipRole:
        return plainTip(oneLine(QFile::decodeName(entry.path)));
    case Qt::CheckStateRole:
        return entry.isIncluded ? Qt::Checked : Qt::Unchecked;
    case Qt::AccessibleTextRole:
        return u"%1，%2，%3"_s.arg(oneLine(entry.name), sizeText(entry),
                                   entry.isIncluded ? u"将清理"_s : u"已排除"_s);
    case sizeRole:
        return sizeText(entry);
    case pathRole:
        return entry.path;
    default:
        return {};
    }
}

Qt::ItemFlags CleanupEntries::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index) | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren;
}

} // namespace velbrix
