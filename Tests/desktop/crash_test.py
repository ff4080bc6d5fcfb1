"""A recording whose program was killed is not lost."""

import time
import unittest

import movie
from desktop import DesktopTestCase, wait_until
from widgets import Window


def boxes(path):
    """The names of a movie file's outermost parts."""
    names, data, at = [], path.read_bytes(), 0
    while at + 8 <= len(data):
        size = int.from_bytes(data[at:at + 4], "big")
        names.append(data[at + 4:at + 8].decode("latin-1"))
        if size == 1:
            size = int.from_bytes(data[at + 8:at + 16], "big")
        at += max(size, 8)
    return names


class Crash(DesktopTestCase):
    def killed_recording(self):
        steps = [word for step in range(900) for word in ("mousemove", str(200 + step), "400", "sleep", "0.02")]
        hand = self.spawn("xdotool", *steps)
        tone = movie.write_tone(self.home / "tone.wav", 440, 20)
        self.spawn("paplay", "--device=speaker", tone)
        program = self.start_hidden(recordSystemAudio=True)
        began = time.monotonic()
        program.do("record", "start")
        program.wait_for_recording(4)
        lasted = time.monotonic() - began
        program.kill()
        hand.terminate()  # clicks come from elsewhere
        left, = self.movies.iterdir()
        return left, lasted

    def told_about(self, left):
        """The window of the next start, once it has told of what is left."""
        program = self.start()
        window = Window(program, program.wait_for_window())
        program.do("show", "recorder")
        window.wait_for(left.name)
        # The banner about it came with the window, and covers what is to be clicked.
        window.wait_without("发现未正常结束的录制")
        return program, window

    def test_repair(self):
        left, lasted = self.killed_recording()
        times = movie.picture_times(left)
        self.assertGreaterEqual(times[-1], lasted - 1.6)
        before = movie.picture_sums(left)
        sound_before = movie.sound(left)

        program, window = self.told_about(left)
        window.wait_for("录制没有正常结束，文件仍在。修复后即可播放。")
        window.click("修复")
        window.wait_without("录制没有正常结束，文件仍在。修复后即可播放。")
        self.assertNotIn("moof", boxes(left))
        self.assertIn("moov", boxes(left))
        self.assertEqual(movie.picture_sums(left), before)
        self.assertEqual(movie.picture_times(left), times)
        # Before, a reader also gives the lead that every sound encoder has.
        lead = 1024
        self.assertEqual(movie.sound(left)[:len(sound_before) - lead], sound_before[lead:])
        self.assertEqual(len(list(self.movies.iterdir())), 1)
        wait_until(lambda: "Velbrix_ScreenRecord_unfinishedFiles" not in program.settings(), "nothing is left to do")

    def test_dismiss(self):
        left, _ = self.killed_recording()
        content = left.read_bytes()
        program, window = self.told_about(left)
        window.click("忽略")
        window.wait_without(left.name)
        wait_until(lambda: "Velbrix_ScreenRecord_unfinishedFiles" not in program.settings(), "it is forgotten")
        self.assertEqual(left.read_bytes(), content)


if __name__ == "__main__":
    unittest.main(verbosity=2)
