"""The program's window as an assistive technology sees it, operated by mouse and keyboard as a person would."""

import time

import dbus
import dbus.bus

from desktop import geometry, output_of, wait_until

ACCESSIBLE = "org.a11y.atspi.Accessible"
COMPONENT = "org.a11y.atspi.Component"
PROPERTIES = "org.freedesktop.DBus.Properties"
ENABLED, SHOWING = 8, 25
ON_SCREEN = dbus.UInt32(0)


def process_of(bus, owner):
    return int(bus.call_blocking(dbus.BUS_DAEMON_NAME, dbus.BUS_DAEMON_PATH, dbus.BUS_DAEMON_IFACE,
                                 "GetConnectionUnixProcessID", "s", (owner,)))


class Widget:
    def __init__(self, bus, owner, path):
        self._bus, self.owner, self._path = bus, owner, path

    def _ask(self, interface, method, *arguments):
        proxy = self._bus.get_object(self.owner, self._path, introspect=False)
        return proxy.get_dbus_method(method, interface)(*arguments)

    @property
    def name(self):
        return str(self._ask(PROPERTIES, "Get", ACCESSIBLE, "Name"))

    @property
    def role(self):
        return str(self._ask(ACCESSIBLE, "GetRoleName"))

    def has(self, state):
        words = self._ask(ACCESSIBLE, "GetState")
        return bool(words[state // 32] >> (state % 32) & 1)

    @property
    def extents(self):
        return tuple(int(number) for number in self._ask(COMPONENT, "GetExtents", ON_SCREEN))

    def children(self):
        return [Widget(self._bus, *reference) for reference in self._ask(ACCESSIBLE, "GetChildren")]


class Window:
    """The main window of the process."""

    def __init__(self, program, window):
        self.program, self.window = program, window
        session = dbus.SessionBus()
        address = session.get_object("org.a11y.Bus", "/org/a11y/bus").GetAddress(dbus_interface="org.a11y.Bus")
        self._bus = dbus.bus.BusConnection(address)
        self._root = wait_until(self._application, "the program is known to assistive technologies")

    def _application(self):
        registry = Widget(self._bus, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
        for application in registry.children():
            if process_of(self._bus, application.owner) == self.program.pid:
                return application
        return None

    def widgets(self):
        """Everything that shows, outer before inner."""
        waiting = [self._root]
        while waiting:
            widget = waiting.pop(0)
            try:
                children = widget.children()
                if widget is self._root or widget.has(SHOWING):
                    yield widget
                    waiting[:0] = children
            except dbus.DBusException:
                continue  # it went away while we were looking

    def find(self, name, role=None, prefix=False):
        for widget in self.widgets():
            try:
                told = widget.name
                if (told == name or prefix and told.startswith(name)) and role in (None, widget.role):
                    return widget
            except dbus.DBusException:
                continue
        return None

    def wait_for(self, name, role=None, seconds=20, prefix=False):
        return wait_until(lambda: self.find(name, role, prefix), f"{role or 'widget'} “{name}” shows", seconds)

    def wait_without(self, name, seconds=20):
        wait_until(lambda: not self.find(name), f"“{name}” has gone", seconds)

    def texts(self):
        return [widget.name for widget in self.widgets()]

    def click(self, name, role=None):
        widget = self.wait_for(name, role)
        wait_until(lambda: widget.has(ENABLED), f"“{name}” can be used")
        x, y, width, height = self._bring_into_view(widget)
        output_of("xdotool", "mousemove", x + width // 2, y + height // 2, "click", 1)

    def _bring_into_view(self, widget):
        window_x, window_y, window_width, window_height = geometry(self.window)
        output_of("xdotool", "mousemove", window_x + window_width - 60, window_y + window_height // 2)
        for _ in range(60):
            x, y, width, height = self._resting_place(widget)
            middle = y + height // 2
            if window_y + 20 <= middle <= window_y + window_height - 20:
                return x, y, width, height
            output_of("xdotool", "click", 5 if middle > window_y + window_height // 2 else 4)
        raise AssertionError(f"“{widget.name}” cannot be scrolled to")

    def _resting_place(self, widget):
        """A page that has just appeared still moves its widgets."""
        def rests():
            place = widget.extents
            time.sleep(0.1)
            return place == widget.extents and place

        return wait_until(rests, f"“{widget.name}” rests")
