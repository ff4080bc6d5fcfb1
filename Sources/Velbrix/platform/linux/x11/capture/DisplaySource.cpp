#include "platform/linux/x11/capture/DisplaySource.h"

#include "platform/linux/media/recording/MonotonicTime.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

DisplaySource::DisplaySource(X11Connection &connection, const CaptureFilter &filter)
    : _connection(connection), _displayId(filter.displayId), _buffer(connection)
{
    connection.selectEvents(connection.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    followMonitors(connection);
    const bool excludes = filter.excludesOwnWindows || !filter.excludedWindows.isEmpty();
    if (excludes && connection.has().composite)
        _layers =
            std::make_unique<ScreenLayers>(connection, filter.excludedWindows, filter.excludesOwnWindows);
}

Result<void> DisplaySource::start(const StopSignal &stop)
{
    if (!_connection.hasTrueColor())
        return failure(u"屏幕的颜色格式不受支持"_s);
    if (!findMonitor())
        return failure(u"找不到要录制的显示器"_s);
    if (_connection.has().damage)
        _damage = std::make_unique<DamageTracker>(_connection, _connection.root());
    if (_layers)
        _layers->start(_area, stop);
    return {};
}

void DisplaySource::handleEvent(const xcb_generic_event_t &event)
{
    if (concernsMonitors(_connection, event))
        _isStale = true;
    if (eventType(event) == XCB_CONFIGURE_NOTIFY &&
        reinterpret_cast<const xcb_configure_notify_event_t &>(event).window == _connection.root())
        _isStale = true;
    if (_layers)
        _layers->handleEvent(event);
}

bool DisplaySource::findMonitor()
{
    const std::vector<Monitor> all = monitors(_connection);
    const auto monitor = std::ranges::find(all, _displayId, &Monitor::id);
    _isStale = monitor == all.end();
    if (_isStale)
        return false;
    if (monitor->rect != _area) {
        _area = monitor->rect;
        _hasMemory = _buffer.resize(_area.width, _area.height);
        _isIncomplete = true;
    }
    return true;
}

SourceUpdate DisplaySource::update()
{
    // A change of modes may take a monitor away for a moment.
    constexpr std::int64_t patience = 2'000'000'000;
    if (_isStale && !findMonitor()) {
        const std::int64_t now = monotonicNow();
        if (now - _missingSince.value_or(now) > patience)
            return {FrameStatus::stopped, {}, Failure{u"正在录制的显示器已断开"_s}};
        _missingSince = _missingSince.value_or(now);
        return {FrameStatus::blank, {}, {}};
    }
    _missingSince.reset();
    if (!_hasMemory)
        return outOfMemory();

    std::vector<PixelRect> changed = collectDamage();
    if (std::exchange(_isIncomplete, false) || !_damage)
        changed.assign(1, _area);
    changed = simplified(std::move(changed));
    if (changed.empty())
        return {};
    for (const PixelRect &part : changed)
        queue(part);
    if (!_buffer.collect()) {
        _isStale = true;
        _isIncomplete = true;
        return {FrameStatus::blank, {}, {}};
    }
    for (PixelRect &part : changed)
        part = translated(part, -_area.x, -_area.y);
    return {FrameStatus::complete, std::move(changed), {}};
}

// In coordinates of the root, inside the monitor.
std::vector<PixelRect> DisplaySource::collectDamage()
{
    std::vector<PixelRect> changed;
    if (_layers)
        changed = _layers->refresh(_area, std::exchange(_taken, {}));
    if (_damage)
        _damage->request();
    if (_layers)
        _layers->requestDamage();
    if (_damage) {
        for (const PixelRect &rect : _damage->collect()) {
            const PixelRect part = intersected(rect, _area);
            // In the holes the screen shows the excluded windows.
            const auto visible = _layers ? subtracted(part, _layers->holes()) : std::vector{part};
            changed.insert(changed.end(), visible.begin(), visible.end());
        }
    }
    if (_layers) {
        const std::vector<PixelRect> beneath = _layers->collectDamage();
        changed.insert(changed.end(), beneath.begin(), beneath.end());
    }
    return changed;
}

void DisplaySource::queue(const PixelRect &part)
{
    const bool hasHoles = _layers && !_layers->holes().empty();
    const auto plain = hasHoles ? subtracted(part, _layers->holes()) : std::vector{part};
    if (_layers)
        _taken.insert(_taken.end(), plain.begin(), plain.end());
    for (const PixelRect &rect : plain)
        _buffer.queue(_connection.root(), rect.x, rect.y, translated(rect, -_area.x, -_area.y), !hasHoles);
    if (!hasHoles)
        return;
    for (const PixelRect &hole : _layers->holes()) {
        const PixelRect rect = intersected(part, hole);
        if (isEmpty(rect))
            continue;
        _layers->compose(rect);
        const PixelRect target = translated(rect, -_area.x, -_area.y);
        _buffer.queue(_layers->pixmap(), target.x, target.y, target, false);
    }
}

std::optional<PicturePoint> DisplaySource::locate(const PointerState &pointer) const
{
    return PicturePoint{pointer.x - _area.x, pointer.y - _area.y};
}

} // namespace velbrix
