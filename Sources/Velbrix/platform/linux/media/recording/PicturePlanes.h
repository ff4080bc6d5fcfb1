#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace velbrix {

// The three planes of a picture in I420.
struct PicturePlanes {
    std::vector<std::uint8_t> y;
    std::vector<std::uint8_t> u;
    std::vector<std::uint8_t> v;
};

// Planes of one size that are used again once nobody holds them.
class PicturePlanesPool {
public:
    PicturePlanesPool(int width, int height);

    // Their content is undefined. May be let go on any thread, also after the
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

} // namespace velbrix
