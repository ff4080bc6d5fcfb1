#include "platform/linux/x11/X11EventSource.h"

#include <QAbstractEventDispatcher>

namespace velbrix {

namespace {

XReply<xcb_generic_event_t> received(xcb_connection_t *connection)
{
    return XReply<xcb_generic_event_t>(xcb_poll_for_event(connection));
}

// Without looking at the socket.
XReply<xcb_generic_event_t> queued(xcb_connection_t *connection)
{
    return XReply<xcb_generic_event_t>(xcb_poll_for_queued_event(connection));
}

} // namespace

Result<std::unique_ptr<X11EventSource>> X11EventSource::open(Handler handle, std::function<void()> settled)
{
    auto connection = X11Connection::open();
    if (!connection)
        return std::unexpected(connection.error());
    return std::unique_ptr<X11EventSource>(
        new X11EventSource(std::move(*connection), std::move(handle), std::move(settled)));
}

X11EventSource::X11EventSource(std::unique_ptr<X11Connection> connection, Handler handle,
                               std::function<void()> settled)
    : _connection(std::move(connection)),
      _handle(std::move(handle)),
      _settled(std::move(settled)),
      _readable(xcb_get_file_descriptor(_connection->xcb()), QSocketNotifier::Read)
{
    QObject::connect(&_readable, &QSocketNotifier::activated, &_context, [this] { deliver(received); });
    // A reply that was waited for may have left events in the queue, of which
    // the socket says nothing more. A loop that does not wait only awakes.
    const auto *loop = QAbstractEventDispatcher::instance();
    for (const auto turn : {&QAbstractEventDispatcher::aboutToBlock, &QAbstractEventDispatcher::awake})
        QObject::connect(loop, turn, &_context, [this] { deliver(queued); });
}

X11EventSource::~X11EventSource() = default;

void X11EventSource::deliver(XReply<xcb_generic_event_t> (*next)(xcb_connection_t *))
{
    if (*_isDelivering)
        return;
    // Outlived by a weak copy, the flag also tells whether a handler has
    // destroyed this.
    const std::weak_ptr<bool> life = _isDelivering;
    *_isDelivering = true;
    bool isBatch = false;
    while (const auto event = next(_connection->xcb())) {
        isBatch = true;
        const Handler handle = _handle;
        handle(*event);
        if (life.expired())
            return;
        next = queued;
    }
    if (isBatch && _settled) {
        const auto settled = _settled;
        settled();
        if (life.expired())
            return;
    }
    *_isDelivering = false;
    _connection->flush();
    // A lost server leaves the socket readable for ever.
    if (!_connection->isAlive())
        _readable.setEnabled(false);
}

} // namespace velbrix
