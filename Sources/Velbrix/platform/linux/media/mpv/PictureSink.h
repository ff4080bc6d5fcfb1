#pragma once

#include <QSize>

#include <cstdint>
#include <optional>

namespace velbrix {

// Where the pictures of a video go: blue, green, red, unused. One thread.
class PictureSink {
public:
    struct Canvas {
        std::uint8_t *bits = nullptr;
        std::size_t stride = 0;
        QSize size;
    };

    virtual ~PictureSink() = default;

    virtual void resize(QSize size) = 0;
    // To be painted completely; none while there is no room for one.
    virtual std::optional<Canvas> next() = 0;
    // What was painted into next() is the picture to show.
    virtual void present() = 0;
    // Shows the last picture once more.
    virtual void repaint() = 0;

    // Readable when there may be room again; -1 where there always is.
    virtual int descriptor() const = 0;
    // Looks for room; before waiting for the descriptor.
    virtual void collect() = 0;
};

} // namespace velbrix
