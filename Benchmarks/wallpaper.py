"""./bench wallpaper: what a video behind the desktop costs beside a plain player, and what it leaves in memory."""

import argparse
import os
import subprocess
from pathlib import Path

from support import (Velbrix, cpu_seconds, end, now, private_dirty_megabytes, ratio, sleep_until, status, summary, table,
                     wait_for, wake_ups, sleeps, x_server)

HOME = Path(os.environ["HOME"])
SETTLE = 3


def make_clip(name, seconds, fps=30, size="1920x1080", source="testsrc2"):
    path = HOME / f"{name}.mp4"
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", f"{source}=size={size}:rate={fps}:duration={seconds}",
                    "-c:v", "libx264", "-pix_fmt", "yuv420p", path], check=True)
    return path


class Ours:
    name = "velbrix"

    def __init__(self, clip, **settings):
        consent = {"Velbrix_Privacy_consent_videoWallpaper": True}
        self.program = Velbrix(**(consent | settings)).start_and_wait()
        self.pid = self.program.pid
        self.program.command("wallpaper", "set", str(clip))

    def end(self):
        self.program.end()


class Player:
    name = "mpv --vo=x11"

    def __init__(self, clip):
        self.process = subprocess.Popen(
            ["mpv", "--no-config", "--really-quiet", "--vo=x11", "--hwdec=no", "--no-audio", "--loop-file=inf",
             "--no-osc", "--no-input-default-bindings", "--no-border", "--geometry=1920x1080+0+0", clip])
        self.pid = self.process.pid

    def end(self):
        end(self.process)


class Interval:
    """CPU milliseconds per second and wake-ups of a process, and what the X server spends meanwhile."""

    def __init__(self, pid, seconds):
        begin, wakes = now(), sleeps(pid)
        mine, server = cpu_seconds(pid), cpu_seconds(x_server())
        sleep_until(begin + seconds)
        length = now() - begin
        self.client = 1000 * (cpu_seconds(pid) - mine) / length
        self.server = 1000 * (cpu_seconds(x_server()) - server) / length
        self.cpu = self.client + self.server
        self.wakes = wake_ups(wakes, sleeps(pid)) / length


def compare(clip, rounds, seconds):
    results = {Ours: [], Player: []}
    memory = {Ours: [], Player: []}
    for _ in range(rounds):
        for kind, intervals in results.items():
            program = kind(clip)
            sleep_until(now() + SETTLE)
            intervals.append(Interval(program.pid, seconds))
            memory[kind].append(private_dirty_megabytes(program.pid))
            program.end()
    rows = [["1080p30", "CPU ms/s", "client", "X server", "private dirty MB"]]
    for kind, intervals in results.items():
        rows.append([kind.name, *(summary([getattr(one, part) for one in intervals], 0)
                                  for part in ("cpu", "client", "server")), summary(memory[kind], 0)])
    table(rows)
    ratio("wallpaper-1080p30-cpu", [one.cpu for one in results[Ours]], [one.cpu for one in results[Player]],
          "client and X server against mpv --vo=x11")
    ratio("wallpaper-1080p30-memory", memory[Ours], memory[Player], "private dirty memory against mpv --vo=x11")


def measure_rest(clip, seconds):
    """Paused, behind a full-screen window, and stopped."""
    wallpaper = Ours(clip)

    def rest(name):
        sleep_until(now() + SETTLE)
        interval = Interval(wallpaper.pid, seconds)
        print(f"REST {name} cpu-ms/s {interval.client:.2f} wake-ups/s {interval.wakes:.1f}", flush=True)

    sleep_until(now() + SETTLE)
    wallpaper.program.command("wallpaper", "pause")
    rest("paused")
    wallpaper.program.command("wallpaper", "play")
    with subprocess.Popen(["xev", "-event", "keyboard", "-name", "cover"], stdout=subprocess.DEVNULL) as cover:
        wait_for(lambda: "cover" in subprocess.run(["wmctrl", "-l"], capture_output=True, text=True).stdout,
                 "no window to cover with")
        subprocess.run(["wmctrl", "-r", "cover", "-b", "add,fullscreen"], check=True)
        rest("covered")
        end(cover)
    wallpaper.program.command("wallpaper", "stop")
    rest("stopped")
    print(f"REST stopped private-dirty-MB {private_dirty_megabytes(wallpaper.pid):.1f}")
    wallpaper.end()


def watch_memory(name, wallpaper, steps, step):
    """Does all steps; the first tenth fills what is filled only once."""
    def look():
        files = len(list(Path(f"/proc/{wallpaper.pid}/fd").iterdir()))
        return private_dirty_megabytes(wallpaper.pid), files, status(wallpaper.pid, "Threads")

    for i in range(steps // 10):
        step(i)
    before = look()
    for i in range(steps // 10, steps):
        step(i)
    after = look()
    for what, a, b in zip(("private-dirty-MB", "open-files", "threads"), before, after):
        print(f"GROWTH {name} {what} {a:.1f} -> {b:.1f} over {steps - steps // 10} of {steps}", flush=True)


def measure_memory(loops, changes):
    short = make_clip("short", 0.5)
    begin = now()
    wallpaper = Ours(short, VelbClean_WallpaperSpeed=2.0)
    watch_memory("loops", wallpaper, loops, lambda i: sleep_until(begin + (i + 1) * 0.25))
    wallpaper.end()
    clips = [make_clip("first", 2), make_clip("second", 2, 25, "1280x720", "testsrc")]
    wallpaper = Ours(clips[0])
    watch_memory("changes", wallpaper, changes,
                 lambda i: wallpaper.program.command("wallpaper", "set", str(clips[i % 2])))
    wallpaper.end()


def main():
    parser = argparse.ArgumentParser(prog="./bench wallpaper", description=__doc__)
    parser.add_argument("--rounds", type=int, default=3, help="runs of each program")
    parser.add_argument("--seconds", type=float, default=10, help="length of each measurement")
    parser.add_argument("--loops", type=int, default=500, help="repeats of a short video")
    parser.add_argument("--changes", type=int, default=200, help="changes of the video")
    options = parser.parse_args()
    clip = make_clip("clip", 10)
    compare(clip, options.rounds, options.seconds)
    measure_rest(clip, options.seconds)
    measure_memory(options.loops, options.changes)


if __name__ == "__main__":
    main()
