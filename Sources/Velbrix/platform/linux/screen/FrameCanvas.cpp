#include "platform/linux/screen/FrameCanvas.h"

#include <libyuv.h>

#include <algorithm>

namespace velbrix {

namespace {

std::size_t area(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

} // namespace

FrameCanvas::FrameCanvas(int width, int height)
    : _width(width), _height(height), _y(area(width, height)), _u(area(width / 2, height / 2)), _v(_u.size())
{
    clear();
}

void FrameCanvas::clear()
{
    std::ranges::fill(_y, std::uint8_t{16});
    std::ranges::fill(_u, std::uint8_t{128});
    std::ranges::fill(_v, std::uint8_t{128});
}

PictureView FrameCanvas::view() const
{
    return {_y.data(), _u.data(), _v.data(), _width, _width / 2};
}

std::vector<PixelRect> FrameCanvas::draw(const BitmapView &picture, std::span<const PixelRect> parts)
{
    const Placement placement = place(picture.width, picture.height, _width, _height);
    const PixelRect all{0, 0, picture.width, picture.height};
    const bool isNew = placement != _placement;
    if (isNew) {
        _placement = placement;
        _scaled.resize(placement.isScaled ? area(placement.content.width, placement.content.height) * 4 : 0);
        clear();
        parts = std::span(&all, 1);
    }
    std::vector<PixelRect> drawn;
    for (const PixelRect &part : parts) {
        const PixelRect target = touchedContent(_placement, part);
        if (isEmpty(target))
            continue;
        if (_placement.isScaled)
            scale(picture, target);
        else
            convert(picture, target);
        drawn.push_back(translated(target, _placement.content.x, _placement.content.y));
    }
    if (isNew)
        return {{0, 0, _width, _height}};
    return drawn;
}

void FrameCanvas::convert(const BitmapView &picture, const PixelRect &part)
{
    toPlanes(picture.at(part.x, part.y), picture.stride(), part);
}

void FrameCanvas::scale(const BitmapView &picture, const PixelRect &part)
{
    const int stride = _placement.content.width * 4;
    libyuv::ARGBScaleClip(picture.pixels, picture.stride(), picture.width, picture.height, _scaled.data(),
                          stride, _placement.content.width, _placement.content.height, part.x, part.y,
                          part.width, part.height, libyuv::kFilterBox);
    toPlanes(_scaled.data() + static_cast<std::ptrdiff_t>(part.y) * stride +
                 static_cast<std::ptrdiff_t>(part.x) * 4,
             stride, part);
}

void FrameCanvas::toPlanes(const std::uint8_t *pixels, int stride, const PixelRect &target)
{
    const int x = target.x + _placement.content.x;
    const int y = target.y + _placement.content.y;
    const std::ptrdiff_t luma = static_cast<std::ptrdiff_t>(y) * _width + x;
    const std::ptrdiff_t chroma = static_cast<std::ptrdiff_t>(y / 2) * (_width / 2) + x / 2;
    libyuv::ARGBToI420(pixels, stride, _y.data() + luma, _width, _u.data() + chroma, _width / 2,
                       _v.data() + chroma, _width / 2, target.width, target.height);
}

} // namespace velbrix
