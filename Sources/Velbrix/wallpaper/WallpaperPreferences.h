#pragma once

#include "foundation/Published.h"
#include "wallpaper/WallpaperTypes.h"

#include <QDateTime>
#include <QHash>
#include <QJsonValue>
#include <QObject>
#include <QSet>

namespace velbrix {

class SettingsStore;

using DisplayVideoPaths = QHash<quint32, QString>; // by display id
using DisplayIds = QSet<quint32>;

// What of the wallpaper outlives the program. A setter that changes a value
// stores it.
class WallpaperPreferences final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(WallpaperPreferences, double, volume, 0.3)
    VELB_PUBLISHED(WallpaperPreferences, bool, isMuted, false)
    VELB_PUBLISHED(WallpaperPreferences, double, speed, 1.0)
    VELB_PUBLISHED(WallpaperPreferences, WallpaperGravity, gravity, WallpaperGravity::aspectFill)
    VELB_PUBLISHED(WallpaperPreferences, WallpaperContentMode, contentMode, WallpaperContentMode::video)
    VELB_PUBLISHED(WallpaperPreferences, std::optional<QString>, wallpaperFolder)
    VELB_PUBLISHED(WallpaperPreferences, VideoOrder, videoOrder, VideoOrder::name)
    VELB_PUBLISHED(WallpaperPreferences, int, playlistMinutes, 0) // each video's turn; 0: no end
    VELB_PUBLISHED(WallpaperPreferences, bool, isPlaylistShuffled, false)
    VELB_PUBLISHED(WallpaperPreferences, bool, autoPlay, true)
    VELB_PUBLISHED(WallpaperPreferences, bool, hideDesktopIconsEnabled, false)
    VELB_PUBLISHED(WallpaperPreferences, bool, isHidingDesktopIcons, false)
    VELB_PUBLISHED(WallpaperPreferences, bool, isDockAutoHidden, false)
    VELB_PUBLISHED(WallpaperPreferences, bool, pauseOnBattery, true)
    VELB_PUBLISHED(WallpaperPreferences, bool, pauseWhenCovered, true)
    VELB_PUBLISHED(WallpaperPreferences, bool, yieldsSound, false) // to other programs
    VELB_PUBLISHED(WallpaperPreferences, DisplayVideoPaths, perDisplayVideoPaths)
    VELB_PUBLISHED(WallpaperPreferences, DisplayIds, unusedDisplays) // which show no wallpaper

public:
    explicit WallpaperPreferences(SettingsStore &settings, QObject *parent = nullptr);

    // Takes each stored value that is present and of its type.
    void loadSettings();

    void setVolume(double volume);
    void setMuted(bool on);
    // How loud it is to be in the end.
    double audibleVolume() const { return _isMuted ? 0.0 : _volume.value(); }
    // The user has once set how loud it is to be.
    bool hasSoundChoice() const;
    void setSpeed(double speed);
    void setGravity(WallpaperGravity gravity);
    void setContentMode(WallpaperContentMode mode);
    void setWallpaperFolder(const QString &folder);
    void setVideoOrder(VideoOrder order);
    void setPlaylistMinutes(int minutes);
    void setPlaylistShuffled(bool on);
    // Of this video; invalid when the last turn that began was another's.
    QDateTime turnBegan(const QString &path) const;
    void setTurnBegan(const QString &path, const QDateTime &at);
    void setAutoPlay(bool on);
    void setHideDesktopIconsEnabled(bool on);
    void setHidingDesktopIcons(bool on);
    void setPauseOnBattery(bool on);
    void setPauseWhenCovered(bool on);
    void setYieldsSound(bool on);

    // Nothing takes the display's own video away.
    void setDisplayVideoPath(quint32 displayId, const std::optional<QString> &path);

    void setDisplayUsed(quint32 displayId, bool on);

    // The last video applied on the main display.
    std::optional<QString> lastVideoPath() const;
    // Nothing forgets it.
    void setLastVideoPath(const std::optional<QString> &path);

    // Icons are covered: allowed and switched on.
    bool coversDesktopIcons() const { return _hideDesktopIconsEnabled && _isHidingDesktopIcons; }

    // The user's own auto-hide of the Dock, as long as this program has
    // changed it; nothing when it is not known.
    std::optional<bool> originalSystemDockAutohideState() const;
    // On disk when it returns: a crash must not cost the user their value.
    void setDockState(bool isHidden, std::optional<bool> original);

    // A start is bringing the wallpaper back. One that finds it so follows
    // another that has died of it.
    bool isReturning() const;
    // On disk when it returns.
    void setReturning(bool on);

private:
    template <typename Property, typename Value>
    void change(Property &property, const Value &value, const QString &key, const QJsonValue &stored);

    SettingsStore &_settings;
};

} // namespace velbrix
