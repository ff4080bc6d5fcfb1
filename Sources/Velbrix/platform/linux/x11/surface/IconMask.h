#pragma once

#include "platform/linux/media/recording/PixelRects.h"
#include "platform/linux/x11/capture/GrabBuffer.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace velbrix {

// Where an icon manager's window shows icons: where it differs from what it
// would show without them. Parts without overlap, in the coordinates of the
// picture; nothing when so much differs that the backdrop must be another one.
// Faint pixels at the edge of an icon, which are mixed with the backdrop, do
// not belong to it.
std::optional<std::vector<PixelRect>> iconParts(const BitmapView &picture, const BitmapView &backdrop);
// The same before a backdrop of one colour, the picture's most frequent one.
std::optional<std::vector<PixelRect>> iconParts(const BitmapView &picture);

// How many pixels the parts have.
std::int64_t areaOf(const std::vector<PixelRect> &parts);

// Decides whether new parts may replace the last ones. While the picture of
// the desktop changes, the icon manager's window and the picture that it is
// compared with are out of step for a moment, and what differs then is no icon.
class IconDebounce {
public:
    // A sudden growth is accepted when it has lasted; ask again after `pause`.
    static constexpr std::chrono::milliseconds pause{300};

    // The size of the whole picture and of what differs, and from which
    // backdrop; `now` never runs backwards.
    bool accepts(std::int64_t pixels, std::int64_t area, std::uint32_t backdrop,
                 std::chrono::milliseconds now);

private:
    std::optional<std::int64_t> _lastArea;
    std::optional<std::chrono::milliseconds> _doubtedSince;
    std::uint32_t _doubtedBackdrop = 0;
};

} // namespace velbrix
