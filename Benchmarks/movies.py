"""What can be read from a recorded movie: its state, its frame counts, its likeness to a reference, its timing."""

import array
import json
import os
import queue
import re
import struct
import subprocess
import tempfile
import threading
from pathlib import Path

BARCODE_BITS = 24
WIDTH, HEIGHT = 1920, 1080


def run(*words):
    return subprocess.run(words, capture_output=True).stdout


def is_finished(path):
    """Whether the whole index stands after the media, which is when any player can open the movie."""
    if path is None:
        return False
    has_media = False
    with open(path, "rb") as file:
        size = file.seek(0, 2)
        at = 0
        while at + 8 <= size:
            file.seek(at)
            length, kind, large = struct.unpack(">I4sQ", file.read(16).ljust(16, b"\0"))
            length = large if length == 1 else length
            if length < 8 or at + length > size:
                return False
            if kind == b"moov" and has_media:
                return True
            has_media = has_media or kind == b"mdat"
            at += length
    return False


def only_movie(folder):
    return next(iter(Path(folder).glob("*.mp4")), None)


def frame_counts(path):
    """The count painted into each frame of the scene, in the order of the frames."""
    crop = f"crop={BARCODE_BITS * 16}:16:0:0,format=gray,scale={BARCODE_BITS}:1:flags=area"
    raw = run("ffmpeg", "-v", "quiet", "-i", str(path), "-vsync", "0", "-vf", crop, "-f", "rawvideo", "-")
    rows = [raw[i : i + BARCODE_BITS] for i in range(0, len(raw) - BARCODE_BITS + 1, BARCODE_BITS)]
    return [sum(1 << bit for bit in range(BARCODE_BITS) if row[bit] > 127) for row in rows]


def repeated_and_lost(counts):
    steps = [b - a for a, b in zip(counts, counts[1:])]
    return steps.count(0), sum(step - 1 for step in steps if step > 1)


def seconds(path):
    data = json.loads(run("ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "json", str(path)))
    return float(data["format"]["duration"])


def _frames(path):
    """Luma and chroma planes of each frame."""
    words = ["ffmpeg", "-v", "error", "-i", str(path), "-vsync", "0", "-pix_fmt", "yuv420p", "-f", "rawvideo", "-"]
    size = WIDTH * HEIGHT * 3 // 2
    with subprocess.Popen(words, stdout=subprocess.PIPE) as process:
        try:
            while len(frame := process.stdout.read(size)) == size:
                yield frame
        finally:
            process.kill()


def _count_in(frame):
    row = 8 * WIDTH
    return sum(1 << bit for bit in range(BARCODE_BITS) if frame[row + 16 * bit + 8] > 127)


def _last_of_each_count(path):
    held = None
    for frame in _frames(path):
        count = _count_in(frame)
        if held and count != held[0]:
            yield held
        if not held or count >= held[0]:
            held = (count, frame)
    if held:
        yield held


class _Pipe:
    """A file that ffmpeg reads frames from; it opens and probes its inputs one by one, so each has a thread."""

    def __init__(self, path):
        os.mkfifo(path)
        self.path = path
        self.frames = queue.Queue(8)
        self.thread = threading.Thread(target=self._write, daemon=True)
        self.thread.start()

    def _write(self):
        with open(self.path, "wb") as file:
            while frame := self.frames.get():
                file.write(frame)

    def end(self):
        self.frames.put(None)
        self.thread.join()


def ssim(path, reference):
    """Mean structural likeness of the luma of those frames that both movies hold, and their number."""
    with tempfile.TemporaryDirectory() as folder:
        pipes = [_Pipe(Path(folder) / "tested"), _Pipe(Path(folder) / "reference")]
        words = ["ffmpeg", "-nostdin"]
        for pipe in pipes:
            words += ["-f", "rawvideo", "-pix_fmt", "yuv420p", "-s", f"{WIDTH}x{HEIGHT}", "-i", str(pipe.path)]
        with open(Path(folder) / "report", "w+") as report:
            process = subprocess.Popen([*words, "-lavfi", "ssim", "-f", "null", "-"], stderr=report)
            compared = 0
            others = _last_of_each_count(reference)
            other = next(others, None)
            for count, frame in _last_of_each_count(path):
                while other and other[0] < count:
                    other = next(others, None)
                if other and other[0] == count:
                    pipes[0].frames.put(frame)
                    pipes[1].frames.put(other[1])
                    compared += 1
            for pipe in pipes:
                pipe.end()
            process.wait()
            report.seek(0)
            return float(re.search(r"SSIM Y:([\d.]+)", report.read())[1]), compared


def picture_times(path):
    """Of all pictures, in seconds."""
    return sorted(
        float(time)
        for time in run("ffprobe", "-v", "error", "-select_streams", "v", "-show_entries", "packet=pts_time", "-of",
                        "csv=p=0", str(path)).decode().replace(",", " ").split()
    )


def last_motion(path):
    """When the highest count was shown first, in seconds."""
    counts = frame_counts(path)
    return picture_times(path)[counts.index(max(counts))]


def luma_error(path, instant, screenshot):
    """Root mean square of the luma's difference to a screenshot, of the picture that is shown at that time."""

    def luma(source, choice):
        return run("ffmpeg", "-v", "error", "-i", str(source), "-vf", f"{choice}format=gray", "-vsync", "0", "-frames:v",
                   "1", "-f", "rawvideo", "-")

    shown = sum(time <= instant for time in picture_times(path)) - 1
    seen, real = luma(path, f"select=eq(n\\,{shown}),"), luma(screenshot, "")
    if len(seen) != len(real):
        raise RuntimeError(f"{path} and the screen differ in size")
    return (sum((a - b) ** 2 for a, b in zip(seen, real)) / len(real)) ** 0.5


def flash_times(path):
    """When the middle of the picture turns from dark to bright, in seconds."""
    times = picture_times(path)
    luma = run("ffmpeg", "-v", "error", "-i", str(path), "-vsync", "0", "-vf",
               "crop=64:64,format=gray,scale=1:1:flags=area", "-f", "rawvideo", "-")
    return [times[i] for i in range(1, min(len(luma), len(times))) if luma[i - 1] < 60 and luma[i] > 180]


def beep_times(path):
    """When the sound starts after at least 0.1 s of silence, in seconds."""
    rate = 48000
    samples = array.array("h", run("ffmpeg", "-v", "error", "-i", str(path), "-map", "0:a", "-ac", "1", "-ar", str(rate),
                                   "-f", "s16le", "-"))
    start = float(run("ffprobe", "-v", "error", "-select_streams", "a", "-show_entries", "stream=start_time", "-of",
                      "csv=p=0", str(path)).split()[0])
    times, last = [], -rate
    for i, sample in enumerate(samples):
        if abs(sample) > 2000:
            if i - last > rate // 10:
                times.append(start + i / rate)
            last = i
    return times


def sound_offsets(path):
    """Sound minus picture at each flash, in milliseconds; positive is late sound."""
    beeps = beep_times(path)
    return [1000 * min((beep - flash for beep in beeps), key=abs) for flash in flash_times(path)] if beeps else []
