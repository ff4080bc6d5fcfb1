#pragma once

#include "platform/linux/media/recording/MovieRecorder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace velbrix::test {

// A drawn screen in I420: a page of noise-like text with a bright box on it.
class TestPicture {
public:
    TestPicture(int width, int height)
        : _width(width), _height(height), _y(area()), _u(area() / 4, 128), _v(area() / 4, 128)
    {
        std::uint32_t random = 12345;
        for (std::uint8_t &luma : _y) {
            random = random * 1664525U + 1013904223U;
            luma = (random >> 24) > 200 ? 40 : 220;
        }
        _page = _y;
    }

    // The page moves up by whole rows.
    void scroll(int rows)
    {
        const auto by = static_cast<std::ptrdiff_t>(rows % _height) * _width;
        std::ranges::rotate_copy(_page, _page.begin() + by, _y.begin());
    }
    PixelRect box(int x, int y, int size, std::uint8_t luma)
    {
        for (int row = y; row < y + size; ++row)
            std::fill_n(_y.begin() + static_cast<std::ptrdiff_t>(row) * _width + x, size, luma);
        return {x, y, size, size};
    }
    void fill(std::uint8_t luma) { std::ranges::fill(_y, luma); }

    PixelRect all() const { return {0, 0, _width, _height}; }
    PictureView view() const { return {_y.data(), _u.data(), _v.data(), _width, _width / 2, {}}; }

private:
    std::size_t area() const { return static_cast<std::size_t>(_width) * static_cast<std::size_t>(_height); }

    int _width;
    int _height;
    std::vector<std::uint8_t> _y;
    std::vector<std::uint8_t> _u;
    std::vector<std::uint8_t> _v;
    std::vector<std::uint8_t> _page;
};

} // namespace velbrix::test
