#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace velbrix {

// One entry of the tray's menu. A header is never enabled.
struct TrayMenuItem {
    QString id; // the same for as long as the program runs; empty for a separator
    QString title;
    QString keyEquivalent = {}; // "⌘⇧P"
    bool isEnabled = true;
    std::function<void()> act = {};
};

// A tool's part of the menu, below its title.
struct TraySection {
    QString title;
    QList<TrayMenuItem> items;
    QStringList state; // what the items depend on; the menu is rewritten when it differs
};

} // namespace velbrix
