"""The very first start: the statement, its countdown, and the first recording."""

import re
import unittest

import movie
from desktop import DesktopTestCase, press, wait_until
from widgets import Window

COUNTDOWN = re.compile(r"首次启动需等待(\d+)秒后才能确认。")


class FirstLaunch(DesktopTestCase):
    def test_from_statement_to_movie(self):
        program = self.start("--background")  # visible nevertheless
        window = Window(program, program.wait_for_window())
        window.wait_for("使用声明与隐私提示")
        window.wait_for("所有处理默认在本地完成，不会主动上传你的文件内容")
        self.assertGreater(self.seconds_left(window), 3)

        press("Escape", "Return", "ctrl+alt+0")
        press("ctrl+2")
        window.wait_for("使用声明与隐私提示")
        status = program.status()
        self.assertEqual((status["recording"], status["firstLaunchAccepted"]), (False, False))

        wait_until(lambda: self.seconds_left(window) == 0, "the countdown ends", 15)
        press("Return")
        window.wait_without("使用声明与隐私提示")
        wait_until(lambda: program.settings().get("Velbrix_Privacy_firstLaunchAccepted"), "the consent is kept")
        self.assertTrue(program.status()["firstLaunchAccepted"])

        press("ctrl+alt+0")
        window.wait_for("屏幕录制隐私确认")
        window.wait_for("快捷录制将默认全屏捕获，并使用你当前在录制面板中设置的帧率、画质、音频等配置。")
        press("Escape")
        window.wait_without("屏幕录制隐私确认")
        self.assertFalse(program.status()["recording"])
        press("ctrl+alt+0")
        window.wait_for("屏幕录制隐私确认")
        press("Return")
        program.wait_for_recording(1)
        press("ctrl+alt+0")
        made = program.wait_for_movie()
        self.assertEqual(made.parent, self.home / "Desktop")
        self.assertGreaterEqual(movie.probe(made)[1], 1)

        program.end()
        program = self.start()
        window = Window(program, program.wait_for_window())
        program.do("show", "recorder")
        window.wait_for("开始录制")
        self.assertIsNone(window.find("使用声明与隐私提示"))

    def seconds_left(self, window):
        for text in window.texts():
            if found := COUNTDOWN.search(text):
                return int(found[1])
        raise AssertionError("no countdown visible")


if __name__ == "__main__":
    unittest.main(verbosity=2)
