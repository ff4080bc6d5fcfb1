#pragma once

#include <QList>
#include <QString>

#include <functional>

namespace velbrix {

enum class TrayItemId {
    open,
    separator,
    wallpaperHeader,
    wallpaperPlay,
    wallpaperStop,
    recordHeader,
    recordToggle,
    recordPanel,
    privacy,
    remoteCheck,
    quit
};

// One entry of the tray's menu. An entry without a key has an empty one;
// a header is an entry that is never enabled.
struct TrayMenuItem {
    TrayItemId id = TrayItemId::separator;
    QString title;
    QString keyEquivalent; // "⌘⇧P"
    bool isHeader = false;
    bool isEnabled = true;

    bool operator==(const TrayMenuItem &) const = default;
};

// What the menu and the status image depend on.
struct TrayState {
    QString wallpaperTitle = QStringLiteral("播放壁纸");
    bool canToggleWallpaper = false;
    bool isWallpaperShowing = false;
    bool isRecording = false;
    QString recordTitle;

    bool operator==(const TrayState &) const = default;

    // The wallpaper's title, each Boolean and the recorder's title, by "|".
    QString signature() const;
};

QList<TrayMenuItem> trayMenu(const TrayState &state);

} // namespace velbrix
