#include "platform/linux/x11/surface/IconMask.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

namespace velbrix {

namespace {

constexpr int distinct = 64;             // of 255: more icon than backdrop
constexpr int edge = 2;                  // pixels that an edge blurs over
constexpr int mostPercent = 40;          // more than this no desktop shows of icons
constexpr std::size_t mostParts = 60000; // nor so finely cut; a dithered picture is
constexpr std::uint32_t colour = 0xffffff;

enum Level : std::uint8_t { same, faint, clear };

// One level a pixel, with a margin that counts as icon on all sides.
class LevelMap {
public:
    LevelMap(int width, int height)
        : _width(width),
          _height(height),
          _stride(static_cast<std::size_t>(width + 2 * edge)),
          _levels(_stride * static_cast<std::size_t>(height + 2 * edge), faint)
    {
    }

    std::uint8_t *row(int y) { return _levels.data() + static_cast<std::size_t>(y + edge) * _stride + edge; }
    int width() const { return _width; }
    int height() const { return _height; }

    bool isIcon(int x, int y)
    {
        const std::uint8_t level = row(y)[x];
        return level == clear || (level == faint && !isAtEdge(x, y));
    }

private:
    bool isAtEdge(int x, int y)
    {
        for (int dy = -edge; dy <= edge; ++dy) {
            if (std::memchr(row(y + dy) + x - edge, same, 2 * edge + 1))
                return true;
        }
        return false;
    }

    int _width;
    int _height;
    std::size_t _stride;
    std::vector<std::uint8_t> _levels;
};

Level level(const std::uint8_t *a, const std::uint8_t *b)
{
    int difference = 0;
    for (int channel = 0; channel < 3; ++channel)
        difference = std::max(difference, std::abs(int{a[channel]} - int{b[channel]}));
    return difference == 0 ? same : difference < distinct ? faint : clear;
}

bool isSame(const std::uint8_t *a, const std::uint8_t *b, int count)
{
    std::uint32_t differences = 0;
    for (int x = 0; x < count; ++x) {
        std::uint32_t left = 0;
        std::uint32_t right = 0;
        std::memcpy(&left, a + qsizetype{x} * 4, 4);
        std::memcpy(&right, b + qsizetype{x} * 4, 4);
        differences |= left ^ right;
    }
    return (differences & colour) == 0;
}

// Returns how many differ.
std::int64_t compareRow(const std::uint8_t *a, const std::uint8_t *b, int width, std::uint8_t *levels)
{
    // Almost all of a desktop is backdrop: whole blocks are settled at once.
    constexpr int block = 32;
    std::int64_t differing = 0;
    for (int start = 0; start < width; start += block) {
        const int count = std::min(block, width - start);
        const auto offset = static_cast<std::size_t>(start) * 4;
        if (isSame(a + offset, b + offset, count)) {
            std::memset(levels + start, same, static_cast<std::size_t>(count));
            continue;
        }
        for (int x = start; x < start + count; ++x) {
            const auto at = static_cast<std::size_t>(x) * 4;
            levels[x] = level(a + at, b + at);
            differing += levels[x] != same;
        }
    }
    return differing;
}

// The runs of each row, as the server wants its regions: top to bottom, left
// to right.
std::vector<PixelRect> partsOf(LevelMap &map)
{
    std::vector<PixelRect> parts;
    for (int y = 0; y < map.height(); ++y) {
        for (int x = 0; x < map.width(); ++x) {
            const int start = x;
            while (x < map.width() && map.isIcon(x, y))
                ++x;
            if (x > start)
                parts.push_back({start, y, x - start, 1});
        }
    }
    return parts;
}

std::optional<std::vector<PixelRect>> parts(LevelMap &map, std::int64_t differing)
{
    if (differing * 100 > std::int64_t{map.width()} * map.height() * mostPercent)
        return std::nullopt;
    std::vector<PixelRect> found = partsOf(map);
    if (found.size() > mostParts)
        return std::nullopt;
    return found;
}

std::uint32_t pixel(const BitmapView &picture, int x, int y)
{
    std::uint32_t value = 0;
    std::memcpy(&value, picture.at(x, y), 4);
    return value;
}

std::uint32_t dominantPixel(const BitmapView &picture)
{
    constexpr int step = 7;
    std::unordered_map<std::uint32_t, int> counts;
    for (int y = 0; y < picture.height; y += step) {
        for (int x = y % step; x < picture.width; x += step)
            ++counts[pixel(picture, x, y) & colour];
    }
    const auto most = std::ranges::max_element(counts, {}, [](const auto &each) { return each.second; });
    return most == counts.end() ? 0 : most->first;
}

} // namespace

std::optional<std::vector<PixelRect>> iconParts(const BitmapView &picture, const BitmapView &backdrop)
{
    LevelMap map(picture.width, picture.height);
    std::int64_t differing = 0;
    for (int y = 0; y < picture.height; ++y)
        differing += compareRow(picture.at(0, y), backdrop.at(0, y), picture.width, map.row(y));
    return parts(map, differing);
}

std::optional<std::vector<PixelRect>> iconParts(const BitmapView &picture)
{
    LevelMap map(picture.width, picture.height);
    const std::vector<std::uint32_t> row(static_cast<std::size_t>(picture.width), dominantPixel(picture));
    std::int64_t differing = 0;
    for (int y = 0; y < picture.height; ++y)
        differing += compareRow(picture.at(0, y), reinterpret_cast<const std::uint8_t *>(row.data()),
                                picture.width, map.row(y));
    return parts(map, differing);
}

std::int64_t areaOf(const std::vector<PixelRect> &parts)
{
    std::int64_t area = 0;
    for (const PixelRect &part : parts)
        area += std::int64_t{part.width} * part.height;
    return area;
}

bool IconDebounce::accepts(std::int64_t pixels, std::int64_t area, std::uint32_t backdrop,
                           std::chrono::milliseconds now)
{
    const bool isSudden = _lastArea && area > 2 * *_lastArea + pixels / 100;
    if (isSudden) {
        if (!_doubtedSince || _doubtedBackdrop != backdrop) {
            _doubtedSince = now;
            _doubtedBackdrop = backdrop;
        }
        if (now - *_doubtedSince < pause)
            return false;
    }
    _doubtedSince.reset();
    _lastArea = area;
    return true;
}

} // namespace velbrix
