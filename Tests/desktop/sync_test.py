"""Sound and picture of a recording belong together."""

import statistics
import unittest

import movie
from desktop import HELPERS, DesktopTestCase


def beeps(samples):
    """When each tone begins, in seconds."""
    found, last_loud = [], -movie.RATE
    for index, sample in enumerate(samples):
        if abs(sample) > 4000:
            if index - last_loud > movie.RATE // 2:
                found.append(index / movie.RATE)
            last_loud = index
    return found


def flashes(path):
    seen = movie.brightness(path)
    return [after for (_, dark), (after, light) in zip(seen, seen[1:]) if dark < 60 and light > 180]


class Synchrony(DesktopTestCase):
    def test_flash_and_beep(self):
        program = self.start_hidden(recordSystemAudio=True, fps=60)
        source = self.spawn(HELPERS / "syncsource", 30)
        self.assertEqual(source.stdout.readline(), "ready\n")
        program.do("record", "start")
        program.wait_for_recording(8)
        made = program.do("record", "stop")["file"]

        heard, seen = beeps(movie.sound(made)), flashes(made)
        self.assertGreaterEqual(len(seen), 6, (seen, heard))
        late = []
        for flash in seen:
            nearest = min((beep - flash for beep in heard), key=abs)
            if abs(nearest) < 0.4:
                late.append(round(nearest * 1000, 1))
        print(f"sound after picture, ms: {late}")
        self.assertGreaterEqual(len(late), 6, (seen, heard))
        self.assertLessEqual(abs(statistics.median(late)), 25, late)


if __name__ == "__main__":
    unittest.main(verbosity=2)
