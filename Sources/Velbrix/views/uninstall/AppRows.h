#pragma once

#include "maintenance/uninstall/UninstallTypes.h"

#include <QAbstractListModel>
#include <QSet>
#include <QStyledItemDelegate>

namespace velbrix {

class RowList;
class Theme;

// The applications of the list.
class AppRows final : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    void replace(const QList<AppInfo> &apps);
    // The paths of those that are open.
    void setRunning(const QSet<QString> &paths);

    const AppInfo &app(const QModelIndex &index) const { return _apps[index.row()]; }
    bool isRunning(const QModelIndex &index) const { return _running.contains(app(index).path); }
    // Invalid where there is none.
    QModelIndex find(const QString &path) const;

private:
    QList<AppInfo> _apps;
    QSet<QString> _running;
};

// "1.2 GB"; "—" while nobody knows.
QString sizeText(const AppInfo &app);

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
    void drawIcon(QPainter &painter, const QRect &rect, const QModelIndex &index) const;
    void drawName(QPainter &painter, const QRect &rect, const QModelIndex &index) const;
    void drawMark(QPainter &painter, QRect &room, const QString &text, const QColor &color) const;
    void drawButton(QPainter &painter, const QStyleOptionViewItem &option) const;

    const Theme &_theme;
    RowList &_list;
    const AppRows &_rows;
};

} // namespace velbrix
