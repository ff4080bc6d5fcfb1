#pragma once

#include "maintenance/cleanup/CleanupTypes.h"

#include <QAbstractListModel>

namespace velbrix {

// The entries of an opened row. What stays keeps its place in views: the
// current line, the selection and the scroll position survive measuring and
// sorting.
class CleanupEntries final : public QAbstractListModel {
public:
    enum Role { sizeRole = Qt::UserRole, pathRole };

    using QAbstractListModel::QAbstractListModel;

    void show(const QList<CleanupEntry> &entries);
    const QList<CleanupEntry> &entries() const { return _entries; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    void reorder(const QList<CleanupEntry> &entries);

    QList<CleanupEntry> _entries;
};

} // namespace velbrix
