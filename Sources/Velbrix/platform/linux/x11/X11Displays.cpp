#include "platform/linux/x11/X11Displays.h"

#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/MonitorNames.h"
#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/Struts.h"
#include "platform/linux/x11/X11EventSource.h"

#include <xcb/randr.h>

#include <algorithm>
#include <map>
#include <set>

using namespace Qt::StringLiterals;

namespace velbrix {

// One look at the server and all that follow. Without a server there are no
// displays.
class X11Displays::Watcher {
public:
    explicit Watcher(std::function<void()> changed);

    const QList<Display> &displays() const { return _displays; }

private:
    void handleEvent(const xcb_generic_event_t &event);
    void update();
    void readClients();
    std::optional<Strut> readClient(xcb_window_t window) const;
    QList<Display> readDisplays() const;
    QString nameOf(quint32 output, const QByteArray &connector) const;

    const std::function<void()> _changed;
    std::unique_ptr<X11EventSource> _events;
    std::map<xcb_window_t, std::optional<Strut>> _clients; // with what they reserve
    QList<Display> _displays;
    bool _areClientsStale = true;
    bool _isStale = false;
};

X11Displays::X11Displays() = default;
X11Displays::~X11Displays() = default;

X11Displays::Watcher &X11Displays::watcher() const
{
    if (!_watcher)
        _watcher = std::make_unique<Watcher>([this] { _observers.notify(); });
    return *_watcher;
}

QList<Display> X11Displays::displays() const
{
    return watcher().displays();
}

Observation X11Displays::observe(std::function<void()> changed)
{
    // Not during the program's start.
    QMetaObject::invokeMethod(&_context, [this] { watcher(); }, Qt::QueuedConnection);
    return _observers.add(std::move(changed));
}

X11Displays::Watcher::Watcher(std::function<void()> changed) : _changed(std::move(changed))
{
    auto events = X11EventSource::open([this](const xcb_generic_event_t &event) { handleEvent(event); },
                                       [this] { update(); });
    if (!events)
        return;
    _events = std::move(*events);
    X11Connection &connection = _events->connection();
    connection.selectEvents(connection.root(),
                            XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    followMonitors(connection);
    readClients();
    _displays = readDisplays();
}

void X11Displays::Watcher::handleEvent(const xcb_generic_event_t &event)
{
    X11Connection &connection = _events->connection();
    const int type = eventType(event);
    if (type == XCB_CONFIGURE_NOTIFY || concernsMonitors(connection, event))
        _isStale = true;
    if (type != XCB_PROPERTY_NOTIFY)
        return;
    const auto &notify = reinterpret_cast<const xcb_property_notify_event_t &>(event);
    const auto is = [&](const char *name) { return notify.atom == connection.atom(name); };
    if (notify.window == connection.root()) {
        // Whoever sets the work area has seen a new strut of any window.
        if (is("_NET_WORKAREA"))
            _clients.clear();
        _areClientsStale = _areClientsStale || is("_NET_CLIENT_LIST") || is("_NET_WORKAREA");
    } else if (is("_NET_WM_STRUT_PARTIAL") || is("_NET_WM_STRUT")) {
        _clients.erase(notify.window);
        _areClientsStale = true;
    }
}

void X11Displays::Watcher::update()
{
    if (!_isStale && !_areClientsStale)
        return;
    _isStale = false;
    if (_areClientsStale)
        readClients();
    QList<Display> now = readDisplays();
    if (now == _displays)
        return;
    _displays = std::move(now);
    _changed();
}

void X11Displays::Watcher::readClients()
{
    _areClientsStale = false;
    X11Connection &connection = _events->connection();
    const std::vector<xcb_window_t> windows = managedWindows(connection);
    const std::set<xcb_window_t> listed(windows.begin(), windows.end());
    std::erase_if(_clients, [&listed](const auto &client) { return !listed.contains(client.first); });
    for (const xcb_window_t window : listed) {
        if (!_clients.contains(window))
            _clients.emplace(window, readClient(window));
    }
}

std::optional<Strut> X11Displays::Watcher::readClient(xcb_window_t window) const
{
    X11Connection &connection = _events->connection();
    // Only panels are worth being woken for; before the reading, so that no
    // change falls between.
    if (isOfType(connection, window, {"_NET_WM_WINDOW_TYPE_DOCK"}))
        connection.selectEvents(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    return readStrut(connection, window);
}

QList<Display> X11Displays::Watcher::readDisplays() const
{
    X11Connection &connection = _events->connection();
    const std::vector<Monitor> all = monitors(connection);
    const Monitor *const main = mainMonitor(all);
    const auto root = connection.geometry(connection.root());
    const QSize rootSize = root ? QSize(root->width, root->height) : QSize();
    std::vector<Strut> struts;
    for (const auto &[window, strut] : _clients) {
        if (strut)
            struts.push_back(*strut);
    }
    QList<Display> found;
    for (const Monitor &monitor : all) {
        const QRect frame(monitor.rect.x, monitor.rect.y, monitor.rect.width, monitor.rect.height);
        const Display display{.id = monitor.id,
                              .name = nameOf(monitor.firstOutput, monitor.connector),
                              .isMain = &monitor == main,
                              .frame = frame,
                              .visibleFrame = visibleFrame(frame, rootSize, struts)};
        found.insert(display.isMain ? 0 : found.size(), display);
    }
    return found;
}

QString X11Displays::Watcher::nameOf(quint32 output, const QByteArray &connector) const
{
    X11Connection &connection = _events->connection();
    const QString socket = QString::fromUtf8(connector);
    if (output == 0)
        return socket;
    constexpr std::uint32_t words = 64;
    const XReply<xcb_randr_get_output_property_reply_t> edid(xcb_randr_get_output_property_reply(
        connection.xcb(),
        xcb_randr_get_output_property(connection.xcb(), output, connection.atom("EDID"),
                                      XCB_GET_PROPERTY_TYPE_ANY, 0, words, 0, 0),
        nullptr));
    if (!edid)
        return socket;
    const QString name =
        edidName(QByteArray(reinterpret_cast<const char *>(xcb_randr_get_output_property_data(edid.get())),
                            xcb_randr_get_output_property_data_length(edid.get())));
    return name.isEmpty() ? socket : u"%1（%2）"_s.arg(name, socket);
}

} // namespace velbrix
