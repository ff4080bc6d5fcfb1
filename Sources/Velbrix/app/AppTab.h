#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace velbrix {

// The sidebar's tabs. Only tools that work have a case.
enum class AppTab { wallpaper, recorder, systemClean, uninstaller, fileBackup, settings };

struct AppTabInfo {
    AppTab tab;
    QString identifier; // for the command line
    QString title;
    QString symbol; // SF Symbol name
    QString group;  // heading above it; empty for the foot of the sidebar

    bool operator==(const AppTabInfo &) const = default;
};

// In the order of the sidebar.
const QList<AppTabInfo> &appTabs();
const AppTabInfo &appTabInfo(AppTab tab);
std::optional<AppTab> appTabFromIdentifier(const QString &identifier);

} // namespace velbrix
