#include "wallpaper/SoundPolicy.h"

#include "wallpaper/WallpaperPreferences.h"

using namespace Qt::StringLiterals;

namespace velbrix {

SoundPolicy::SoundPolicy(OtherSound &others, const WallpaperPreferences &preferences, QObject *parent)
    : QObject(parent), _others(others), _preferences(preferences)
{
    connect(&preferences, &WallpaperPreferences::volumeChanged, this, &SoundPolicy::update);
    connect(&preferences, &WallpaperPreferences::isMutedChanged, this, &SoundPolicy::update);
    connect(&preferences, &WallpaperPreferences::yieldsSoundChanged, this, &SoundPolicy::follow);
    follow();
}

void SoundPolicy::setHushed(bool hushed)
{
    _isHushed = hushed;
    update();
}

void SoundPolicy::follow()
{
    _watch = _preferences.yieldsSound() ? _others.observe([this] { update(); }) : Observation();
    update();
}

void SoundPolicy::update()
{
    const bool isYielding = _watch && _others.isHeard();
    _silenceReason = _isHushed ? u"正在录制系统声音"_s : isYielding ? u"其他程序正在发声"_s : QString();
    _volume = _isHushed || isYielding ? 0.0 : _preferences.audibleVolume();
}

} // namespace velbrix
