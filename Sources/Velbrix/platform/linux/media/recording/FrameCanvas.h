#pragma once

#include "platform/linux/media/recording/MovieRecorder.h"
#include "platform/linux/media/recording/PixelRects.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

namespace velbrix {

// The three planes of a picture in I420.
struct PicturePlanes {
    std::vector<std::uint8_t> y;
    std::vector<std::uint8_t> u;
    std::vector<std::uint8_t> v;
    std::int64_t version = 0; // of the canvas; 0 for none
};

// Planes of one size that are used again once nobody holds them.
class PicturePlanesPool {
public:
    PicturePlanesPool(int width, int height);

    // Their content is undefined, or an earlier picture. May be let go on any thread, also after the
    // pool has gone.
    std::shared_ptr<PicturePlanes> take();

private:
    struct Spares {
        std::mutex lock; // of what follows
        std::vector<std::unique_ptr<PicturePlanes>> planes;
    };

    const std::size_t _pixels;
    const std::shared_ptr<Spares> _spares;
};

// The picture of a movie: of one size for good, into which pictures of any
// size are fitted on black.
class FrameCanvas {
public:
    // Pixels, even.
    FrameCanvas(int width, int height);

    // Redraws what these parts of the picture show; returns the parts of the
    // canvas that may look different. Of large parts only what does: where a
    // compositor paints, all of the screen changes with every blink. After another size of the picture
    // everything must be drawn, whatever the parts are.
    std::vector<PixelRect> draw(const BitmapView &picture, std::span<const PixelRect> parts);
    // As it is until the next drawing.
    PictureView view() const { return view(nullptr); }
    // As it is now: the owner keeps it while the canvas goes on elsewhere.
    PictureView share();
    int width() const { return _width; }
    int height() const { return _height; }

private:
    PictureView view(std::shared_ptr<const void> owner) const;
    void unshare();
    void catchUp(PicturePlanes &planes) const;
    void copy(const PixelRect &part, PicturePlanes &to) const;
    std::vector<PixelRect> differences(const PicturePlanes &former, const PixelRect &part) const;
    bool isEqual(const PicturePlanes &former, const PixelRect &cell) const;
    void clear();
    void convert(const BitmapView &picture, const PixelRect &part);
    void scale(const BitmapView &picture, const PixelRect &part);
    void toPlanes(const std::uint8_t *pixels, int stride, const PixelRect &target);

    int _width;
    int _height;
    Placement _placement;
    PicturePlanesPool _pool;
    std::shared_ptr<PicturePlanes> _planes;
    bool _isShared = false;
    std::int64_t _version = 1;
    std::deque<std::vector<PixelRect>> _changes; // of the latest versions
    std::vector<std::uint8_t> _scaled;
};

} // namespace velbrix
