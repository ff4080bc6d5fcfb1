#pragma once

#include <QListView>

namespace velbrix {

class Theme;

// Rows of one height that scroll in a list of their own, made for thousands:
// only the visible ones are drawn. ↑↓ move the current row; Enter, Space and what
// is typed are told.
class RowList final : public QListView {
    Q_OBJECT

public:
    RowList(const Theme &theme, const QString &name, int rowHeight, QWidget *parent = nullptr);

    // High enough for all rows.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void reset() override;

    // Behind a row's own drawing: the pointer and the keyboard's place.
    void drawBack(QPainter &painter, const QStyleOptionViewItem &option) const;

Q_SIGNALS:
    void wanted(const QModelIndex &index); // Enter
    void spaced(const QModelIndex &index); // Space
    void typed(const QString &text);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    const Theme &_theme;
    int _rowHeight;
};

} // namespace velbrix
