#pragma once

#include "platform/linux/media/recording/PixelRects.h"

#include <xcb/xproto.h>

namespace velbrix {

// Places and lengths as the core protocol carries them: sixteen bits, which
// hold every point of a screen.
inline std::int16_t toXPlace(int pixels)
{
    return static_cast<std::int16_t>(pixels);
}

inline std::uint16_t toXLength(int pixels)
{
    return static_cast<std::uint16_t>(pixels);
}

inline xcb_rectangle_t toXRectangle(const PixelRect &rect)
{
    return {toXPlace(rect.x), toXPlace(rect.y), toXLength(rect.width), toXLength(rect.height)};
}

inline PixelRect fromXRectangle(const xcb_rectangle_t &rect)
{
    return {rect.x, rect.y, rect.width, rect.height};
}

// With its border; in the window's parent.
inline PixelRect outerRect(const xcb_get_geometry_reply_t &geometry)
{
    const int borders = 2 * geometry.border_width;
    return {geometry.x, geometry.y, geometry.width + borders, geometry.height + borders};
}

} // namespace velbrix
