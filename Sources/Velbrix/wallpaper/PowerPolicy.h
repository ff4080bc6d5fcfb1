#pragma once

#include "foundation/Published.h"
#include "platform/PowerSource.h"

#include <QObject>

#include <functional>

namespace velbrix {

class WallpaperPreferences;

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
};

} // namespace velbrix
