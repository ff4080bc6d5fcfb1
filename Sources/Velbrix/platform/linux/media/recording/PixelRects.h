#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velbrix {

// A part of a picture or of the screen, in pixels.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelRect &) const = default;
};

// Pixels of four bytes: blue, green, red, unused. Rows lie one after another.
struct BitmapView {
    std::uint8_t *pixels = nullptr;
    int width = 0;
    int height = 0;

    int stride() const { return width * 4; }
    std::uint8_t *at(int x, int y) const
    {
        return pixels + static_cast<std::ptrdiff_t>(y) * stride() + static_cast<std::ptrdiff_t>(x) * 4;
    }
};

inline bool isEmpty(const PixelRect &rect)
{
    return rect.width <= 0 || rect.height <= 0;
}

inline PixelRect translated(const PixelRect &rect, int dx, int dy)
{
    return {rect.x + dx, rect.y + dy, rect.width, rect.height};
}

bool intersects(const PixelRect &a, const PixelRect &b);
// Empty (all zero) where they do not meet.
PixelRect intersected(const PixelRect &a, const PixelRect &b);
PixelRect united(const PixelRect &a, const PixelRect &b);
// Grown to even coordinates, as a picture with halved colour planes needs
// them, but not out of an area of the given even size.
PixelRect roundedOut(const PixelRect &rect, int width, int height);
// What of the rectangle lies outside the holes, in pieces without overlap.
std::vector<PixelRect> subtracted(const PixelRect &rect, std::span<const PixelRect> holes);
// The rectangles without those that are empty or inside another; their
// bounding rectangle alone when more than `limit` remain.
std::vector<PixelRect> simplified(std::vector<PixelRect> rects, std::size_t limit = 32);

// Where a picture lies in a canvas of another size: aspect kept, centred, at
// even coordinates. A picture that is one odd row or column larger than the
// canvas is not scaled but cut.
struct Placement {
    PixelRect content; // in the canvas
    int sourceWidth = 0;
    int sourceHeight = 0;
    bool isScaled = false;

    bool operator==(const Placement &) const = default;
};

Placement place(int sourceWidth, int sourceHeight, int canvasWidth, int canvasHeight);
// The part of the content (relative to it) that a change of this part of the
// source may touch, at even coordinates.
PixelRect touchedContent(const Placement &placement, const PixelRect &source);

} // namespace velbrix
