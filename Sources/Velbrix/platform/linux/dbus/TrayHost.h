#pragma once

#include "platform/linux/x11/QtX11.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

class QDBusServiceWatcher;

namespace velbrix {

// Whether the desktop shows tray icons: an XEmbed tray on the X server, or a
// watcher of status notifier items that has a host. The second is known a
// moment after creation. Main thread.
class TrayHost final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayHost();
    ~TrayHost() override;

    bool isPresent() const { return _hasXembed || _hasItemHost; }
    Q_SIGNAL void presenceChanged();

private:
    void watchXembed();
    void watchItemHosts();
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    Q_SLOT void askItemHost();
    void setXembed(bool present);
    void setItemHost(bool present);

    std::optional<QtX11Connection> _x11;
    xcb_atom_t _selection = XCB_ATOM_NONE;
    quint8 _selectionEvent = 0;
    quint64 _question = 0;
    bool _hasXembed = false;
    bool _hasItemHost = false;
};

} // namespace velbrix
