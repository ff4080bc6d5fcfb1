"""A recording of the whole screen by the hot key, and what is in the movie."""

import re
import unittest

import movie
from desktop import DesktopTestCase, output_of, press, screenshot, show_background

POINTER = (400, 300)
AROUND_POINTER = (380, 280, 60, 60)


class HotKeyRecording(DesktopTestCase):
    def paint_background(self):
        scene = self.home / "scene.png"
        output_of("convert", "-size", "1280x800", "gradient:navy-orange", "-fill", "white", "-pointsize", 40,
                  "-draw", "text 100,700 'Velbrix 0123456789'", "-fill", "green", "-draw", "circle 900,400 900,500",
                  "-fill", "gray40", "-draw", "rectangle 300,200 500,400", "-depth", 8, scene)
        show_background(scene)

    def record(self, program, seconds):
        press("ctrl+alt+0")
        program.wait_for_recording(seconds)
        press("ctrl+alt+0")
        return program.wait_for_movie()

    def test_movie(self):
        self.paint_background()
        shot = self.home / "shot.png"
        screenshot(shot)  # without the pointer
        program = self.start_hidden(recordSystemAudio=True)
        output_of("xdotool", "mousemove", *POINTER)
        tone = movie.write_tone(self.home / "tone.wav", 440, 20)
        self.spawn("paplay", "--device=speaker", tone)
        made = self.record(program, 4)

        self.assertEqual(made.parent, self.movies)
        self.assertTrue(re.fullmatch(r"录制_\d{8}_\d{6}\.mp4", made.name), made.name)
        streams, duration = movie.probe(made)
        self.assertGreaterEqual(duration, 4)
        self.assertLess(duration, 8)
        video, audio = streams["video"], streams["audio"]
        self.assertEqual((video["codec_name"], video["profile"], video["width"], video["height"]),
                         ("h264", "High", 1280, 800))
        self.assertEqual((audio["codec_name"], audio["sample_rate"], audio["channels"]), ("aac", "48000", 2))
        self.assertAlmostEqual(float(audio["duration"]), float(video["duration"]), delta=0.2)
        self.check_picture(made, shot)
        self.check_sound(made)

    def check_picture(self, made, shot):
        seen = movie.picture(made, 2, self.home / "seen.png")
        self.assertGreater(movie.likeness(seen, shot, AROUND_POINTER), 32)
        changed = [
            max(abs(a - b) for a, b in zip(one, other)) > 60
            for one, other in zip(movie.pixels(seen, *AROUND_POINTER), movie.pixels(shot, *AROUND_POINTER))
        ]
        self.assertGreater(sum(changed), 20, "the pointer is not in the picture")
        self.assertLess(sum(changed), 600, "more than the pointer is in the picture")

    def check_sound(self, made):
        heard = movie.sound(made)
        self.assertTrue(all(abs(level - 0.5) < 0.05 for level in movie.levels(heard, 440, 2.5, 1)))
        self.assertTrue(all(level < 0.02 for level in movie.levels(heard, 660, 2.5, 1)))

    def test_key_pictures(self):
        program = self.start_hidden(recordSystemAudio=False, fps=30)
        steps = [word for step in range(400) for word in ("mousemove", str(200 + step), "400", "sleep", "0.015")]
        self.spawn("xdotool", *steps)
        keys = movie.key_picture_times(self.record(program, 4))
        self.assertGreaterEqual(len(keys), 3)
        self.assertLessEqual(max(after - before for before, after in zip(keys, keys[1:])), 1.25, keys)

    def test_locks_do_not_matter(self):
        program = self.start_hidden(recordSystemAudio=False)
        for lock in (["Num_Lock"], ["Caps_Lock"]):
            press(*lock)
            self.addCleanup(press, *lock)
            press("ctrl+alt+0")
            program.wait_for_recording(1)
            press("ctrl+alt+0")
            program.wait_for_movie()
        press("ctrl+shift+alt+0")  # another chord
        press("ctrl+0")
        self.assertFalse(program.status()["recording"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
