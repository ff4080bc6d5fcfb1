#include "wallpaper/SoundPolicy.h"

#include "wallpaper/WallpaperPreferences.h"

namespace velbrix {

SoundPolicy::SoundPolicy(OtherSound &others, const WallpaperPreferences &preferences, QObject *parent)
    : QObject(parent), _others(others), _preferences(preferences)
{
    connect(&preferences, &WallpaperPreferences::volumeChanged, this, &SoundPolicy::update);
    connect(&preferences, &WallpaperPreferences::isMutedChanged, this, &SoundPolicy::update);
    connect(&preferences, &WallpaperPreferences::yieldsSoundChanged, this, &SoundPolicy::follow);
    follow();
}

void SoundPolicy::follow()
{
    _watch = _preferences.yieldsSound() ? _others.observe([this] { update(); }) : Observation();
    update();
}

void SoundPolicy::update()
{
    _isYielding = _watch && _others.isHeard();
    _volume = isYielding() ? 0.0 : _preferences.audibleVolume();
}

} // namespace velbrix
