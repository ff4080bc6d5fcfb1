#pragma once

#include "foundation/Published.h"
#include "platform/OtherSound.h"

#include <QObject>

namespace velbrix {

class WallpaperPreferences;

// How loud the wallpaper is: as users have set it, and silent while another
// program is heard, where they want that, or while it is not to be recorded.
// Main thread.
class SoundPolicy final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(SoundPolicy, double, volume, 0) // 0…1
    // For users, why it is silent whatever they have set; empty where it is not.
    VELB_PUBLISHED(SoundPolicy, QString, silenceReason)

public:
    SoundPolicy(OtherSound &others, const WallpaperPreferences &preferences, QObject *parent = nullptr);

    // While the sound of the system is recorded without the wallpaper's.
    void setHushed(bool hushed);

private:
    void follow();
    void update();

    OtherSound &_others;
    const WallpaperPreferences &_preferences;
    Observation _watch; // where it yields
    bool _isHushed = false;
};

} // namespace velbrix
