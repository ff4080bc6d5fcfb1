#include "platform/linux/archive/ArchiveWork.h"

#include <system_error>
#include <thread>

namespace velbrix {

void onTwoThreads(const std::function<void(std::size_t)> &work)
{
    std::thread second;
    try {
        second = std::thread([&work] { work(1); });
    } catch (const std::system_error &) {
    }
    work(0);
    if (second.joinable())
        second.join();
}

std::span<std::uint8_t> RawBytes::sized(std::size_t size)
{
    if (size > _capacity) {
        _bytes.reset();
        _bytes = std::make_unique_for_overwrite<std::uint8_t[]>(size);
        _capacity = size;
    }
    return {_bytes.get(), size};
}

} // namespace velbrix
