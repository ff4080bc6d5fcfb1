#include "platform/linux/media/recording/PicturePlanes.h"

namespace velbrix {

PicturePlanesPool::PicturePlanesPool(int width, int height)
    : _pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      _spares(std::make_shared<Spares>())
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

} // namespace velbrix
