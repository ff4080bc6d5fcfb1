#include "platform/linux/media/recording/FrameCanvas.h"

#include <libyuv.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace velbrix {

namespace {

std::size_t area(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

std::size_t area(const PixelRect &rect)
{
    return area(rect.width, rect.height);
}

// Planes are seldom further behind than the queue is long.
constexpr std::size_t rememberedChanges = 12;
// Of the parts that are compared with what was there.
constexpr std::size_t mostDifferences = 24;
constexpr int cellWidth = 64;
constexpr int cellHeight = 16;

struct PlanePart {
    std::ptrdiff_t offset;
    std::size_t width;
    int height;
    int stride;
};

PlanePart lumaPart(const PixelRect &part, int stride)
{
    return {static_cast<std::ptrdiff_t>(part.y) * stride + part.x, static_cast<std::size_t>(part.width),
            part.height, stride};
}

PlanePart chromaPart(const PixelRect &part, int stride)
{
    return lumaPart({part.x / 2, part.y / 2, part.width / 2, part.height / 2}, stride / 2);
}

void copyPart(const std::vector<std::uint8_t> &from, std::vector<std::uint8_t> &to, const PlanePart &part)
{
    for (int row = 0; row < part.height; ++row) {
        const std::ptrdiff_t at = part.offset + static_cast<std::ptrdiff_t>(row) * part.stride;
        std::memcpy(to.data() + at, from.data() + at, part.width);
    }
}

bool isEqualPart(const std::vector<std::uint8_t> &a, const std::vector<std::uint8_t> &b,
                 const PlanePart &part)
{
    for (int row = 0; row < part.height; ++row) {
        const std::ptrdiff_t at = part.offset + static_cast<std::ptrdiff_t>(row) * part.stride;
        if (std::memcmp(a.data() + at, b.data() + at, part.width) != 0)
            return false;
    }
    return true;
}

// Joins those that lie one below the other, the likest first.
std::vector<PixelRect> joined(std::vector<PixelRect> bands)
{
    const auto waste = [](const PixelRect &upper, const PixelRect &lower) {
        return area(united(upper, lower)) - area(upper) - area(lower);
    };
    while (bands.size() > 1) {
        std::size_t best = 0;
        for (std::size_t i = 1; i + 1 < bands.size(); ++i)
            if (waste(bands[i], bands[i + 1]) < waste(bands[best], bands[best + 1]))
                best = i;
        if (bands.size() <= mostDifferences && waste(bands[best], bands[best + 1]) > 0)
            break;
        bands[best] = united(bands[best], bands[best + 1]);
        bands.erase(bands.begin() + static_cast<std::ptrdiff_t>(best) + 1);
    }
    return bands;
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
    _planes->version = _version;
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

// The planes for the next picture, with this one's content.
void FrameCanvas::unshare()
{
    std::shared_ptr<PicturePlanes> fresh = _pool.take();
    catchUp(*fresh);
    _planes = std::move(fresh);
    _isShared = false;
}

void FrameCanvas::catchUp(PicturePlanes &planes) const
{
    const auto behind = static_cast<std::size_t>(_version - planes.version);
    if (planes.version == 0 || behind > _changes.size()) {
        copy({0, 0, _width, _height}, planes);
        return;
    }
    for (std::size_t i = _changes.size() - behind; i < _changes.size(); ++i)
        for (const PixelRect &part : _changes[i])
            copy(part, planes);
}

void FrameCanvas::copy(const PixelRect &part, PicturePlanes &to) const
{
    copyPart(_planes->y, to.y, lumaPart(part, _width));
    copyPart(_planes->u, to.u, chromaPart(part, _width));
    copyPart(_planes->v, to.v, chromaPart(part, _width));
}

bool FrameCanvas::isEqual(const PicturePlanes &former, const PixelRect &cell) const
{
    return isEqualPart(former.y, _planes->y, lumaPart(cell, _width)) &&
           isEqualPart(former.u, _planes->u, chromaPart(cell, _width)) &&
           isEqualPart(former.v, _planes->v, chromaPart(cell, _width));
}

std::vector<PixelRect> FrameCanvas::differences(const PicturePlanes &former, const PixelRect &part) const
{
    std::vector<PixelRect> bands;
    for (int y = 0; y < part.height; y += cellHeight) {
        PixelRect band;
        for (int x = 0; x < part.width; x += cellWidth) {
            const PixelRect cell{part.x + x, part.y + y, std::min(cellWidth, part.width - x),
                                 std::min(cellHeight, part.height - y)};
            if (!isEqual(former, cell))
                band = united(band, cell);
        }
        if (!isEmpty(band))
            bands.push_back(band);
    }
    return joined(std::move(bands));
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
        parts = std::span(&all, 1);
    }
    std::vector<PixelRect> targets;
    for (const PixelRect &part : parts)
        if (const PixelRect target = touchedContent(_placement, part); !isEmpty(target))
            targets.push_back(target);
    if (targets.empty() && !isNew)
        return {};
    const auto isLarge = [this](const PixelRect &part) { return area(part) * 4 >= area(_width, _height); };
    const bool isCompared = !isNew && std::ranges::any_of(targets, isLarge);
    const std::shared_ptr<const PicturePlanes> former = _planes;
    if (isNew || std::ranges::find(targets, canvas) != targets.end()) {
        // Full motion, the dearest case, needs nothing of the picture before.
        _planes = _pool.take();
        _isShared = false;
    } else if (_isShared || isCompared) {
        unshare();
    }
    if (isNew)
        clear();
    for (const PixelRect &target : targets) {
        if (_placement.isScaled)
            scale(picture, target);
        else
            convert(picture, target);
    }
    std::vector<PixelRect> changed;
    for (const PixelRect &target : targets) {
        const PixelRect part = translated(target, _placement.content.x, _placement.content.y);
        const auto differing =
            isCompared && isLarge(part) ? differences(*former, part) : std::vector<PixelRect>{part};
        changed.insert(changed.end(), differing.begin(), differing.end());
    }
    if (isNew)
        changed.assign(1, canvas);
    _planes->version = ++_version;
    _changes.push_back(changed);
    if (_changes.size() > rememberedChanges)
        _changes.pop_front();
    return changed;
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
