"""A tray host of the StatusNotifier kind: takes items in and tells who they are."""

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

WATCHER = "org.kde.StatusNotifierWatcher"
INTERFACE = f"""<node><interface name="{WATCHER}">
<method name="RegisterStatusNotifierItem"><arg direction="in" type="s"/></method>
<method name="RegisterStatusNotifierHost"><arg direction="in" type="s"/></method>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/>
<signal name="StatusNotifierHostRegistered"/>
</interface></node>"""


class Watcher(dbus.service.Object):
    def __init__(self, name):
        super().__init__(name, "/StatusNotifierWatcher")
        self.items = []

    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        self.items.append(sender)

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierHost(self, service):
        pass

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return self.GetAll(interface)[name]

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return {
            "IsStatusNotifierHostRegistered": True,
            "ProtocolVersion": 0,
            "RegisteredStatusNotifierItems": dbus.Array(self.items, "s"),
        }

    # A toolkit believes in a watcher only when it describes itself.
    @dbus.service.method(dbus.INTROSPECTABLE_IFACE, out_signature="s")
    def Introspect(self):
        return INTERFACE


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
watcher = Watcher(dbus.service.BusName(WATCHER, dbus.SessionBus(), do_not_queue=True))
print("ready", flush=True)
GLib.MainLoop().run()
