#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QImage>
#include <QString>

#include <optional>

namespace velbrix {

struct ThumbnailItem {
    QString id;
    QString title;
    QString subtitle;

    bool operator==(const ThumbnailItem &) const = default;
};

// What the cells of a ThumbnailGrid show.
class ThumbnailItems final : public QAbstractListModel {
public:
    enum Role { pictureRole = Qt::UserRole, subtitleRole, problemRole, chosenRole, badgeRole };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    // False where nothing has changed; otherwise there are no problems any more.
    bool replace(const QList<ThumbnailItem> &fresh);
    // Invalid where there is none.
    QModelIndex find(const QString &id) const;
    // After a change of what is public here.
    void redraw(const QString &id);

    QList<ThumbnailItem> items;
    QHash<QString, QImage> pictures;
    QHash<QString, QString> badges; // a few letters upon the picture
    QHash<QString, QString> problems;
    std::optional<QString> chosen;

private:
    QHash<QString, int> _rows;
};

} // namespace velbrix
