#pragma once

namespace velbrix {

class AppServices;
class Theme;

// What every page works with. All of it outlives the pages.
struct ViewContext {
    AppServices &services;
    Theme &theme;
};

} // namespace velbrix
