#pragma once

#include "platform/linux/media/recording/PixelRects.h"
#include "platform/linux/x11/X11Connection.h"

#include <optional>
#include <vector>

namespace velbrix {

// The child of the root that shows a client's window, in coordinates of the
// root, and the part of it that the user takes for the window: with the
// decorations, without shadows.
struct TopLevel {
    xcb_window_t id = XCB_WINDOW_NONE;
    PixelRect outer; // with the X11 border
    int border = 0;
    PixelRect visible;
    int depth = 0;
    bool isViewable = false;

    bool operator==(const TopLevel &) const = default;
};

// Nothing when there is no such window any more.
std::optional<TopLevel> topLevelOf(X11Connection &connection, xcb_window_t client);

// The children of the root, bottom to top.
std::vector<xcb_window_t> stackedWindows(X11Connection &connection);
// Whether something on screen lies above the top-level, at least in part.
bool isCovered(X11Connection &connection, const TopLevel &topLevel);

// Where the window lies in its own pixmap, which begins at its border.
inline PixelRect visibleInPixmap(const TopLevel &topLevel)
{
    return {topLevel.visible.x - topLevel.outer.x, topLevel.visible.y - topLevel.outer.y,
            topLevel.visible.width, topLevel.visible.height};
}

} // namespace velbrix
