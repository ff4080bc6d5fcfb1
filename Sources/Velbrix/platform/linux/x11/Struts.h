#pragma once

#include "platform/linux/media/recording/PixelRects.h"
#include "platform/linux/x11/X11Connection.h"

#include <QRect>
#include <QSize>

#include <optional>
#include <span>

namespace velbrix {

// What a panel reserves at an edge of the root (_NET_WM_STRUT_PARTIAL of EWMH),
// from begin to end (inclusive) along that edge.
struct EdgeStrut {
    int width = 0;
    int begin = 0;
    int end = 0;

    bool operator==(const EdgeStrut &) const = default;
};

struct Strut {
    EdgeStrut left;
    EdgeStrut right;
    EdgeStrut top;
    EdgeStrut bottom;

    bool operator==(const Strut &) const = default;
};

// What of a monitor no panel has reserved. A strut that would take all of a
// monitor belongs to a panel on the monitor behind it.
QRect visibleFrame(const QRect &monitor, const QSize &root, std::span<const Strut> struts);

// What the window reserves, if anything.
std::optional<Strut> readStrut(X11Connection &connection, xcb_window_t window);

} // namespace velbrix
