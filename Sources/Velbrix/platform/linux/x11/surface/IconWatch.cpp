#include "platform/linux/x11/surface/IconWatch.h"

#include "platform/linux/x11/Ewmh.h"

#include <xcb/damage.h>

#include <algorithm>

namespace velbrix {

namespace {

// An icon manager paints in several steps.
constexpr std::chrono::milliseconds rest{30};
// After this nobody moves the pointer over the icons any more.
constexpr std::chrono::seconds idle{5};

} // namespace

IconWatch::IconWatch(X11Connection &connection, Clock &clock, std::function<void()> changed)
    : _connection(connection),
      _clock(clock),
      _changed(std::move(changed)),
      _isAble(connection.has().composite && connection.has().damage && connection.hasTrueColor())
{
}

IconWatch::~IconWatch() = default;

void IconWatch::setActive(bool active)
{
    if (!_isAble || active == _isActive)
        return;
    _isActive = active;
    _soon.reset();
    _rest.reset();
    if (active) {
        findWindows();
        look();
    } else {
        _windows.clear();
        _others.clear();
    }
}

std::vector<PixelRect> IconWatch::parts() const
{
    std::vector<PixelRect> all;
    for (const auto &window : _windows)
        all.insert(all.end(), window->parts().begin(), window->parts().end());
    return all;
}

void IconWatch::handleEvent(const xcb_generic_event_t &event)
{
    if (!_isActive)
        return;
    const int type = eventType(event);
    if (type == _connection.damageEvent() + XCB_DAMAGE_NOTIFY) {
        lookSoon(rest);
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const xcb_atom_t atom = reinterpret_cast<const xcb_property_notify_event_t &>(event).atom;
        if (atom == _connection.atom("_NET_CLIENT_LIST"))
            _areWindowsStale = true;
        const bool isPicture = atom == _connection.atom("_XROOTPMAP_ID");
        for (const auto &window : _windows) {
            if (isPicture)
                window->forgetBackdrop();
        }
        if (_areWindowsStale || isPicture)
            lookSoon(rest);
    } else if (type == XCB_DESTROY_NOTIFY || type == XCB_UNMAP_NOTIFY || type == XCB_MAP_NOTIFY ||
               type == XCB_CONFIGURE_NOTIFY) {
        const xcb_window_t window = reinterpret_cast<const xcb_configure_notify_event_t &>(event).window;
        if (std::ranges::any_of(_windows, [window](const auto &each) { return each->id() == window; }))
            lookSoon(rest);
    }
}

void IconWatch::lookSoon(std::chrono::milliseconds delay)
{
    if (!_soon)
        _soon = _clock.after(delay, [this] {
            _soon.reset();
            if (std::exchange(_areWindowsStale, false))
                findWindows();
            look();
        });
}

void IconWatch::findWindows()
{
    const std::vector<xcb_window_t> managed = managedWindows(_connection);
    const std::set<xcb_window_t> clients(managed.begin(), managed.end());
    const auto isGone = [&clients](const auto &window) { return !clients.contains(window->id()); };
    const bool hasLost = std::erase_if(_windows, isGone) > 0;
    std::erase_if(_others, [&clients](xcb_window_t window) { return !clients.contains(window); });
    for (const xcb_window_t client : clients) {
        const auto isClient = [client](const auto &window) { return window->id() == client; };
        if (_others.contains(client) || std::ranges::any_of(_windows, isClient))
            continue;
        if (isOfType(_connection, client, {"_NET_WM_WINDOW_TYPE_DESKTOP"}))
            _windows.push_back(std::make_unique<IconWindow>(_connection, client));
        else
            _others.insert(client);
    }
    if (hasLost)
        _changed();
}

void IconWatch::look()
{
    if (_windows.empty())
        return;
    const XProperty picture = _connection.property(_connection.root(), "_XROOTPMAP_ID");
    const xcb_pixmap_t root = picture.type == XCB_ATOM_PIXMAP ? picture.value(0) : XCB_NONE;
    bool hasChanged = false;
    for (const auto &window : _windows) {
        const IconWindow::Look look = window->look(root, _clock.uptime());
        hasChanged = hasChanged || look == IconWindow::Look::changed;
        if (look == IconWindow::Look::doubtful)
            lookSoon(IconDebounce::pause);
    }
    _rest = _clock.after(idle, [this] {
        for (const auto &window : _windows)
            window->rest();
    });
    if (hasChanged)
        _changed();
}

} // namespace velbrix
