#pragma once

#include "foundation/Published.h"
#include "platform/PowerSource.h"

#include <QObject>
#include <QString>

#include <functional>

namespace velbrix {

class WallpaperPreferences;

// Says why nothing plays while PowerPolicy::blocks().
inline const QString stoppedOnBattery = QStringLiteral("当前正在使用电池：壁纸已停止，接上电源后可自动恢复");

// Stops the wallpaper when the machine goes over to its battery and brings it
// back on mains.
class PowerPolicy final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(PowerPolicy, bool, isOnBatteryPower, false)

public:
    struct Acts {
        std::function<bool()> isShowing;
        std::function<void()> stop;
        std::function<void()> resume;
    };

    PowerPolicy(PowerSource &source, WallpaperPreferences &preferences, Acts acts, QObject *parent = nullptr);

    void startPowerSourceMonitor();
    // Nothing may play now.
    bool blocks() const;

private:
    void handlePowerSourceChange(bool notify);
    void unplugged(bool wasOnBattery);
    void plugged(bool wasOnBattery);

    PowerSource &_source;
    WallpaperPreferences &_preferences;
    Acts _acts;
    bool _wasPlayingBeforeBattery = false;
    Observation _sourceChanges;
};

} // namespace velbrix
