#pragma once

#include "foundation/Log.h"

namespace velbrix::wallpaperlog {

// One line under the wallpaper's tag.
inline void say(const QString &text)
{
    log::line(QStringLiteral("Wallpaper"), text);
}

} // namespace velbrix::wallpaperlog
