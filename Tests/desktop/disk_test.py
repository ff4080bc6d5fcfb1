"""Places where no movie can be written, from the start or after a while."""

import os
import shutil
import subprocess
import unittest

import movie
from desktop import REFUSED, DesktopTestCase, output_of, show_background, wait_until

needs_root = unittest.skipUnless(os.geteuid() == 0, "only root can mount a file system")


class Disk(DesktopTestCase):
    def mount(self, options):
        folder = self.home / "disk"
        folder.mkdir()
        done = subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", str(folder)], capture_output=True, text=True)
        if done.returncode != 0:
            self.skipTest(f"no file system can be mounted here: {done.stderr.strip()}")
        self.addCleanup(output_of, "umount", "-l", folder)
        return folder

    def refusal(self, folder):
        program = self.start_hidden(recordSystemAudio=False, outputDir=str(folder))
        refused = program.ask("record", "start")
        self.assertEqual(refused["exitCode"], REFUSED, refused)
        self.assertFalse(program.status()["recording"])
        self.assertIn(refused["error"], program.status()["lastFailure"])
        return refused["error"]

    def test_missing_folder(self):
        folder = self.home / "不存在"
        self.assertEqual(self.refusal(folder), f"输出目录不存在，请重新选择：{folder}")
        self.assertFalse(folder.exists())

    def test_not_a_folder(self):
        file = self.home / "file"
        file.write_text("kept")
        self.assertEqual(self.refusal(file), f"输出目录不是文件夹，请重新选择：{file}")
        self.assertEqual(file.read_text(), "kept")

    @unittest.skipIf(os.geteuid() == 0, "root may write everywhere")
    def test_forbidden_folder(self):
        folder = self.home / "forbidden"
        folder.mkdir(mode=0o500)
        self.assertEqual(self.refusal(folder), f"没有写入权限，请换一个输出目录：{folder}")

    @needs_root
    def test_read_only_disk(self):
        folder = self.mount("ro,size=400m")
        self.assertEqual(self.refusal(folder), f"磁盘是只读的，请换一个输出目录：{folder}")

    @needs_root
    def test_little_room(self):
        self.assertIn("磁盘空间不足：剩余 ", self.refusal(self.mount("size=64m")))

    @needs_root
    def test_disk_fills_up(self):
        folder = self.mount("size=400m")
        program = self.start_hidden(recordSystemAudio=False, outputDir=str(folder))
        scene = self.home / "noise.png"
        output_of("convert", "-size", "640x400", "xc:gray", "+noise", "Random", scene)

        def recorded(seconds):
            """With something to record."""
            output_of("convert", scene, "-roll", "+37+11", scene)
            show_background(scene)
            status = program.status()
            return not status["recording"] or status["elapsedSeconds"] >= seconds

        program.do("record", "start")
        wait_until(lambda: recorded(3), "a recording of 3 s", 20)
        free = shutil.disk_usage(folder).free
        output_of("fallocate", "-l", free - 190_000_000, folder / "ballast")
        wait_until(lambda: recorded(3600), "the recording ends", 30)
        made = program.wait_for_movie()
        status = program.status()
        self.assertIn("空间只剩", status["endedEarly"])
        self.assertGreater(shutil.disk_usage(folder).free, 150_000_000)  # for everybody else
        self.assertGreaterEqual(movie.probe(made)[1], 2)
        movie.picture_sums(made)
        (folder / "ballast").unlink()
        program.do("record", "start")  # and the program goes on
        program.wait_for_recording(1)
        program.do("record", "stop")

    def test_folder_goes_away(self):
        program = self.start_hidden(recordSystemAudio=False)
        program.do("record", "start")
        program.wait_for_recording(1)
        shutil.rmtree(self.movies)
        stopped = program.ask("record", "stop")
        self.assertEqual((stopped["exitCode"], stopped["error"]), (REFUSED, "输出文件不存在"))
        wait_until(lambda: "Velbrix_ScreenRecord_unfinishedFiles" not in program.settings(), "nothing is left to do")
        self.movies.mkdir()
        program.do("record", "start")
        program.wait_for_recording(1)
        program.do("record", "stop")


if __name__ == "__main__":
    unittest.main(verbosity=2)
