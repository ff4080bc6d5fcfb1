"""The tray's menu as a desktop shows it, and what its entries do."""

import pathlib
import sys
import unittest

import dbus

import movie
from desktop import ACCEPTED, DesktopTestCase, wait_until
from wallpaper import BLUE, RED, make_clip, wait_for_color
from widgets import process_of

ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
WATCHER = "org.kde.StatusNotifierWatcher"
TITLES = ["打开 Velbrix", "", "视频壁纸", "播放壁纸", "停止壁纸", "", "屏幕录制", "开始录制（全屏）", "打开录制面板", "",
          "隐私与声明…", "检查更新与公告…", "", "退出"]
DISABLED = {"视频壁纸", "播放壁纸", "停止壁纸", "屏幕录制"}


class TrayItem:
    def __init__(self, bus, owner):
        self._bus, self._owner = bus, owner

    def property(self, name):
        item = self._bus.get_object(self._owner, "/StatusNotifierItem", introspect=False)
        return item.Get(ITEM, name, dbus_interface=dbus.PROPERTIES_IFACE)

    def _menu(self):
        return dbus.Interface(self._bus.get_object(self._owner, self.property("Menu"), introspect=False), MENU)

    def entries(self):
        """(number, title, enabled) from top to bottom; a separator has no title."""
        _, layout = self._menu().GetLayout(0, -1, dbus.Array([], "s"))
        return [(number, str(values.get("label", "")).replace("_", ""), bool(values.get("enabled", True)))
                for number, values, _ in layout[2]]

    def titles(self):
        return [title for _, title, _ in self.entries()]

    def choose(self, title):
        number = next(number for number, found, _ in self.entries() if found == title)
        self._menu().Event(number, "clicked", dbus.String("", variant_level=1), dbus.UInt32(0))


class Tray(DesktopTestCase):
    def setUp(self):
        super().setUp()
        host = self.spawn(sys.executable, "-B", pathlib.Path(__file__).with_name("status_notifier.py"))
        self.assertEqual(host.stdout.readline(), "ready\n")

    def item(self, program):
        bus = dbus.SessionBus()
        watcher = bus.get_object(WATCHER, "/StatusNotifierWatcher")

        def found():
            owners = watcher.Get(WATCHER, "RegisteredStatusNotifierItems", dbus_interface=dbus.PROPERTIES_IFACE)
            return [str(owner) for owner in owners if bus.name_has_owner(owner)
                    and process_of(bus, owner) == program.pid]

        return TrayItem(bus, wait_until(found, "the icon joins the tray")[-1])

    def test_menu(self):
        program = self.start_hidden(recordSystemAudio=False)
        item = self.item(program)
        self.assertEqual(item.titles(), TITLES)
        self.assertEqual({title for _, title, enabled in item.entries() if title and not enabled}, DISABLED)
        self.assertTrue(item.property("IconPixmap") or item.property("IconName"))

        item.choose("开始录制（全屏）")
        program.wait_for_recording(1)
        wait_until(lambda: "停止当前录制" in item.titles(), "the entry turns into its opposite")
        self.assertNotIn("开始录制（全屏）", item.titles())
        item.choose("停止当前录制")
        program.wait_for_movie()
        wait_until(lambda: item.titles() == TITLES, "the entry turns back")

        item.choose("打开 Velbrix")
        program.wait_for_window()

    def test_wallpaper(self):
        clip = make_clip(self.home / "loop.mp4", RED, BLUE)
        self.write_settings(ACCEPTED | {"Velbrix_Privacy_consent_videoWallpaper": True,
                                        "VelbClean_LastVideoPath": clip, "VelbClean_WallpaperAutoPlay": False})
        item = self.item(self.start("--background"))
        for title, then, color in (("播放壁纸", "暂停壁纸", RED), ("暂停壁纸", "继续播放壁纸", None),
                                   ("继续播放壁纸", "暂停壁纸", BLUE), ("停止壁纸", "播放壁纸", None)):
            item.choose(title)
            wait_until(lambda: then in item.titles(), f"{title} turns into {then}")
            if color:
                wait_for_color(500, 600, color)
        self.assertIn("停止壁纸", {title for _, title, enabled in item.entries() if not enabled})

    def test_quit(self):
        program = self.start_hidden()
        item = self.item(program)
        item.choose("退出")
        self.assertEqual(program.process.wait(10), 0)

    def test_quit_while_recording(self):
        program = self.start_hidden()
        item = self.item(program)
        item.choose("开始录制（全屏）")
        program.wait_for_recording(1)
        made = program.status()["file"]
        item.choose("退出")
        self.assertEqual(program.process.wait(10), 0)
        self.assertGreaterEqual(movie.probe(made)[1], 1)


if __name__ == "__main__":
    unittest.main(verbosity=2)
