"""The uninstaller's page, used by mouse and keyboard: an AppImage with its data goes to the trash and comes back. The
program sees no applications but those planted in a temporary home."""

import pathlib
import unittest

from desktop import ACCEPTED, DesktopTestCase, press, wait_until
from widgets import Window

QUESTION = "确定要卸载「Paintbox」吗？此操作会将文件移到废纸篓。"


def contents(folder):
    return {str(entry.relative_to(folder)) for entry in folder.rglob("*")}


class AppsPage(DesktopTestCase):
    def setUp(self):
        super().setUp()
        self.data, self.config, self.cache = (self.home / name for name in (".local/share", ".config", ".cache"))
        self.image = self.plant("Applications/Paintbox-2.1-x86_64.AppImage", "image", 0o755)
        viewer = self.plant("bin/viewer", "#!/bin/sh\n", 0o755)
        self.launcher = self.plant_launcher("org.example.Paintbox", "Paintbox", self.image)
        self.other_launcher = self.plant_launcher("org.example.Paintbox.Viewer", "Viewer", viewer)
        self.own = [
            self.plant(".config/org.example.Paintbox/settings", "1"),
            self.plant(".cache/org.example.paintbox/tiles/1", "1" * 50_000),
        ]
        self.traps = [
            self.other_launcher,
            viewer,
            self.plant(".config/org.example.Paintbox.Viewer/settings", "another application's"),
            self.plant(".cache/paintboxes/data", "alike by name alone"),
            self.plant("Documents/letter", "behind a link"),
        ]
        self.link = self.config / "org.example.Paintbox-documents"
        self.link.symlink_to(self.home / "Documents")
        # The system's own applications are hidden, its pictures are not.
        self.system = self.home / "system"
        self.system.mkdir()
        (self.system / "icons").symlink_to("/usr/share/icons")

    def plant(self, path, text, mode=0o644):
        file = self.home / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        file.chmod(mode)
        return file

    def plant_launcher(self, identifier, name, program):
        return self.plant(f".local/share/applications/{identifier}.desktop",
                          f"[Desktop Entry]\nType=Application\nName={name}\nExec={program}\n")

    def open(self):
        self.write_settings(ACCEPTED)
        self.program = self.start(env={"XDG_DATA_DIRS": str(self.system)})
        self.window = Window(self.program, self.program.wait_for_window())
        self.program.do("show", "apps")
        self.window.wait_for("共 2 个应用", prefix=True)

    def review(self):
        row = self.window.wait_for("Paintbox，版本 2.1", prefix=True).name
        self.window.click(row)
        press("Return")

    def ticks(self):
        """What the review lists, and whether it is ticked."""
        found = {}
        for text in self.window.texts():
            for tick in ("已勾选", "未勾选"):
                path, mark, _ = text.partition(f"，{tick}，")
                if mark:
                    found[pathlib.Path(path).name] = tick == "已勾选"
        return found

    def test_to_the_trash_and_back(self):
        before = contents(self.config) | contents(self.data)
        self.open()
        self.review()
        self.window.wait_for("应用卸载隐私确认")
        self.window.click("同意并继续")
        self.window.wait_for(QUESTION)
        wait_until(lambda: self.ticks() == {
            self.image.name: True,
            self.launcher.name: True,
            "org.example.Paintbox": True,
            "org.example.paintbox": True,
            "org.example.Paintbox.Viewer": False,
            "org.example.Paintbox-documents": False,
            "paintboxes": False,
        }, f"the review is as expected: {self.ticks()}")
        self.assertTrue(self.image.exists(), "nothing goes before the answer")
        self.window.click("卸载", "push button")
        self.window.wait_for("已卸载「Paintbox」", seconds=20)

        for gone in [self.image, self.launcher, *(file.parent for file in self.own[:1])]:
            self.assertFalse(gone.exists(), gone)
        self.assertFalse(self.own[1].exists())
        for trap in self.traps:
            self.assertTrue(trap.exists(), trap)
        self.assertTrue(self.link.is_symlink())
        self.window.wait_for("共 1 个应用", prefix=True)

        self.window.click("放回原处：Paintbox")
        self.window.wait_for("已将「Paintbox」的 4 项放回原处")
        for back in [self.image, self.launcher, *self.own, *self.traps]:
            self.assertTrue(back.exists(), back)
        self.assertLessEqual(before, contents(self.config) | contents(self.data))
        self.window.wait_for("共 2 个应用", prefix=True)

    def test_calling_off(self):
        self.open()
        self.review()
        self.window.click("取消", "push button")
        self.review()
        self.window.click("同意并继续")
        self.window.wait_for(QUESTION)
        press("Escape")
        self.window.wait_without(QUESTION)
        # The keyboard is back in the list, and what is typed searches.
        press("v", "i", "e")
        self.window.wait_for("2 个应用中的 1 个", prefix=True)
        for kept in [self.image, self.launcher, *self.own, *self.traps]:
            self.assertTrue(kept.exists(), kept)


if __name__ == "__main__":
    unittest.main(verbosity=2)
