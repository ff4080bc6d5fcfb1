#pragma once

#include "platform/linux/movie/MovieRecorder.h"
#include "platform/linux/screen/GrabBuffer.h"
#include "platform/linux/screen/PixelRects.h"

#include <cstdint>
#include <span>
#include <vector>

namespace velbrix {

// The picture of a movie: of one size for good, into which pictures of any
// size are fitted on black.
class FrameCanvas {
public:
    // Pixels, even.
    FrameCanvas(int width, int height);

    // Redraws what these parts of the picture show; returns the parts of the
    // canvas that may look different. After another size of the picture
    // everything must be drawn, whatever the parts are.
    std::vector<PixelRect> draw(const BitmapView &picture, std::span<const PixelRect> parts);
    PictureView view() const;
    int width() const { return _width; }
    int height() const { return _height; }

private:
    void clear();
    void convert(const BitmapView &picture, const PixelRect &part);
    void scale(const BitmapView &picture, const PixelRect &part);
    void toPlanes(const std::uint8_t *pixels, int stride, const PixelRect &target);

    int _width;
    int _height;
    Placement _placement;
    std::vector<std::uint8_t> _y;
    std::vector<std::uint8_t> _u;
    std::vector<std::uint8_t> _v;
    std::vector<std::uint8_t> _scaled;
};

} // namespace velbrix
