#pragma once

#include "app/TrayMenu.h"
#include "platform/HostFamily.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <functional>

namespace velbrix {

class Theme;

// The icon in the tray and its menu.
class StatusItem final : public QObject {
public:
    StatusItem(const Theme &theme, HostFamily family, std::function<void()> clicked,
               std::function<void(const QString &id)> chosen);

    void setMenu(const QList<TrayMenuItem> &items);
    void setRecording(bool isRecording);
    void show() { _icon.show(); }

    QMenu &menu() { return _menu; }
    QIcon picture() const { return _icon.icon(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPixmap symbol(int side) const;
    QPixmap picture(int side) const;
    void redraw();
    void rebuild(const QList<TrayMenuItem> &items);

    const Theme &_theme;
    const HostFamily _family;
    std::function<void(const QString &id)> _chosen;
    QStringList _order;
    QMenu _menu;
    QSystemTrayIcon _icon; // goes before its menu
    bool _isMenuOpen = false;
    bool _isRecording = false;
};

} // namespace velbrix
