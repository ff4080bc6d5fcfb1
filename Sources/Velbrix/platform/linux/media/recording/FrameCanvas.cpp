#include "platform/linux/media/recording/FrameCanvas.h"

#include <libyuv.h>

#include <algorithm>
#include <utility>

namespace velbrix {

namespace {

std::size_t area(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

} // namespace

PicturePlanesPool::PicturePlanesPool(int width, int height)
    : _pixels(area(width, height)), _spares(std::make_shared<Spares>())
{
}

std::shared_ptr<PicturePlanes> PicturePlanesPool::take()
{
    std::unique_ptr<PicturePlanes> planes;
    {
        const std::scoped_lock lock(_spares->lock);
        if (!_spares->planes.empty()) {
            planes = std::move(_spares->planes.back());
            _spares->planes.pop_back();
        }
    }
    if (!planes) {
        planes = std::make_unique<PicturePlanes>();
        planes->y.resize(_pixels);
        planes->u.resize(_pixels / 4);
        planes->v.resize(_pixels / 4);
    }
    const auto giveBack = [spares = _spares](PicturePlanes *unused) {
        const std::scoped_lock lock(spares->lock);
        spares->planes.emplace_back(unused);
    };
    return {planes.release(), giveBack};
}

FrameCanvas::FrameCanvas(int width, int height)
    : _width(width), _height(height), _pool(width, height), _planes(_pool.take())
{
    clear();
}

void FrameCanvas::clear()
{
    std::ranges::fill(_planes->y, std::uint8_t{16});
    std::ranges::fill(_planes->u, std::uint8_t{128});
    std::ranges::fill(_planes->v, std::uint8_t{128});
}

PictureView FrameCanvas::view(std::shared_ptr<const void> owner) const
{
    return {_planes->y.data(), _planes->u.data(), _planes->v.data(), _width, _width / 2, std::move(owner)};
}

PictureView FrameCanvas::share()
{
    _isShared = true;
    return view(_planes);
}

void FrameCanvas::unshare(bool keepsPicture)
{
    if (!std::exchange(_isShared, false))
        return;
    std::shared_ptr<PicturePlanes> fresh = _pool.take();
    if (keepsPicture)
        *fresh = *_planes;
    _planes = std::move(fresh);
}

std::vector<PixelRect> FrameCanvas::draw(const BitmapView &picture, std::span<const PixelRect> parts)
{
    const PixelRect canvas{0, 0, _width, _height};
    const PixelRect all{0, 0, picture.width, picture.height};
    const Placement placement = place(picture.width, picture.height, _width, _height);
    const bool isNew = placement != _placement;
    if (isNew) {
        _placement = placement;
        _scaled.resize(placement.isScaled ? area(placement.content.width, placement.content.height) * 4 : 0);
        unshare(false);
        clear();
        parts = std::span(&all, 1);
    }
    std::vector<PixelRect> targets;
    for (const PixelRect &part : parts)
        if (const PixelRect target = touchedContent(_placement, part); !isEmpty(target))
            targets.push_back(target);
    if (targets.empty() && !isNew)
        return {};
    // Full motion, the dearest case, needs nothing of the picture before.
    unshare(std::ranges::find(targets, canvas) == targets.end());
    for (PixelRect &target : targets) {
        if (_placement.isScaled)
            scale(picture, target);
        else
            convert(picture, target);
        target = translated(target, _placement.content.x, _placement.content.y);
    }
    if (isNew)
        return {canvas};
    return targets;
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
    libyuv::ARGBToI420(pixels, stride, _planes->y.data() + luma, _width, _planes->u.data() + chroma,
                       _width / 2, _planes->v.data() + chroma, _width / 2, target.width, target.height);
}

} // namespace velbrix
