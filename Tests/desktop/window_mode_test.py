"""Recording one window, chosen in the program's own window by mouse."""

import os
import unittest

import movie
from desktop import DesktopTestCase, output_of, wait_until
from widgets import Window

RED, BLUE = "D01010", "1010D0"


class WindowMode(DesktopTestCase):
    def start_with_target(self):
        self.prepare(recordSystemAudio=False)
        self.target = self.color_window("目标窗口", RED, 60, 60, 400, 300)
        self.program = self.start()
        self.program.do("show", "recorder")
        self.window = Window(self.program, self.program.wait_for_window())

    def choose_target(self):
        self.window.click("窗口录制")
        self.window.click("目标窗口，Colorwindow")

    def color_at(self, made, seconds, x, y):
        return movie.pixels(movie.picture(made, seconds, self.home / "seen.png"), x, y, 1, 1)[0]

    def assert_red(self, color):
        red, green, blue = color
        self.assertTrue(red > 180 and green < 50 and blue < 50, color)

    def test_nothing_chosen(self):
        self.start_with_target()
        self.window.click("窗口录制")
        self.window.wait_for("目标窗口，Colorwindow")
        self.window.click("开始录制")
        self.window.wait_for("请先选择要录制的窗口")
        refused = self.program.ask("record", "start")
        self.assertEqual(refused["error"], "请先选择要录制的窗口")
        self.assertEqual(os.listdir(self.movies), [])

    def test_covered_moved_resized_closed(self):
        self.start_with_target()
        self.choose_target()
        listed = self.program.do("record", "list-windows")["windows"]
        before, = [(window["width"], window["height"]) for window in listed if window["title"] == "目标窗口"]
        self.window.click("开始录制")
        self.program.wait_for_recording(1)
        self.color_window("cover", BLUE, 40, 40, 500, 400)
        self.program.wait_for_recording(3)
        output_of("xdotool", "windowmove", "--sync", self.target, 700, 300)
        self.program.wait_for_recording(4)
        output_of("xdotool", "windowsize", "--sync", self.target, 600, 300)
        self.program.wait_for_recording(6)
        output_of("wmctrl", "-i", "-c", hex(self.target))
        made = self.program.wait_for_movie()

        streams, duration = movie.probe(made)
        # As it stood at the start, with its frame; a movie's sizes are even.
        size = before[0] & ~1, before[1] & ~1
        self.assertEqual((streams["video"]["width"], streams["video"]["height"]), size)
        self.assertGreaterEqual(duration, 5.5)
        for seconds in (0.5, 2.5, 3.8):
            for x, y in ((12, 40), (200, 150), (390, 310)):
                self.assert_red(self.color_at(made, seconds, x, y))
        # Wider than before fits into the old size with black above and below.
        self.assert_red(self.color_at(made, 5.5, 200, 170))
        self.assertLess(max(self.color_at(made, 5.5, 200, 10)), 40)
        self.assertIn("窗口", self.program.status()["endedEarly"])

    def test_a_window_gone_before_the_start(self):
        self.start_with_target()
        self.choose_target()
        output_of("wmctrl", "-i", "-c", hex(self.target))
        wait_until(lambda: not output_of("xdotool", "search", "--onlyvisible", "--class", "colorwindow", check=False),
                   "the window is closed")
        refused = self.program.ask("record", "start")
        self.assertEqual(refused["error"], "窗口已经不在了，请刷新后重新选择")
        self.assertFalse(self.program.status()["recording"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
