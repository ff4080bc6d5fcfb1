#include "platform/linux/x11/Struts.h"

#include <algorithm>
#include <limits>

namespace velbrix {

namespace {

// How far a strut reaches into a monitor: 0 unless it leaves a part of it.
int depth(const EdgeStrut &strut, int distance, int length, int sideBegin, int sideEnd)
{
    const int reach = strut.width - distance;
    const bool isBeside = strut.end >= sideBegin && strut.begin <= sideEnd;
    return isBeside && reach > 0 && reach < length ? reach : 0;
}

} // namespace

QRect visibleFrame(const QRect &monitor, const QSize &root, std::span<const Strut> struts)
{
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
    const int fromRight = root.width() - monitor.right() - 1;
    const int fromBottom = root.height() - monitor.bottom() - 1;
    for (const Strut &strut : struts) {
        left =
            std::max(left, depth(strut.left, monitor.x(), monitor.width(), monitor.top(), monitor.bottom()));
        right =
            std::max(right, depth(strut.right, fromRight, monitor.width(), monitor.top(), monitor.bottom()));
        top = std::max(top, depth(strut.top, monitor.y(), monitor.height(), monitor.left(), monitor.right()));
        bottom = std::max(bottom,
                          depth(strut.bottom, fromBottom, monitor.height(), monitor.left(), monitor.right()));
    }
    const QRect visible = monitor.adjusted(left, top, -right, -bottom);
    return visible.isEmpty() ? monitor : visible;
}

std::optional<Strut> readStrut(X11Connection &connection, xcb_window_t window)
{
    const XProperty partial = connection.property(window, "_NET_WM_STRUT_PARTIAL");
    const XProperty whole = partial.count() < 12 ? connection.property(window, "_NET_WM_STRUT") : XProperty{};
    const bool isPartial = partial.count() >= 12;
    if (!isPartial && whole.count() < 4)
        return std::nullopt;
    const auto edge = [&](int index) {
        const XProperty &property = isPartial ? partial : whole;
        const auto number = [&property](int at) {
            return static_cast<int>(std::min(property.value(at), 0xffffU));
        };
        const int ranges = 4 + 2 * index;
        return EdgeStrut{number(index), isPartial ? number(ranges) : 0,
                         isPartial ? number(ranges + 1) : std::numeric_limits<int>::max()};
    };
    const Strut strut{edge(0), edge(1), edge(2), edge(3)};
    const bool isAny =
        strut.left.width > 0 || strut.right.width > 0 || strut.top.width > 0 || strut.bottom.width > 0;
    return isAny ? std::optional(strut) : std::nullopt;
}

} // namespace velbrix
