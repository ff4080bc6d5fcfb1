"""What the benchmarks share: our program, processes and their costs, and how results are printed."""

import functools
import json
import os
import re
import shutil
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

BUILD = Path(os.environ["VELBRIX_BUILD"])
VELBRIX = BUILD / "Sources/Velbrix/velbrix"
SCENE = BUILD / "Benchmarks/scene"


def now():
    return time.monotonic()


def sleep_until(instant):
    time.sleep(max(0, instant - now()))


def wait_for(condition, what, seconds=15, step=0.002):
    end = now() + seconds
    while not condition():
        if now() > end:
            raise TimeoutError(what)
        time.sleep(step)


def cpu_seconds(pid):
    """CPU time of a process with all its threads, also ended ones, in nanosecond steps."""
    return time.clock_gettime((~pid << 3) | 2)


def status(pid, field):
    return int(re.search(rf"^{field}:\s+(\d+)", Path(f"/proc/{pid}/status").read_text(), re.M)[1])


def peak_megabytes(pid):
    return status(pid, "VmHWM") / 1024


def private_dirty_megabytes(pid):
    return int(re.search(r"^Private_Dirty:\s+(\d+)", Path(f"/proc/{pid}/smaps_rollup").read_text(), re.M)[1]) / 1024


def sleeps(pid):
    """How often each thread of a process has gone to sleep, by thread."""
    found = {}
    for thread in Path(f"/proc/{pid}/task").iterdir():
        found[thread.name] = int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", (thread / "status").read_text(),
                                           re.M)[1])
    return found


def wake_ups(before, after):
    """Between two looks at sleeps(); a thread that ended woke once for it."""
    return sum(after.get(thread, count + 1) - count for thread, count in before.items()) + sum(
        count for thread, count in after.items() if thread not in before)


@functools.cache
def x_server():
    """The server of this private desktop: a child of one of our ancestors."""
    ancestor = os.getppid()
    while ancestor > 1:
        for child in Path(f"/proc/{ancestor}/task/{ancestor}/children").read_text().split():
            if Path(f"/proc/{child}/comm").read_text().strip() == "Xvfb":
                return int(child)
        ancestor = status(ancestor, "PPid")
    raise RuntimeError("start benchmarks with ./bench")


def end(process, seconds=10):
    process.terminate()
    try:
        process.wait(seconds)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class Velbrix:
    """Our program in the background, in a home of its own, with every notice accepted."""

    def __init__(self, **settings):
        self.home = Path(tempfile.mkdtemp(prefix="velbrix-", dir=os.environ["HOME"]))
        (self.home / "run").mkdir(mode=0o700)
        consents = ["firstLaunch", "screenRecording", "microphone", "systemAudio"]
        values = {f"Velbrix_Privacy_consent_{name}": True for name in consents}
        values["Velbrix_Privacy_firstLaunchAccepted"] = True
        values["Velbrix_Privacy_didPromptAllSystemPermissions"] = True
        self.settings_file = self.home / ".config/velbrix/settings.json"
        self.settings_file.parent.mkdir(parents=True)
        self.settings_file.write_text(json.dumps(values | settings))
        self.environment = os.environ | {
            "HOME": str(self.home),
            "XDG_CONFIG_HOME": str(self.home / ".config"),
            "XDG_CACHE_HOME": str(self.home / ".cache"),
            "XDG_DATA_HOME": str(self.home / ".local/share"),
            "XDG_RUNTIME_DIR": str(self.home / "run"),
            "PULSE_SERVER": f"unix:{os.environ['XDG_RUNTIME_DIR']}/pulse/native",
        }

    def start(self):
        with open(self.home / "log", "a") as log:
            self.process = subprocess.Popen([VELBRIX, "--background"], env=self.environment, stdout=log, stderr=log)
        self.pid = self.process.pid
        return self

    def command(self, *words):
        done = subprocess.run([VELBRIX, *words, "--json"], env=self.environment, capture_output=True, text=True)
        if done.returncode != 0:
            raise RuntimeError(f"velbrix {' '.join(words)}: {done.stdout}{done.stderr}")
        return json.loads(done.stdout)

    def answers(self):
        return subprocess.run([VELBRIX, "status"], env=self.environment, capture_output=True).returncode == 0

    def start_and_wait(self):
        self.start()
        wait_for(self.answers, "velbrix does not answer", step=0.02)
        return self

    def end(self):
        end(self.process)
        shutil.rmtree(self.home, ignore_errors=True)


class Scene:
    """Test content that counts its frames; tick n is shown at start + n / fps."""

    def __init__(self, mode, fps, seconds):
        self.fps = fps
        self.process = subprocess.Popen([SCENE, mode, str(fps), str(seconds)], stdout=subprocess.PIPE, text=True)
        self.start = float(self.process.stdout.readline().split()[1])

    def time_of(self, count):
        return self.start + count / self.fps

    def end(self):
        end(self.process)


def summary(values, digits=2):
    """Median and range."""
    values = [value for value in values if value is not None]
    if not values:
        return "-"
    return f"{statistics.median(values):.{digits}f} ({min(values):.{digits}f}..{max(values):.{digits}f})"


def table(rows):
    """Prints rows of texts in columns; the first row is the heading."""
    widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
    for row in rows:
        print("  ".join(text.ljust(width) for text, width in zip(row, widths)).rstrip(), flush=True)
    print()


def ratio(name, ours, theirs, what):
    """The median of the ratios of runs made side by side."""
    pairs = [a / b for a, b in zip(ours, theirs) if a is not None and b]
    if pairs:
        print(f"RATIO {name} {statistics.median(pairs):.3f} {what} ({min(pairs):.2f}..{max(pairs):.2f})", flush=True)
