"""Videos made for the test, and what of them is on the screen."""

import os
import re
import subprocess

from desktop import HELPERS, output_of, wait_until

RED, BLUE, GREEN = (200, 20, 20), (20, 20, 200), (20, 160, 20)


def make_clip(path, *colors, size="640x400", seconds=0.5):
    """A silent video of the colours in turn, each for so many seconds."""
    sources = []
    for red, green, blue in colors:
        sources += ["-f", "lavfi", "-t", str(seconds), "-i", f"color=0x{red:02x}{green:02x}{blue:02x}:s={size}:r=30"]
    parts = "".join(f"[{i}]" for i in range(len(colors)))
    output_of("ffmpeg", "-v", "error", "-y", *sources, "-filter_complex", f"{parts}concat=n={len(colors)}",
              "-pix_fmt", "yuv420p", path)
    return str(path)


def make_sound(path):
    output_of("ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i", "sine=duration=1", path)
    return str(path)


class Shot:
    """The screen at one moment."""

    def __init__(self):
        found = subprocess.run(["import", "-silent", "-window", "root", "-depth", "8", "rgb:-"], capture_output=True,
                               check=True)
        # Others tell the size of the first monitor only.
        told = output_of("xwininfo", "-root")
        self.width, self.height = (int(re.search(rf"{name}: +(\d+)", told)[1]) for name in ("Width", "Height"))
        self.bytes = found.stdout

    def at(self, x, y):
        place = 3 * (y * self.width + x)
        return tuple(self.bytes[place:place + 3])

    def differing(self, other, x, y, width, height):
        """The places in the rectangle where two shots differ clearly."""
        return [(column, row) for row in range(y, y + height) for column in range(x, x + width)
                if not is_near(self.at(column, row), other.at(column, row))]


def is_near(color, wanted, tolerance=30):
    return all(abs(a - b) <= tolerance for a, b in zip(color, wanted))


def color_at(x, y):
    return Shot().at(x, y)


def wait_for_color(x, y, wanted, seconds=20):
    wait_until(lambda: is_near(color_at(x, y), wanted), f"{wanted} at {x},{y}", seconds)


def hanging_disk(test):
    """A folder on a disk of its own; the disk answers nobody while the second path exists."""
    content, disk = test.home / "content", test.home / "disk"
    content.mkdir()
    disk.mkdir()
    made = subprocess.run([HELPERS.parent / "support/TestFileSystem", "hanging", content, disk], capture_output=True)
    if made.returncode:
        test.skipTest("no FUSE here")
    hangs = test.home / "content.hangs"
    test.addCleanup(output_of, "fusermount3", "-uz", disk)
    test.addCleanup(lambda: hangs.unlink(missing_ok=True))
    return disk, hangs


class IconManager:
    """A file manager that draws icons on the desktop."""

    def __init__(self, test, *names):
        # A user's own folder for the desktop.
        self.folder = test.home / "Desktop"
        self.folder.mkdir(exist_ok=True)
        for name in names:
            (self.folder / name).write_text("x")
        self.process = subprocess.Popen(
            ["pcmanfm", "--desktop"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env=_environment(test.home))
        test.addCleanup(self.end)
        wait_until(lambda: "DESKTOP" in _types(), "the desktop has its icons")

    def end(self):
        self.process.kill()
        self.process.wait()


def _environment(home):
    return os.environ | {"HOME": str(home), "XDG_CONFIG_HOME": str(home / ".config"),
                         "XDG_DATA_HOME": str(home / ".local/share"), "XDG_DESKTOP_DIR": str(home / "Desktop")}


def _types():
    windows = output_of("xprop", "-root", "_NET_CLIENT_LIST", check=False).split("#")[-1].split(",")
    return "".join(output_of("xprop", "-id", window.strip(), "_NET_WM_WINDOW_TYPE", check=False)
                   for window in windows if "0x" in window)
