#pragma once

#include "foundation/Published.h"
#include "platform/OtherSound.h"

#include <QObject>

namespace velbrix {

class WallpaperPreferences;

// How loud the wallpaper is: as users have set it, and silent while another
// program is heard, where they want that. Main thread.
class SoundPolicy final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(SoundPolicy, double, volume, 0) // 0…1
    // Another program is heard, and the wallpaper is silent for it.
    VELB_PUBLISHED(SoundPolicy, bool, isYielding, false)

public:
    SoundPolicy(OtherSound &others, const WallpaperPreferences &preferences, QObject *parent = nullptr);

private:
    void follow();
    void update();

    OtherSound &_others;
    const WallpaperPreferences &_preferences;
    Observation _watch; // where it yields
};

} // namespace velbrix
