#pragma once

#include "maintenance/uninstall/UninstallTypes.h"

#include <QAbstractListModel>
#include <QSet>

namespace velbrix {

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

} // namespace velbrix
