#pragma once

#include "platform/linux/media/mpv/PictureSink.h"
#include "platform/linux/x11/ShmSegment.h"
#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/surface/DesktopWindow.h"
#include "platform/linux/x11/surface/ScaledPicture.h"

#include <array>
#include <memory>

namespace velbrix {

// Puts pictures into a window of the X server. Two of them share memory with
// it: one is painted while the server still reads the other. No picture is
// larger than 2560×1440; the server enlarges it where the window is. It may
// outlive the window: what is painted then is not seen anywhere.
class WindowSink final : public PictureSink {
public:
    static Result<std::unique_ptr<WindowSink>> open(const DesktopWindow &window);
    // Of the pictures in a window of this size.
    static QSize pictureSize(QSize window);
    ~WindowSink() override;

    void resize(QSize size) override;
    std::optional<Canvas> next() override;
    void present() override;
    void repaint() override;
    int descriptor() const override;
    void collect() override;

private:
    struct Buffer {
        std::unique_ptr<ShmSegment> memory;
        QSize size;
        int reads = 0; // of the server, not yet completed
    };

    WindowSink(std::unique_ptr<X11Connection> connection, const DesktopWindow &window);
    void put(Buffer &buffer);

    const std::shared_ptr<const X11Connection> _numberKeeper; // closed after our own
    const std::unique_ptr<X11Connection> _connection;
    const xcb_window_t _window;
    const xcb_gcontext_t _context;
    QSize _size;                            // of the window
    QSize _painted;                         // of the pictures
    std::unique_ptr<ScaledPicture> _scaled; // none while they are equal
    std::array<Buffer, 2> _buffers;
    std::size_t _shown = 0;
    bool _hasPicture = false;
};

} // namespace velbrix
