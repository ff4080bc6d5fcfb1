#pragma once

#include "platform/ScreenCapture.h"
#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/capture/FrameSource.h"
#include "platform/linux/x11/capture/ScreenLayers.h"

#include <memory>
#include <optional>

namespace velbrix {

// One monitor, possibly without some windows. It follows the monitor through
// changes of its mode and ends when the monitor stays away.
class DisplaySource final : public FrameSource {
public:
    // The connection must outlive the source.
    DisplaySource(X11Connection &connection, const CaptureFilter &filter);

    Result<void> start(const StopSignal &stop) override;
    void handleEvent(const xcb_generic_event_t &event) override;
    SourceUpdate update() override;
    bool isOutdated() const override { return _layers && _layers->isStale(); }
    BitmapView picture() const override { return _buffer.view(); }
    std::optional<PicturePoint> locate(const PointerState &pointer) const override;

private:
    bool findMonitor();
    std::vector<PixelRect> collectDamage();
    void queue(const PixelRect &part);

    X11Connection &_connection;
    const quint32 _displayId;
    std::unique_ptr<ScreenLayers> _layers;
    std::unique_ptr<DamageTracker> _damage;
    PixelRect _area;               // in the root
    std::vector<PixelRect> _taken; // of the screen with the last update, in the root
    GrabBuffer _buffer;
    bool _hasMemory = true;    // for the whole picture
    bool _isStale = true;      // monitors may have changed
    bool _isIncomplete = true; // the picture is to be fetched as a whole
    std::optional<std::int64_t> _missingSince;
};

} // namespace velbrix
