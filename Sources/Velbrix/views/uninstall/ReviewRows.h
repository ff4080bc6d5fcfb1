#pragma once

#include "maintenance/uninstall/UninstallTypes.h"

#include <QAbstractListModel>
#include <QStyledItemDelegate>

namespace velbrix {

class RowList;
class Theme;

// What an uninstall has found, to be ticked.
class ReviewRows final : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    // Keeps the current row when only ticks and sizes have changed.
    void replace(const QList<ReviewItem> &items);
    const ReviewItem &item(const QModelIndex &index) const { return _items[index.row()]; }

private:
    QList<ReviewItem> _items;
};

// "缓存 · 名称包含标识符": the kind of folder and why the item is thought to belong.
QString reasonText(const ReviewItem &item);
// "正在计算…" while it is being measured.
QString sizeText(const ReviewItem &item);
// "已勾选 3 项，共 1.2 MB".
QString tickedText(const QList<ReviewItem> &items);

// Draws one thing that an uninstall would take: its box, its path and size,
// and under them why, and why not.
class ReviewRow final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int height = 58;

    ReviewRow(const Theme &theme, RowList &list, const ReviewRows &rows);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

Q_SIGNALS:
    void toggled(const QModelIndex &index);

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    void drawReasons(QPainter &painter, const QRect &rect, const ReviewItem &item) const;

    const Theme &_theme;
    RowList &_list;
    const ReviewRows &_rows;
};

} // namespace velbrix
