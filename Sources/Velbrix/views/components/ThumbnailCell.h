#pragma once

#include <QHash>
#include <QPixmap>
#include <QStyledItemDelegate>

class QListView;

namespace velbrix {

class Theme;

// Draws an item of a ThumbnailGrid as a card: its picture above two lines of
// words, or a symbol where there is none to show.
class ThumbnailCell final : public QStyledItemDelegate {
public:
    // The empty symbol is that of a cell that has no picture.
    ThumbnailCell(const Theme &theme, QListView &grid, QString emptySymbol);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    void drawSymbol(QPainter &painter, const QRect &room, const QString &name) const;
    void drawPicture(QPainter &painter, const QRect &room, const QImage &picture, const QString &badge) const;
    void drawBadge(QPainter &painter, const QRect &picture, const QString &badge) const;
    void drawWords(QPainter &painter, const QRect &room, const QModelIndex &index, bool isChosen) const;

    const Theme &_theme;
    const QListView &_grid;
    const QString _emptySymbol;
    mutable QHash<QString, QPixmap> _symbols;
};

} // namespace velbrix
