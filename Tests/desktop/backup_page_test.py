"""The page of the backup tasks, used by mouse and keyboard: an archive that is restored and a mirror that follows its
source, both made by the real programs in a temporary home."""

import filecmp
import time
import unittest
import zipfile

from desktop import ACCEPTED, DesktopTestCase, output_of, press, wait_until
from widgets import Window


def panels():
    return [line for line in output_of("wmctrl", "-l", check=False).splitlines() if "选择" in line]


class BackupPage(DesktopTestCase):
    def setUp(self):
        super().setUp()
        self.source, self.target = self.home / "papers", self.home / "disk"
        self.target.mkdir()
        for name in ("信.txt", "旧/账本 1.csv", "旧/空"):
            file = self.source / name
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(name * 1000)
        (self.source / "忽略.tmp").write_text("x")
        (self.source / "链接").symlink_to("信.txt")

    def open(self):
        self.write_settings(ACCEPTED)
        self.program = self.start()
        self.window = Window(self.program, self.program.wait_for_window())
        self.program.do("show", "backup")

    def choose(self, button, folder):
        self.window.click(button)
        wait_until(panels, "the panel is open")
        output_of("xdotool", "type", "--delay", "5", str(folder))
        # The first closes the list of suggestions, if there is one.
        for _ in range(2):
            press("Return")
            time.sleep(0.5)
            if not panels():
                return
        self.fail("the panel stays open")

    def add(self, kind, first):
        self.window.click("添加任务…" if first else "添加任务", "push button")
        self.window.click(kind)
        self.choose("选择源文件夹", self.source)
        self.choose("选择保存目录", self.target)

    def save(self):
        self.window.click("保存", "push button")
        self.window.wait_without("保存")

    def task(self):
        return self.program.settings()["Velbrix_FileBackupTasks_v2"][-1]

    def run_task(self):
        self.window.click("立即运行", "push button")

    def test_an_archive_is_made_and_restored(self):
        self.open()
        self.window.wait_for("还没有备份任务")
        self.window.click("添加任务…")
        self.window.click("保存", "push button")
        self.window.wait_for("请选择源文件夹和保存目录")
        press("Escape")
        self.window.wait_without("保存")
        self.add("压缩备份", first=True)
        self.window.click("排除项")
        output_of("xdotool", "type", "*.tmp")
        self.save()
        self.window.wait_for("每天 09:00", prefix=True)
        self.run_task()
        archive = wait_until(lambda: next(self.target.glob("papers_*.zip"), None), "the archive is there")
        self.window.wait_for("今天 ", prefix=True)
        with zipfile.ZipFile(archive) as made:
            self.assertIsNone(made.testzip())
            self.assertIn("papers/旧/账本 1.csv", made.namelist())
            self.assertNotIn("papers/忽略.tmp", made.namelist())

        self.window.click("恢复…", "push button")
        row = self.window.wait_for("今天 ", "list item", prefix=True).name
        self.assertIn(archive.name, row)
        into = self.home / "restored"
        into.mkdir()
        self.choose("恢复到…", into)
        copy = wait_until(lambda: next(into.rglob("信.txt"), None), "it is restored").parent
        wait_until(lambda: (copy / "旧/空").exists(), "all of it is")
        self.assertTrue(filecmp.cmp(copy / "旧/账本 1.csv", self.source / "旧/账本 1.csv", shallow=False))
        self.assertTrue((copy / "链接").is_symlink())
        self.window.click("关闭", "push button")

    def test_a_mirror_follows_its_source(self):
        self.open()
        self.add("文件夹同步", first=True)
        self.save()
        mirror = self.target / "papers_同步"
        self.run_task()
        self.window.wait_for("今天 ", prefix=True)
        self.assertEqual((mirror / "旧/账本 1.csv").read_text(), "旧/账本 1.csv" * 1000)
        self.assertTrue((mirror / "链接").is_symlink())

        (self.source / "忽略.tmp").unlink()
        (self.source / "新.txt").write_text("新")
        self.run_task()
        wait_until((mirror / "新.txt").exists, "what is new is there")
        wait_until(lambda: not (mirror / "忽略.tmp").exists(), "what is gone is gone")
        # It is kept aside, and deleting the task deletes no file.
        self.assertTrue(list(self.target.rglob("忽略.tmp")))
        self.window.click("删除", "push button")
        self.window.click("删除任务", "push button")
        self.window.wait_for("还没有备份任务")
        self.assertTrue((mirror / "信.txt").exists())


if __name__ == "__main__":
    unittest.main(verbosity=2)
