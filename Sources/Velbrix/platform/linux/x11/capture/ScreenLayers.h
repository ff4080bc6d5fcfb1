#pragma once

#include "platform/linux/media/recording/StopSignal.h"
#include "platform/linux/x11/TopLevel.h"
#include "platform/linux/x11/capture/DamageTracker.h"
#include "platform/linux/x11/capture/LayerPainter.h"
#include "platform/linux/x11/capture/OwnWindows.h"

#include <QList>

#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

namespace velbrix {

// The screen without some windows. Where those lie ("holes") the picture is
// put together from what the other windows there contain; only these are
// redirected, and only while this lives. Coordinates of the root.
class ScreenLayers {
public:
    // The connection must have the ability to compose and outlive this.
    ScreenLayers(X11Connection &connection, const QList<quint32> &excludedClients, bool excludesOwnWindows);
    ~ScreenLayers();
    ScreenLayers(const ScreenLayers &) = delete;
    ScreenLayers &operator=(const ScreenLayers &) = delete;

    // Redirects what is needed and waits until it is painted.
    void start(const PixelRect &area, const StopSignal &stop);
    void handleEvent(const xcb_generic_event_t &event);

    // Whether something has happened to the windows since the last refresh.
    bool isStale() const { return _isStale; }
    // Follows what happened to the windows. Returns the parts of the area that
    // look different because of it. `taken` of the screen was taken while that
    // happened: an excluded window may be in there.
    std::vector<PixelRect> refresh(const PixelRect &area, std::span<const PixelRect> taken = {});
    const std::vector<PixelRect> &holes() const { return _holes; }

    void requestDamage();
    // What changed inside the holes.
    std::vector<PixelRect> collectDamage();

    // Paints a part of a hole into the pixmap, which begins where the area does.
    void compose(const PixelRect &part);
    xcb_pixmap_t pixmap() const { return _painter.pixmap(); }

private:
    struct Layer {
        WindowContent content;
        std::unique_ptr<DamageTracker> damage;
        bool isBeneath = false; // an excluded window
    };

    std::vector<PixelRect> unpainted(std::span<const PixelRect> formerHoles,
                                     std::span<const PixelRect> taken) const;
    std::vector<PixelRect> takePainted();
    void rebuild();
    std::vector<PixelRect> findHoles();
    std::vector<Layer> findLayers();
    void adopt(Layer &layer, std::vector<Layer> &former);
    void release(Layer &layer);
    std::optional<Layer> inspect(xcb_window_t window) const;

    X11Connection &_connection;
    const QList<quint32> _excludedClients;
    std::optional<OwnWindows> _ownWindows; // excluded as well
    PixelRect _area;
    std::vector<PixelRect> _holes;
    std::vector<Layer> _layers; // bottom to top
    std::set<xcb_window_t> _excluded;
    std::set<xcb_window_t> _altered; // whose pixmaps must be named again
    bool _isStale = true;
    bool _isRunning = false; // a first picture is being taken, or was
    // Of new holes: until its windows have painted what was covered, the
    // picture from before is the better one.
    std::vector<PixelRect> _unpainted;
    std::int64_t _paintedAt = 0;
    LayerPainter _painter;
};

} // namespace velbrix
