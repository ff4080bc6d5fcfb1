#pragma once

#include "platform/Displays.h"
#include "platform/linux/surface/Struts.h"
#include "platform/linux/surface/X11EventSource.h"

#include <QObject>

#include <map>
#include <memory>
#include <vector>

namespace velbrix {

// The monitors of RandR and what panels leave of them. Connects when it is
// first asked, and follows the server from then on.
class X11Displays final : public Displays {
public:
    X11Displays();
    ~X11Displays() override;

    QList<Display> displays() const override;
    void observe(std::function<void()> changed) override;

private:
    struct Client {
        bool isPanel = false;
        std::optional<Strut> strut;
    };

    void connect();
    void handleEvent(const xcb_generic_event_t &event);
    void update();
    void readClients();
    Client readClient(xcb_window_t window) const;
    QList<Display> readDisplays() const;
    QString nameOf(quint32 output, const QByteArray &connector) const;

    std::unique_ptr<X11EventSource> _events;
    QObject _context;
    std::map<xcb_window_t, Client> _clients;
    QList<Display> _displays;
    bool _areClientsStale = true;
    bool _isStale = false;
    std::vector<std::function<void()>> _observers;
};

} // namespace velbrix
