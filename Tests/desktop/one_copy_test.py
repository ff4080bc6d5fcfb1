"""One copy of the program at a time, whatever became of the one before."""

import signal
import time
import unittest

import movie
from desktop import DONE, NOT_RUNNING, RUNTIME, DesktopTestCase, active_window_pid, output_of, wait_until, windows_of


class OneCopy(DesktopTestCase):
    def test_a_second_start_shows_the_first(self):
        program = self.start_hidden()
        self.assertEqual(windows_of(program.pid), [])
        other = self.color_window("cover", "0000FF", 0, 0, 1280, 760)
        self.assertEqual(program.run().returncode, DONE)
        program.wait_for_window()
        wait_until(lambda: active_window_pid() == program.pid, "the first copy has the focus")

        output_of("xdotool", "windowactivate", "--sync", other)
        self.assertEqual(program.run().returncode, DONE)
        wait_until(lambda: active_window_pid() == program.pid, "the covered copy comes to the front")
        self.assertEqual(len(windows_of(program.pid)), 1)
        self.assertTrue(program.status()["windowVisible"])

    def test_a_recording_survives_a_second_start(self):
        program = self.start_hidden()
        made = program.do("record", "start")["file"]
        self.assertEqual(program.run().returncode, DONE)
        self.assertEqual(program.settings()["Velbrix_ScreenRecord_unfinishedFiles"], [made])
        program.wait_for_recording(1)
        self.assertEqual(program.do("record", "stop")["file"], made)

    def test_a_killed_copy_leaves_room(self):
        killed = self.start_hidden()
        killed.kill()
        self.assertTrue((RUNTIME / "velbrix/control").exists())
        self.assertEqual(killed.run("status").returncode, NOT_RUNNING)
        program = self.start("--background")
        self.assertEqual(program.status()["pid"], program.pid)

    def test_a_start_during_the_end_comes_after_it(self):
        ending = self.start_hidden()
        made = ending.do("record", "start")["file"]
        ending.wait_for_recording(1)
        ending.do("quit")
        sign = RUNTIME / "velbrix/instance.leaving"
        wait_until(lambda: sign.exists() or ending.process.poll() is not None, "the first copy ends")
        ending.process.send_signal(signal.SIGSTOP)
        program = self.launch()
        time.sleep(0.5)
        self.assertIsNone(program.process.poll())
        self.assertEqual(windows_of(program.pid), [])
        ending.process.send_signal(signal.SIGCONT)
        self.assertEqual(ending.process.wait(10), DONE)
        self.assertGreaterEqual(movie.probe(made)[1], 1)
        program.wait_for_window()
        self.assertEqual(program.wait_until_ready().status()["pid"], program.pid)
        self.assertNotIn("Velbrix_ScreenRecord_unfinishedFiles", program.settings())

    def test_many_starts_at_once(self):
        self.prepare()
        programs = [self.launch() for _ in range(6)]
        wait_until(lambda: sum(one.process.poll() is None for one in programs) == 1, "one copy stays")
        stays = next(one for one in programs if one.process.poll() is None)
        stays.wait_until_ready().wait_for_window()
        self.assertEqual([one.process.returncode for one in programs if one is not stays], [DONE] * 5)
        self.assertEqual(stays.status()["pid"], stays.pid)


if __name__ == "__main__":
    unittest.main(verbosity=2)
