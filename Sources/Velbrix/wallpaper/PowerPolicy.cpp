#include "wallpaper/PowerPolicy.h"

#include "wallpaper/WallpaperLog.h"
#include "wallpaper/WallpaperPreferences.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

using wallpaperlog::say;

PowerPolicy::PowerPolicy(PowerSource &source, WallpaperPreferences &preferences, Acts acts, QObject *parent)
    : QObject(parent), _source(source), _preferences(preferences), _acts(std::move(acts))
{
    // Whoever saves the battery from now on saves it at once.
    connect(&_preferences, &WallpaperPreferences::pauseOnBatteryChanged, this,
            [this] { handlePowerSourceChange(true); });
}

void PowerPolicy::startPowerSourceMonitor()
{
    auto changes = _source.observe([this] { handlePowerSourceChange(true); });
    if (changes)
        _sourceChanges = std::move(*changes);
    say(changes ? u"power source monitor started"_s : u"power source monitor unavailable"_s);
    handlePowerSourceChange(false);
}

bool PowerPolicy::blocks() const
{
    return _preferences.pauseOnBattery() && isOnBatteryPower();
}

void PowerPolicy::handlePowerSourceChange(bool notify)
{
    const bool wasOnBattery = isOnBatteryPower();
    _isOnBatteryPower = _source.isOnBattery();
    if (!_preferences.pauseOnBattery())
        _wasPlayingBeforeBattery = false;
    if (!notify || !_preferences.pauseOnBattery())
        return;
    if (isOnBatteryPower())
        unplugged(wasOnBattery);
    else
        plugged(wasOnBattery);
}

void PowerPolicy::unplugged(bool wasOnBattery)
{
    if (_acts.isShowing()) {
        _wasPlayingBeforeBattery = true;
        say(u"AC unplugged → stop wallpaper (save battery)"_s);
        _acts.stop();
    } else if (!wasOnBattery) {
        // The source also tells of every percent that the battery loses.
        say(u"AC unplugged (wallpaper was idle)"_s);
    }
}

void PowerPolicy::plugged(bool wasOnBattery)
{
    if (!wasOnBattery && !_wasPlayingBeforeBattery)
        return;
    const bool resumes = _wasPlayingBeforeBattery || _preferences.autoPlay();
    _wasPlayingBeforeBattery = false;
    say(resumes ? u"AC restored → resume wallpaper"_s : u"AC restored (no auto resume)"_s);
    if (resumes)
        _acts.resume();
}

} // namespace velbrix
