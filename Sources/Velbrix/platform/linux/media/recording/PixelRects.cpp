#include "platform/linux/media/recording/PixelRects.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace velbrix {

bool intersects(const PixelRect &a, const PixelRect &b)
{
    return !isEmpty(a) && !isEmpty(b) && a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height &&
           b.y < a.y + a.height;
}

PixelRect intersected(const PixelRect &a, const PixelRect &b)
{
    if (!intersects(a, b))
        return {};
    const int left = std::max(a.x, b.x);
    const int top = std::max(a.y, b.y);
    return {left, top, std::min(a.x + a.width, b.x + b.width) - left,
            std::min(a.y + a.height, b.y + b.height) - top};
}

PixelRect united(const PixelRect &a, const PixelRect &b)
{
    if (isEmpty(a))
        return b;
    if (isEmpty(b))
        return a;
    const int left = std::min(a.x, b.x);
    const int top = std::min(a.y, b.y);
    return {left, top, std::max(a.x + a.width, b.x + b.width) - left,
            std::max(a.y + a.height, b.y + b.height) - top};
}

PixelRect roundedOut(const PixelRect &rect, int width, int height)
{
    const PixelRect inside = intersected(rect, {0, 0, width, height});
    const int left = inside.x & ~1;
    const int top = inside.y & ~1;
    const int right = (inside.x + inside.width + 1) & ~1;
    const int bottom = (inside.y + inside.height + 1) & ~1;
    return {left, top, right - left, bottom - top};
}

std::vector<PixelRect> subtracted(const PixelRect &rect, std::span<const PixelRect> holes)
{
    std::vector<PixelRect> pieces{rect};
    for (const PixelRect &hole : holes) {
        std::vector<PixelRect> next;
        for (const PixelRect &piece : pieces) {
            const PixelRect cut = intersected(piece, hole);
            if (isEmpty(cut)) {
                next.push_back(piece);
                continue;
            }
            const int right = cut.x + cut.width;
            const int bottom = cut.y + cut.height;
            next.push_back({piece.x, piece.y, piece.width, cut.y - piece.y});
            next.push_back({piece.x, bottom, piece.width, piece.y + piece.height - bottom});
            next.push_back({piece.x, cut.y, cut.x - piece.x, cut.height});
            next.push_back({right, cut.y, piece.x + piece.width - right, cut.height});
        }
        std::erase_if(next, [](const PixelRect &piece) { return isEmpty(piece); });
        pieces = std::move(next);
    }
    std::erase_if(pieces, [](const PixelRect &piece) { return isEmpty(piece); });
    return pieces;
}

std::vector<PixelRect> simplified(std::vector<PixelRect> rects, std::size_t limit)
{
    std::vector<PixelRect> kept;
    PixelRect bounds;
    // Larger ones first, so that each is compared with what may contain it.
    const auto area = [](const PixelRect &rect) { return std::int64_t{rect.width} * rect.height; };
    std::ranges::sort(rects, std::ranges::greater(), area);
    for (const PixelRect &rect : rects) {
        const auto contains = [&rect](const PixelRect &other) { return intersected(rect, other) == rect; };
        if (isEmpty(rect) || std::ranges::any_of(kept, contains))
            continue;
        bounds = united(bounds, rect);
        kept.push_back(rect);
        if (kept.size() > limit) {
            for (const PixelRect &all : rects)
                bounds = united(bounds, all);
            return {bounds};
        }
    }
    return kept;
}

Placement place(int sourceWidth, int sourceHeight, int canvasWidth, int canvasHeight)
{
    if ((sourceWidth & ~1) == canvasWidth && (sourceHeight & ~1) == canvasHeight)
        return {{0, 0, canvasWidth, canvasHeight}, sourceWidth, sourceHeight, false};
    if (sourceWidth <= 0 || sourceHeight <= 0)
        return {{}, sourceWidth, sourceHeight, false};
    const double scale = std::min(static_cast<double>(canvasWidth) / sourceWidth,
                                  static_cast<double>(canvasHeight) / sourceHeight);
    const auto even = [scale](int length, int limit) {
        const int scaled = static_cast<int>(std::lround(length * scale)) & ~1;
        return std::clamp(scaled, 2, limit);
    };
    PixelRect content{0, 0, even(sourceWidth, canvasWidth), even(sourceHeight, canvasHeight)};
    content.x = (canvasWidth - content.width) / 2 & ~1;
    content.y = (canvasHeight - content.height) / 2 & ~1;
    return {content, sourceWidth, sourceHeight,
            content.width != sourceWidth || content.height != sourceHeight};
}

PixelRect touchedContent(const Placement &placement, const PixelRect &source)
{
    const PixelRect &content = placement.content;
    if (isEmpty(source) || isEmpty(content))
        return {};
    if (!placement.isScaled)
        return roundedOut(source, content.width, content.height);
    // One pixel more on each side: the filter looks at neighbours.
    const auto span = [](int from, int length, int sourceLength, int contentLength) {
        const auto first = std::int64_t{from} * contentLength / sourceLength - 1;
        const auto last = (std::int64_t{from + length} * contentLength + sourceLength - 1) / sourceLength + 1;
        return std::pair(static_cast<int>(first), static_cast<int>(last - first));
    };
    const auto [x, width] = span(source.x, source.width, placement.sourceWidth, content.width);
    const auto [y, height] = span(source.y, source.height, placement.sourceHeight, content.height);
    return roundedOut({x, y, width, height}, content.width, content.height);
}

} // namespace velbrix
