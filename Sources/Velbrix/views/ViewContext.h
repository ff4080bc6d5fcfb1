#pragma once

#include <QString>

namespace velbrix {

class AppServices;
class Theme;

// What every page works with. All of it outlives the pages.
struct ViewContext {
    AppServices &services;
    Theme &theme;

    // Shows the file in the file manager; a failure is told in a banner.
    void reveal(const QString &path) const;
    // Opens the file in the user's program for it; likewise.
    void open(const QString &path) const;
};

} // namespace velbrix
