#pragma once

#include "views/components/ThumbnailItems.h"

#include <QListView>
#include <QStringList>

#include <optional>

namespace velbrix {

class Theme;

// Pictures with names to choose one of; arrow keys and Space or a click choose.
// Made for tens of thousands of cells: only the visible ones are drawn, and
// whoever brings the pictures is told which these are.
class ThumbnailGrid final : public QListView {
    Q_OBJECT

public:
    // The empty symbol is that of a cell that has no picture.
    ThumbnailGrid(const Theme &theme, const QString &name, const QString &emptySymbol,
                  QWidget *parent = nullptr);

    // Keeps the place and the current cell when that is still there.
    void setItems(const QList<ThumbnailItem> &items);
    void setPictures(const QHash<QString, QImage> &pictures);
    void setPicture(const QString &id, const QImage &picture, const QString &badge);
    // The cell says this in place of its subtitle and gets no picture.
    void setProblem(const QString &id, const QString &problem);
    // Lets go of every other picture.
    void keepPictures(const QStringList &ids);
    void setChosen(const std::optional<QString> &id);

    // What the user can see of the grid now, from the top.
    QStringList visibleIds() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void wanted(const QString &id);
    // By a double click or Return, after wanted().
    void confirmed(const QString &id);
    // May come while the grid is painted.
    void visibleIdsChanged(const QStringList &ids);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool viewportEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    int room() const;
    int columns() const;
    void noteVisible();
    void fit();

    ThumbnailItems *_items;
    QStringList _inSight;
    QPoint _entered; // by the pointer, on the screen
    // Where the grid was when the user last moved the pointer in it.
    std::optional<QPoint> _pointedAt;
};

} // namespace velbrix
