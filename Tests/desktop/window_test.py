"""The main window: closing hides it, and it is always within reach."""

import unittest

from desktop import (ACCEPTED, DONE, DesktopTestCase, active_window_pid, geometry, output_of, wait_until, windows_of,
                     wm_state)


def tray_icons():
    """Windows of other programs that a tray has taken in."""
    trays = output_of("xdotool", "search", "--onlyvisible", "--class", "trayer", check=False).split()
    trees = "".join(output_of("xwininfo", "-id", tray, "-tree", check=False) for tray in trays)
    return [line for line in trees.splitlines() if '"velbrix"' in line.lower()]


class MainWindow(DesktopTestCase):
    def start_trayer(self):
        tray = self.spawn("trayer", "--edge", "bottom", "--height", "32", "--align", "right", "--SetDockType", "false")
        wait_until(lambda: output_of("xdotool", "search", "--onlyvisible", "--class", "trayer", check=False),
                   "the tray runs")
        return tray

    def place(self, window):
        output_of("xdotool", "windowsize", "--sync", window, 1000, 640)
        output_of("xdotool", "windowmove", "--sync", window, 140, 90)

        def placed():  # within its frame
            x, y, *size = frame = geometry(window)
            return 140 <= x < 160 and 90 <= y < 130 and size == [1000, 640] and frame

        return wait_until(placed, "the window is placed")

    def close(self, window):
        output_of("wmctrl", "-i", "-c", hex(window))

    def test_hides_into_the_tray(self):
        self.start_trayer()
        self.prepare()
        program = self.start()
        window = program.wait_for_window()
        frame = self.place(window)
        self.close(window)
        wait_until(lambda: not windows_of(program.pid), "the window hides")
        self.assertFalse(program.status()["windowVisible"])
        wait_until(lambda: program.settings().get("Velbrix_MainWindow_Frame"), "the frame is saved")
        self.assertEqual(program.settings()["Velbrix_MainWindow_Frame"], list(frame))
        program.do("show", "recorder")
        wait_until(lambda: geometry(program.wait_for_window()) == frame, "the window is back in its place")

        program.end()
        program = self.start()
        self.assertEqual(geometry(program.wait_for_window()), frame)

    def test_stays_reachable_without_a_tray(self):
        self.prepare()
        program = self.start()
        window = program.wait_for_window()
        frame = self.place(window)
        self.close(window)
        wait_until(lambda: wm_state(window) == "Iconic", "the window is minimised")
        self.assertIsNone(program.process.poll())
        self.assertEqual(program.run("show", "settings").returncode, DONE)
        wait_until(lambda: wm_state(window) == "Normal" and geometry(window) == frame, "the window is back in its place")

    def test_restored_after_a_hidden_start(self):
        self.write_settings(ACCEPTED | {"Velbrix_MainWindow_Frame": [120, 90, 1000, 640]})
        program = self.start("--background")
        managed = lambda: [line.split()[0] for line in output_of("wmctrl", "-l", "-p", check=False).splitlines()
                           if int(line.split()[2]) == program.pid]
        window = int(wait_until(managed, "the window is in the task bar")[0], 16)
        self.assertEqual(wm_state(window), "Iconic")
        output_of("xdotool", "windowactivate", window)
        wait_until(lambda: program.status()["windowVisible"], "the program knows that it is restored")
        wait_until(lambda: geometry(window) == (120, 90, 1000, 640), "the window is where it was")

    def test_comes_to_the_users_workspace(self):
        self.prepare()
        program = self.start("-session", "10ab_12")  # as a session manager does
        program.wait_for_window()
        output_of("wmctrl", "-s", "1")
        self.addCleanup(output_of, "wmctrl", "-s", "0")
        wait_until(lambda: active_window_pid() != program.pid, "another workspace is seen")
        program.do("show", "recorder")
        wait_until(lambda: active_window_pid() == program.pid, "the window is in front again")
        self.assertEqual(output_of("xdotool", "get_desktop").strip(), "1")

    def test_a_tray_that_comes_later(self):
        program = self.start_hidden()
        self.assertEqual(tray_icons(), [])
        self.start_trayer()
        wait_until(tray_icons, "the icon joins the tray")
        self.assertEqual(windows_of(program.pid), [])

    def test_a_tray_that_goes(self):
        tray = self.start_trayer()
        self.prepare()
        program = self.start()
        window = program.wait_for_window()
        wait_until(tray_icons, "the icon joins the tray")
        self.close(window)
        wait_until(lambda: not windows_of(program.pid), "the window hides")
        tray.terminate()
        wait_until(lambda: wm_state(window) in ("Iconic", "Normal"), "the window is within reach again")
        self.assertEqual(program.run("show", "recorder").returncode, DONE)
        wait_until(lambda: windows_of(program.pid), "the window shows")

    def test_a_frame_off_the_screens_is_not_used(self):
        self.write_settings(ACCEPTED | {"Velbrix_MainWindow_Frame": [5000, 5000, 1000, 640]})
        program = self.start()
        x, y, width, height = geometry(program.wait_for_window())
        self.assertTrue(0 <= x and 0 <= y and x + width <= 1280 and y < 700, (x, y, width, height))


if __name__ == "__main__":
    unittest.main(verbosity=2)
