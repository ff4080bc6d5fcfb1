#pragma once

#include <QStyledItemDelegate>

namespace velbrix {

class AppRows;
class RowList;
class Theme;

// Draws one application: icon, name and marks, version and place, size, and a
// button that takes it away.
class AppRow final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int height = 60;

    AppRow(const Theme &theme, RowList &list, const AppRows &rows);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    // The button's place in the row.
    static QRect buttonRect(const QRect &row);

Q_SIGNALS:
    void uninstallWanted(const QModelIndex &index);

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    void drawIcon(QPainter &painter, const QRect &place, const QModelIndex &index) const;
    void drawName(QPainter &painter, const QRect &place, const QModelIndex &index) const;
    void drawMark(QPainter &painter, QRect &room, const QString &text, const QColor &color) const;
    void drawButton(QPainter &painter, const QStyleOptionViewItem &option) const;

    const Theme &_theme;
    RowList &_list;
    const AppRows &_rows;
};

} // namespace velbrix
