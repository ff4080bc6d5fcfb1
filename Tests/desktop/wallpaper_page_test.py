"""The wallpaper's page, used by mouse: a video from the folder, with the consent it needs, paused and stopped."""

import unittest

from desktop import ACCEPTED, DesktopTestCase, output_of, press, wait_until
from wallpaper import BLUE, GREEN, RED, make_clip, wait_for_color
from widgets import Window

# Beside the main window.
PLACE = (60, 700)


class WallpaperPage(DesktopTestCase):
    def open(self, **settings):
        self.write_settings(ACCEPTED | {"VelbClean_WallpaperFolder": str(self.movies)} | settings)
        self.program = self.start()
        self.window = Window(self.program, self.program.wait_for_window())

    def displays(self):
        return self.program.do("wallpaper", "status")["displays"]

    def test_from_the_folder_to_the_desktop(self):
        make_clip(self.movies / "loop.mp4", RED, BLUE)
        (self.movies / "broken.mp4").write_text("no video")
        self.open()
        self.window.wait_for("还没有选择壁纸视频")
        self.window.click("loop.mp4，MP4 视频")
        self.window.click("设为壁纸")
        # Nothing plays before the user has agreed.
        self.window.wait_for("视频壁纸隐私确认")
        self.assertFalse(self.displays()[0]["playing"])
        self.window.click("同意并继续")
        wait_for_color(*PLACE, RED)
        wait_for_color(*PLACE, BLUE)

        self.window.click("暂停")
        wait_until(lambda: self.program.do("wallpaper", "status")["paused"], "it is paused")
        self.window.click("继续")
        wait_until(lambda: not self.program.do("wallpaper", "status")["paused"], "it goes on")

        # A broken file is told and leaves the wallpaper alone.
        self.window.click("broken.mp4，无法读取")
        self.window.click("设为壁纸")
        self.window.wait_for("无法播放。", prefix=True)
        self.window.wait_for("broken.mp4 · 原来的壁纸仍在播放")
        wait_for_color(*PLACE, RED)
        self.window.click("知道了")
        self.window.click("停止")
        wait_until(lambda: not self.displays()[0]["playing"], "it is stopped")

    def test_hidden_behind_a_full_screen_window(self):
        clip = make_clip(self.movies / "loop.mp4", RED, BLUE)
        self.open(Velbrix_Privacy_consent_videoWallpaper=True)
        self.program.do("wallpaper", "set", clip)
        wait_for_color(*PLACE, RED)
        cover = self.color_window("cover", "%02X%02X%02X" % GREEN, 100, 100, 300, 200)
        output_of("wmctrl", "-i", "-r", hex(cover), "-b", "add,fullscreen")
        wait_for_color(*PLACE, GREEN)
        output_of("wmctrl", "-i", "-c", hex(cover))
        wait_for_color(*PLACE, RED)
        wait_for_color(*PLACE, BLUE)

    def test_tidy_desktop(self):
        self.open(Velbrix_WallpaperHideDesktopIconsEnabled=True)
        # Nothing to cover the icons with, and no panel on this desktop: both are said.
        press("ctrl+alt+h")
        self.window.wait_for("当前桌面（Openbox）没有可以自动隐藏的 Dock 或面板")


if __name__ == "__main__":
    unittest.main(verbosity=2)
