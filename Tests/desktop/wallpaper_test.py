"""A video behind the desktop's icons: seen, moving, clickable through, covered, on two displays, put away again."""

import os
import time
import unittest

from desktop import ACCEPTED, REFUSED, DesktopTestCase, output_of, press, wait_until
from wallpaper import (BLUE, GREEN, RED, IconManager, Shot, color_at, hanging_disk, is_near, make_clip, make_sound,
                       wait_for_color)

# Pixels of the icons in the upper left corner lie in here.
ICONS = (0, 0, 130, 260)
FAR_LEFT, FAR_RIGHT = (500, 600), (1000, 600)
BESIDE_WINDOW = (50, 600)


class Wallpaper(DesktopTestCase):
    def start_hidden(self, **settings):
        self.write_settings(ACCEPTED | {"Velbrix_Privacy_consent_videoWallpaper": True} | settings)
        return self.start("--background")

    def clip(self, name, *colors, **options):
        return make_clip(self.home / f"{name}.mp4", *colors, **options)

    def two_displays(self):
        output_of("xrandr", "--setmonitor", "left", "640/170x800/212+0+0", "screen")
        output_of("xrandr", "--setmonitor", "right", "640/170x800/212+640+0", "none")
        self.addCleanup(output_of, "xrandr", "--delmonitor", "right", check=False)
        self.addCleanup(output_of, "xrandr", "--delmonitor", "left", check=False)

    def icon_pixels(self):
        """Where the icons are: what differs from the plain desktop beside them."""
        shot = Shot()
        plain = shot.at(*FAR_LEFT)
        x, y, width, height = ICONS
        return shot, [(column, row) for row in range(y, y + height) for column in range(x, x + width)
                      if not is_near(shot.at(column, row), plain, 60)]

    def shown(self, before, places):
        """Which part of the icons' pixels can be seen."""
        now = Shot()
        return sum(is_near(now.at(*place), before.at(*place), 40) for place in places) / len(places)

    def test_behind_the_icons(self):
        IconManager(self, "one.txt", "two.txt")
        wait_until(lambda: len(self.icon_pixels()[1]) > 300, "the icons are drawn")
        before, icons = self.icon_pixels()
        program = self.start_hidden(Velbrix_WallpaperHideDesktopIconsEnabled=True)
        program.do("wallpaper", "set", self.clip("loop", RED, BLUE))

        # It moves, in the middle and between the icons, over several loops.
        for _ in range(3):
            wait_for_color(*FAR_RIGHT, RED)
            wait_for_color(*FAR_RIGHT, BLUE)
        wait_for_color(300, 30, RED)
        wait_until(lambda: self.shown(before, icons) > 0.9, "the icons are seen over the video")

        # Clicking an icon selects it: it is drawn otherwise.
        x, y = icons[len(icons) // 4]
        output_of("xdotool", "mousemove", x, y, "click", 1)
        wait_until(lambda: self.shown(before, icons) < 0.9, "the click reaches the icon")
        output_of("xdotool", "mousemove", 600, 500, "click", 1)
        wait_until(lambda: self.shown(before, icons) > 0.9, "a click beside deselects it")

        press("ctrl+alt+d")
        wait_until(lambda: self.shown(before, icons) < 0.1, "the icons are covered")
        output_of("xdotool", "mousemove", x, y, "click", "--repeat", 2, 1)
        press("ctrl+alt+d")
        wait_until(lambda: self.shown(before, icons) > 0.9, "the icons are back and were not clicked")

        program.do("wallpaper", "stop")
        wait_until(lambda: is_near(color_at(*FAR_RIGHT), before.at(*FAR_RIGHT)), "the desktop is the user's again")

    def test_two_displays(self):
        self.two_displays()
        program = self.start_hidden()
        wait_until(lambda: len(program.do("wallpaper", "status")["displays"]) == 2, "both displays are known")
        program.do("wallpaper", "set", self.clip("main", RED, BLUE))
        for x, y in (FAR_LEFT, FAR_RIGHT):
            wait_for_color(x, y, RED)
            wait_for_color(x, y, BLUE)
        program.do("wallpaper", "set", self.clip("own", GREEN), "--display", "2")
        wait_for_color(*FAR_RIGHT, GREEN)
        wait_for_color(*FAR_LEFT, RED)

        # The right one is unplugged in mid-play and comes back with its own video.
        output_of("xrandr", "--delmonitor", "right")
        wait_until(lambda: not is_near(color_at(*FAR_RIGHT), GREEN), "the window goes with its display")
        wait_for_color(*FAR_LEFT, BLUE)
        output_of("xrandr", "--setmonitor", "right", "640/170x800/212+640+0", "none")
        wait_for_color(*FAR_RIGHT, GREEN)
        displays = program.do("wallpaper", "status")["displays"]
        self.assertEqual([display["playing"] for display in displays], [True, True])

    def test_pause_and_play(self):
        program = self.start_hidden()
        program.do("wallpaper", "set", self.clip("loop", RED, BLUE))
        wait_for_color(*FAR_LEFT, RED)
        program.do("wallpaper", "pause")
        self.assertTrue(program.do("wallpaper", "status")["paused"])
        still = color_at(*FAR_LEFT)
        for _ in range(5):
            time.sleep(0.3)
            self.assertTrue(is_near(color_at(*FAR_LEFT), still))
        program.do("wallpaper", "play")
        wait_for_color(*FAR_LEFT, BLUE)
        wait_for_color(*FAR_LEFT, RED)

    def test_bad_files(self):
        program = self.start_hidden()
        program.do("wallpaper", "set", self.clip("good", RED, BLUE))
        text = self.home / "text.mp4"
        text.write_text("this is no video\n" * 100)
        empty = self.home / "empty.mp4"
        empty.touch()
        sound = make_sound(self.home / "sound.mp4")
        for path, words in ((text, "无法读取视频："), (empty, "无法读取视频："), (self.home / "none.mp4", "无法读取视频："),
                            (self.home, "无法读取视频："), (sound, "视频中没有画面轨道")):
            answer = program.ask("wallpaper", "set", str(path))
            self.assertEqual(answer["exitCode"], REFUSED, path)
            self.assertTrue(answer["error"].startswith(words), answer)
            # The good one goes on.
            wait_for_color(*FAR_LEFT, RED)
            wait_for_color(*FAR_LEFT, BLUE)

    def test_deleted_while_playing(self):
        program = self.start_hidden()
        clip = self.clip("loop", RED, BLUE)
        program.do("wallpaper", "set", clip)
        wait_for_color(*FAR_LEFT, RED)
        os.remove(clip)
        wait_for_color(*FAR_LEFT, BLUE)
        wait_for_color(*FAR_LEFT, RED)
        program.do("wallpaper", "stop")
        self.assertEqual(program.ask("wallpaper", "play")["exitCode"], REFUSED)

    def test_on_a_disk_that_hangs(self):
        disk, hangs = hanging_disk(self)
        far, near = make_clip(disk / "far.mp4", GREEN, seconds=10), self.clip("near", RED, BLUE)
        hangs.touch()
        program = self.start_hidden(VelbClean_LastVideoPath=far)
        # No program ends as long as such a disk holds a thread of it.
        self.addCleanup(lambda: hangs.unlink(missing_ok=True))
        time.sleep(2)  # it is being restored
        program.do("show", "wallpaper")
        program.do("wallpaper", "set", near)
        wait_for_color(*BESIDE_WINDOW, RED)
        hangs.unlink()
        program.do("wallpaper", "set", far)
        wait_for_color(*BESIDE_WINDOW, GREEN)
        hangs.touch()
        for verb in ("pause", "play", "pause", "play"):
            program.do("wallpaper", verb)
        program.do("wallpaper", "set", near)
        wait_for_color(*BESIDE_WINDOW, RED, 40)
        hangs.unlink()
        program.do("quit")
        program.process.wait(10)

    def test_restored_at_the_next_start(self):
        program = self.start_hidden()
        program.do("wallpaper", "set", self.clip("loop", RED, BLUE))
        program.do("quit")
        program.process.wait(10)
        program = self.start("--background")
        wait_for_color(*FAR_LEFT, RED)
        wait_for_color(*FAR_LEFT, BLUE)
        log = program.log.read_text()
        self.assertIn("[Velbrix] auto wallpaper restore (launch) autoPlay=true", log)
        self.assertIn("[Wallpaper] autoRestore load last path: ", log)


class OwnPicture(DesktopTestCase):
    """The user's own desktop picture comes back whatever happens."""

    def setUp(self):
        super().setUp()
        picture = self.home / "own.png"
        output_of("convert", "-size", "1280x800", "xc:rgb(20,160,20)", picture)
        output_of("feh", "--no-fehbg", "--bg-fill", picture)
        self.addCleanup(output_of, "xsetroot", "-solid", "black")
        wait_for_color(*FAR_LEFT, GREEN)
        own = self.published()
        self.write_settings(ACCEPTED | {"Velbrix_Privacy_consent_videoWallpaper": True,
                                        "VelbClean_WallpaperAutoPlay": False})
        self.program = self.start("--background")
        self.clip = make_clip(self.home / "loop.mp4", RED, BLUE)
        self.program.do("wallpaper", "set", self.clip)
        wait_for_color(*FAR_LEFT, RED)
        wait_until(lambda: self.published() != own, "the still picture of the video is set")

    def published(self):
        return output_of("xprop", "-root", "_XROOTPMAP_ID")

    def test_after_stop(self):
        self.program.do("wallpaper", "stop")
        wait_for_color(*FAR_LEFT, GREEN)

    def test_after_quit(self):
        self.program.do("quit")
        self.program.process.wait(10)
        wait_for_color(*FAR_LEFT, GREEN)

    def test_after_a_crash(self):
        self.program.kill()
        wait_until(lambda: not is_near(color_at(*FAR_LEFT), GREEN), "the still picture of the video is left")
        self.start("--background")
        wait_for_color(*FAR_LEFT, GREEN)


if __name__ == "__main__":
    unittest.main(verbosity=2)
