#include "platform/linux/x11/surface/DesktopLayer.h"

#include <algorithm>

namespace velbrix {

namespace {

// A window manager that has just started overlooks windows that are mapped
// meanwhile.
constexpr std::chrono::milliseconds managerStart{1000};

} // namespace

Result<std::shared_ptr<DesktopLayer>> DesktopLayer::shared()
{
    static std::weak_ptr<DesktopLayer> living;
    if (auto layer = living.lock())
        return layer;
    std::shared_ptr<DesktopLayer> layer(new DesktopLayer);
    DesktopLayer *const self = layer.get();
    auto events = X11EventSource::open([self](const xcb_generic_event_t &event) { self->handleEvent(event); },
                                       [self] { self->settle(); });
    if (!events)
        return std::unexpected(events.error());
    layer->_events = std::move(*events);
    X11Connection &connection = layer->connection();
    layer->_watch = std::make_unique<IconWatch>(connection, layer->_clock, [self] { self->updateIcons(); });
    connection.selectEvents(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    living = layer;
    return layer;
}

void DesktopLayer::add(DesktopLayerMember &member)
{
    _members.push_back(&member);
}

void DesktopLayer::remove(DesktopLayerMember &member)
{
    std::erase(_members, &member);
    refresh();
}

void DesktopLayer::refresh()
{
    _watch->setActive(std::ranges::any_of(_members, &DesktopLayerMember::showsIcons));
}

void DesktopLayer::handleEvent(const xcb_generic_event_t &event)
{
    _watch->handleEvent(event);
    for (DesktopLayerMember *member : _members)
        member->handleEvent(event);
    if (eventType(event) == XCB_PROPERTY_NOTIFY &&
        reinterpret_cast<const xcb_property_notify_event_t &>(event).atom ==
            connection().atom("_NET_SUPPORTING_WM_CHECK"))
        _managerSettles = _clock.after(managerStart, [this] {
            for (DesktopLayerMember *member : _members)
                member->managerChanged();
            connection().flush();
        });
}

void DesktopLayer::settle()
{
    const auto self = shared_from_this();
    const auto members = _members;
    for (DesktopLayerMember *member : members) {
        if (std::ranges::find(_members, member) != _members.end())
            member->settled();
    }
}

void DesktopLayer::updateIcons()
{
    _icons = _watch->parts();
    for (DesktopLayerMember *member : _members)
        member->iconsChanged();
    connection().flush();
}

} // namespace velbrix
