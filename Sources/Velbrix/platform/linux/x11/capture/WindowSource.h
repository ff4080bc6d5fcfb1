#pragma once

#include "platform/linux/x11/TopLevel.h"
#include "platform/linux/x11/capture/DamageTracker.h"
#include "platform/linux/x11/capture/FrameSource.h"

#include <QImage>
#include <QSize>

#include <memory>

namespace velbrix {

// One window with its decorations, wherever it is and whatever lies above it.
// While it is not shown (minimised, on another workspace) the last picture
// stays. It ends with the window.
class WindowSource final : public FrameSource {
public:
    // The connection must outlive the source.
    WindowSource(X11Connection &connection, xcb_window_t client);
    ~WindowSource() override;

    Result<void> start(const StopSignal &stop) override;
    void handleEvent(const xcb_generic_event_t &event) override;
    SourceUpdate update() override;
    BitmapView picture() const override { return _buffer.view(); }
    std::optional<PicturePoint> locate(const PointerState &pointer) const override;

private:
    void handleConfigure(const xcb_configure_notify_event_t &event);
    void follow(const TopLevel &found);
    void letGo();
    void refresh();
    bool namePixmap();
    std::vector<PixelRect> changedParts();
    bool grab(const std::vector<PixelRect> &parts);

    X11Connection &_connection;
    const xcb_window_t _client;
    TopLevel _topLevel;
    PixelRect _crop; // in the pixmap
    xcb_pixmap_t _pixmap = XCB_NONE;
    std::unique_ptr<DamageTracker> _damage;
    GrabBuffer _buffer;
    bool _isStale = true;      // the pixmap may not be the window's any more
    bool _isShown = false;     // as of the last refresh
    bool _isIncomplete = true; // the picture is to be fetched as a whole
    bool _isDestroyed = false;
    bool _hasMemory = true; // for the whole picture
};

// One picture of the window alone, fitted into the size with its aspect kept.
// Blocks, up to 100 ms for a window that is covered.
Result<QImage> takeWindowPicture(const X11Abilities &allowed, quint32 windowId, QSize size);

} // namespace velbrix
