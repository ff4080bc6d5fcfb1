#pragma once

#include <QStyledItemDelegate>

namespace velbrix {

class ReviewRows;
class RowList;
class Theme;
struct ReviewItem;

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
    void drawReasons(QPainter &painter, const QRect &place, const ReviewItem &item) const;

    const Theme &_theme;
    RowList &_list;
    const ReviewRows &_rows;
};

} // namespace velbrix
