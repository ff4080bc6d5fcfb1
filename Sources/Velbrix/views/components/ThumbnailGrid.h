#pragma once

#include <QAbstractListModel>
#include <QImage>
#include <QListView>

#include <optional>

namespace velbrix {

class Theme;

struct ThumbnailItem {
    QString id;
    QString title;
    QString subtitle;

    bool operator==(const ThumbnailItem &) const = default;
};

// Pictures with names to choose one of. Only cells in sight are drawn; arrow
// keys and Space or a click choose.
class ThumbnailGrid final : public QListView {
    Q_OBJECT

public:
    ThumbnailGrid(const Theme &theme, const QString &name, QWidget *parent = nullptr);

    void setItems(const QList<ThumbnailItem> &items);
    void setPictures(const QHash<QString, QImage> &pictures);
    void setChosen(const std::optional<QString> &id);

    QSize sizeHint() const override;

Q_SIGNALS:
    void wanted(const QString &id);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    class Items;
    class Cell;
    int columns() const;
    void fit();

    Items *_items;
};

} // namespace velbrix
