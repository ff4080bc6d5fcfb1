"""The cleaner's page, used by mouse and keyboard on a home full of traps. Only what lies in that home is ever
selected."""

import unittest

from desktop import ACCEPTED, DesktopTestCase, press, wait_until
from widgets import Window

MEGABYTE = 1_000_000
ITEM = "Chrome 浏览器缓存"


class CleanPage(DesktopTestCase):
    def setUp(self):
        super().setUp()
        self.cache = self.home / ".cache/google-chrome"
        self.build = self.home / "projects/build"
        self.outside = self.home / "Documents/letter"
        for file, size in {
            self.cache / "large/data": 3 * MEGABYTE,
            self.cache / "wanted": MEGABYTE // 2,
            self.cache / ".hidden": 10,
            self.build / "object": MEGABYTE,
            self.build / ".git/HEAD": 10,
            self.home / ".cache/another/data": 10,
            self.outside: 10,
        }.items():
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(b"x" * size)
        (self.cache / "way out").symlink_to(self.outside.parent)
        (self.cache / "large/way out").symlink_to(self.outside)

    def open(self, *selected):
        self.write_settings(ACCEPTED | {
            "VelbClean_CleanupSelection": list(selected),
            "VelbClean_CustomPaths": [str(self.build)],
        })
        self.program = self.start()
        self.window = Window(self.program, self.program.wait_for_window())
        self.program.do("show", "clean")

    def selected(self):
        return self.program.settings()["VelbClean_CleanupSelection"]

    def test_an_entry_is_left_out_and_the_rest_goes(self):
        self.open("chrome-cache")
        self.window.wait_for("3.5 MB")
        self.window.wait_for("已选 1 项")
        self.window.click(f"显示{ITEM}的内容")
        self.window.click("wanted，504 KB，将清理")
        self.window.wait_for("wanted，504 KB，已排除")
        self.window.click("build", "check box")
        wait_until(lambda: len(self.selected()) == 2, "the choice is kept")

        self.window.click("清理所选项目")
        self.window.wait_for("系统清理隐私确认")
        self.window.click("同意并继续")
        self.window.wait_for("确认清理")
        self.window.wait_for(f"{ITEM} — 3 MB（排除 1 个条目）")
        self.assertTrue((self.cache / "large/data").exists(), "nothing goes before the answer")
        self.window.click("清理", "push button")
        self.window.wait_for("清理完成！处理了 3 个项目", prefix=True)
        self.window.wait_for("实际释放 4", prefix=True)

        self.assertEqual({entry.name for entry in self.cache.iterdir()}, {"wanted", ".hidden"})
        self.assertEqual({entry.name for entry in self.build.iterdir()}, {".git"})
        self.assertTrue((self.build / ".git/HEAD").exists())
        self.assertTrue(self.outside.exists())
        self.assertTrue((self.home / ".cache/another/data").exists())
        # The sizes are told anew.
        self.window.wait_without("3.5 MB")

    def test_calling_off(self):
        self.open("chrome-cache")
        self.window.click("清理所选项目")
        self.window.click("同意并继续")
        self.window.wait_for("确认清理")
        press("Escape")
        self.window.wait_without("确认清理")
        self.window.click("全不选")
        wait_until(lambda: self.selected() == [], "nothing is selected")
        # The focus is still where the page is worked with.
        self.window.click("清理所选项目")
        self.window.wait_for("没有选择任何清理项")
        self.assertEqual({entry.name for entry in self.cache.iterdir()}, {"large", "wanted", ".hidden", "way out"})


if __name__ == "__main__":
    unittest.main(verbosity=2)
