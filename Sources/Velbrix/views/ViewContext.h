#pragma once

namespace velbrix {

class AppServices;
class RecordingActions;
class Theme;
class WallpaperActions;

// What every page works with. All of it outlives the pages.
struct ViewContext {
    AppServices &services;
    Theme &theme;
    RecordingActions &recording;
    WallpaperActions &wallpaper;
};

} // namespace velbrix
