"""The wallpaper on battery power: stopped by the unplugged mains and brought back by them."""

import os
import subprocess
import sys
import unittest

import dbus
import dbus.bus

from desktop import ACCEPTED, REFUSED, DesktopTestCase, wait_until
from wallpaper import BLUE, RED, color_at, is_near, make_clip, wait_for_color

UPOWER = "org.freedesktop.UPower"
PLACE = (500, 600)
STOPPED = "当前正在使用电池：壁纸已停止，接上电源后可自动恢复"


class Battery(DesktopTestCase):
    def setUp(self):
        super().setUp()
        # A system bus of our own, on which a made-up power service answers.
        daemon = self.spawn("dbus-daemon", "--session", "--nofork", "--print-address=1")
        self.system = {"DBUS_SYSTEM_BUS_ADDRESS": daemon.stdout.readline().strip()}
        service = subprocess.Popen([sys.executable, "-m", "dbusmock", "--system", "--template", "upower"],
                                   env=os.environ | self.system, stdout=subprocess.DEVNULL)
        self.addCleanup(service.wait)
        self.addCleanup(service.terminate)
        bus = dbus.bus.BusConnection(self.system["DBUS_SYSTEM_BUS_ADDRESS"])
        self.addCleanup(bus.close)
        wait_until(lambda: bus.name_has_owner(UPOWER), "the power service answers")
        self.power = bus.get_object(UPOWER, "/org/freedesktop/UPower")
        self.own = color_at(*PLACE)

    def set_battery(self, on):
        self.power.UpdateProperties(UPOWER, {"OnBattery": dbus.Boolean(on)},
                                    dbus_interface="org.freedesktop.DBus.Mock")

    def test_unplugged_and_plugged(self):
        self.write_settings(ACCEPTED | {"Velbrix_Privacy_consent_videoWallpaper": True})
        program = self.start("--background", env=self.system)
        program.do("wallpaper", "set", make_clip(self.home / "loop.mp4", RED, BLUE))
        wait_for_color(*PLACE, RED)

        self.set_battery(True)
        wait_until(lambda: is_near(color_at(*PLACE), self.own), "the desktop is the user's again")
        status = program.do("wallpaper", "status")
        self.assertTrue(status["onBattery"])
        self.assertFalse(any(display["playing"] for display in status["displays"]))
        refused = program.ask("wallpaper", "play")
        self.assertEqual((refused["exitCode"], refused["error"]), (REFUSED, STOPPED))

        self.set_battery(False)
        wait_for_color(*PLACE, RED)
        wait_for_color(*PLACE, BLUE)
        log = program.log.read_text()
        for line in ("power source monitor started", "AC unplugged → stop wallpaper (save battery)",
                     "AC restored → resume wallpaper"):
            self.assertIn(f"[Wallpaper] {line}\n", log)

    def test_started_on_battery(self):
        clip = make_clip(self.home / "loop.mp4", RED, BLUE)
        self.set_battery(True)
        self.write_settings(ACCEPTED | {"Velbrix_Privacy_consent_videoWallpaper": True,
                                        "VelbClean_LastVideoPath": clip})
        program = self.start("--background", env=self.system)
        wait_until(lambda: "autoRestore skipped: on battery" in program.log.read_text(), "nothing is restored")
        self.assertTrue(is_near(color_at(*PLACE), self.own))
        self.set_battery(False)
        wait_for_color(*PLACE, RED)


if __name__ == "__main__":
    unittest.main(verbosity=2)
