"""./bench record: screen recording at 1920x1080 beside SimpleScreenRecorder and ffmpeg, in interleaved runs.

CPU is what the recorder's processes and, beyond the scene alone, the X server use per due frame while recording.
"""

import argparse
import os
import shutil
import signal
import subprocess
import tempfile
from pathlib import Path

import movies
from support import (Scene, Velbrix, cpu_seconds, end, now, peak_megabytes, ratio, sleep_until, summary, table,
                     wait_for, x_server, BUILD)

BIT_RATE = "10368k"
SETTLE = 1.5  # seconds from the command to the measured stretch


class Ours:
    name = "velbrix"

    def __init__(self, folder, fps, sound=False):
        self.folder = folder
        self.app = Velbrix(Velbrix_ScreenRecord_fps=fps, Velbrix_ScreenRecord_outputDir=str(folder),
                           Velbrix_ScreenRecord_recordSystemAudio=sound).start_and_wait()
        self.pid = self.app.pid
        # What the program used before it was asked for anything is not the recording's.
        self.before = cpu_seconds(self.pid)

    def start(self):
        self.app.command("record", "start")

    def ask_to_stop(self):
        self.stopping = subprocess.Popen([str(BUILD / "Sources/Velbrix/velbrix"), "record", "stop"],
                                         env=self.app.environment, stdout=subprocess.DEVNULL)

    def finish(self):
        if self.stopping.wait() != 0:
            raise RuntimeError("velbrix record stop failed")

    def close(self):
        self.app.end()


class Peer:
    before = 0.0

    def finish(self):
        self.process.wait(20)

    def close(self):
        if self.process.poll() is None:
            end(self.process)


class SimpleScreenRecorder(Peer):
    name = "simplescreenrecorder"

    def __init__(self, folder, fps, sound=False):
        self.settings = folder / "settings.conf"
        self.settings.write_text(f"""[input]
audio_enabled={str(sound).lower()}
audio_backend=pulseaudio
audio_pulseaudio_source=speaker.monitor
video_area=screen
video_frame_rate={fps}
video_x=0
video_y=0
video_w=1920
video_h=1080
video_record_cursor=true
video_scale=false
[output]
add_timestamp=false
container=mp4
audio_codec=aac
audio_kbit_rate=192
file={folder}/movie.mp4
video_allow_frame_skipping=true
video_codec=h264
video_h264_crf=23
video_h264_preset=0
[record]
hotkey_enable=false
[welcome]
skip_page=true
""")
        self.folder = folder

    def start(self):
        words = ["simplescreenrecorder", "--start-hidden", "--start-recording", "--no-systray",
                 f"--settingsfile={self.settings}", f"--logfile={self.folder}/log"]
        self.process = subprocess.Popen(words, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, text=True)
        self.pid = self.process.pid

    def ask_to_stop(self):
        self.process.stdin.write("record-save\nquit\n")
        self.process.stdin.flush()


class Ffmpeg(Peer):
    name = "ffmpeg"

    def __init__(self, folder, fps, sound=False):
        self.words = ["ffmpeg", "-nostdin", "-v", "error", "-f", "x11grab", "-framerate", str(fps), "-video_size",
                      "1920x1080", "-i", os.environ["DISPLAY"]]
        if sound:
            self.words += ["-f", "pulse", "-i", "speaker.monitor", "-c:a", "aac"]
        self.words += ["-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-b:v", BIT_RATE, "-g",
                       str(fps), "-bf", "0", str(folder / "movie.mp4")]

    def start(self):
        self.process = subprocess.Popen(self.words, stderr=subprocess.DEVNULL)
        self.pid = self.process.pid

    def ask_to_stop(self):
        self.process.send_signal(signal.SIGTERM)


TOOLS = [Ours, SimpleScreenRecorder, Ffmpeg]


class Run:
    """One recording of one scene and what it cost."""

    def __init__(self, tool, mode, fps, seconds, server_alone, sound):
        self.folder = Path(tempfile.mkdtemp(prefix="movie-", dir=os.environ["HOME"]))
        scene = Scene(mode, fps, seconds + SETTLE + 6)
        recorder = tool(self.folder, fps, sound)
        try:
            self._record(recorder, scene, seconds, server_alone)
        finally:
            recorder.close()
            scene.end()
        self._analyse(scene, mode)
        shutil.rmtree(self.folder)

    def _record(self, recorder, scene, seconds, server_alone):
        sleep_until(scene.start + 0.5)
        self.commanded = now()
        recorder.start()
        self.command_seconds = now() - self.commanded
        sleep_until(self.commanded + SETTLE)
        begin, client, server = now(), cpu_seconds(recorder.pid), cpu_seconds(x_server())
        sleep_until(begin + seconds)
        length = now() - begin
        frames = length * scene.fps
        self.client = 1000 * (cpu_seconds(recorder.pid) - client) / frames
        self.server = 1000 * ((cpu_seconds(x_server()) - server) - server_alone * length) / frames
        self.cpu = self.client + self.server
        self.memory = peak_megabytes(recorder.pid)
        self.whole_cpu = cpu_seconds(recorder.pid) - recorder.before
        asked = now()
        recorder.ask_to_stop()
        wait_for(lambda: movies.is_finished(movies.only_movie(self.folder)), "the movie is not finished")
        self.stop = 1000 * (now() - asked)
        recorder.finish()
        self.end = 1000 * (now() - asked)

    def _analyse(self, scene, mode):
        movie = movies.only_movie(self.folder)
        self.megabytes = movie.stat().st_size / 1e6
        self.repeated = self.lost = self.start = None
        if mode not in ("idle", "pointer"):
            counts = movies.frame_counts(movie)
            self.repeated, self.lost = movies.repeated_and_lost(counts)
            # A count stands for one period of the scene; its middle is the best guess.
            self.start = 1000 * (scene.time_of(counts[0] + 0.5) - self.commanded)


def server_alone(mode, fps, seconds):
    """CPU of the X server per second with the scene and no recorder."""
    scene = Scene(mode, fps, seconds + 2)
    sleep_until(scene.start + 1)
    begin, server = now(), cpu_seconds(x_server())
    sleep_until(begin + seconds)
    load = (cpu_seconds(x_server()) - server) / (now() - begin)
    scene.end()
    return load


def play(seconds):
    """Something to hear."""
    words = ["ffmpeg", "-nostdin", "-v", "quiet", "-re", "-f", "lavfi", "-i", "sine=440:r=48000", "-t", str(seconds),
             "-device", "speaker", "-f", "pulse", "tone"]
    return subprocess.Popen(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def compare(mode, fps, options):
    player = play(3600) if options.sound else None
    try:
        return compare_cpu(mode, fps, options)
    finally:
        if player:
            end(player)


def compare_cpu(mode, fps, options):
    runs = {tool: [] for tool in TOOLS}
    for _ in range(options.rounds):
        alone = server_alone(mode, fps, options.seconds / 2)
        for tool in TOOLS:
            runs[tool].append(Run(tool, mode, fps, options.seconds, alone, options.sound))
    columns = [("CPU ms/frame", "cpu", 2), ("recorder", "client", 2), ("X server", "server", 2), ("repeated", "repeated", 0),
               ("lost", "lost", 0), ("memory MB", "memory", 0), ("start ms", "start", 0), ("stop ms", "stop", 0),
               ("stop command ms", "end", 0), ("file MB", "megabytes", 1)]
    print(f"{mode}, {fps} fps, {options.seconds} s, {options.rounds} rounds: median (range)")
    rows = [["", *(title for title, _, _ in columns)]]
    for tool in TOOLS:
        rows.append([tool.name, *(summary([getattr(run, field) for run in runs[tool]], digits)
                                  for _, field, digits in columns)])
    table(rows)
    return runs


def report(results):
    def values(runs, tool, field):
        return [getattr(run, field) for run in runs[tool]]

    for (mode, fps), runs in results.items():
        suffix = "" if mode == "scroll" else f"-{mode}"
        for peer, mark in ((SimpleScreenRecorder, ""), (Ffmpeg, "-ffmpeg")):
            ratio(f"record-1080p{fps}-cpu{suffix}{mark}", values(runs, Ours, "cpu"), values(runs, peer, "cpu"),
                  f"CPU per frame, {mode}, against {peer.name}")
    together = {tool: [run for runs in results.values() for run in runs[tool]] for tool in TOOLS}
    for field, name, what in (("start", "record-start-wall", "command to first frame"),
                              ("stop", "record-stop-wall", "command to playable file"),
                              ("memory", "record-memory", "peak memory")):
        for peer, mark in ((SimpleScreenRecorder, ""), (Ffmpeg, "-ffmpeg")):
            ratio(name + mark, values(together, Ours, field), values(together, peer, field),
                  f"{what} against {peer.name}")


def compare_likeness(options):
    """Likeness to lossless pictures of the same ticks, at the same bit rate."""
    folder = Path(tempfile.mkdtemp(prefix="likeness-", dir=os.environ["HOME"]))
    fps = 60
    rows = [["SSIM", "scene", "frames", "Y", "file MB"]]
    ours, theirs = [], []
    modes = ["scroll", "part", "desk"]
    for mode in modes:
        reference = folder / f"{mode}.mkv"
        # At a quarter of the speed every tick is caught.
        ticks = int((options.seconds + 2) * fps)
        scene = Scene(mode, fps / 4, ticks / fps * 4)
        subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-f", "x11grab", "-framerate", str(fps // 2), "-video_size",
                        "1920x1080", "-i", os.environ["DISPLAY"], "-t", str(ticks / fps * 4 - 0.5), "-c:v", "libx264rgb",
                        "-preset", "ultrafast", "-qp", "0", str(reference)], check=True)
        scene.end()
        for tool, values in ((Ours, ours), (Ffmpeg, theirs)):
            part = folder / f"{mode}-{tool.name}"
            part.mkdir()
            scene = Scene(mode, fps, options.seconds + 6)
            recorder = tool(part, fps)
            recorder.start()
            sleep_until(scene.start + options.seconds)
            recorder.ask_to_stop()
            recorder.finish()
            recorder.close()
            scene.end()
            movie = movies.only_movie(part)
            likeness, frames = movies.ssim(movie, reference)
            values.append(1 - likeness)
            rows.append([tool.name, mode, str(frames), f"{likeness:.4f}", f"{movie.stat().st_size / 1e6:.1f}"])
    table(rows)
    what = "1 - SSIM at the same bit rate against ffmpeg"
    for mode, one, other in zip(modes, ours, theirs):
        ratio(f"record-ssim-{mode}", [one], [other], what)
    ratio("record-ssim", ours, theirs, f"{what}, all scenes")


def compare_rest(options):
    """How much of the blur of a motion is left five seconds after its end, at the same bit rate."""
    rows = [["still after motion", "luma error", "file MB"]]
    errors = {Ours: [], Ffmpeg: []}
    for _ in range(options.rounds):
        for tool, values in errors.items():
            folder = Path(tempfile.mkdtemp(prefix="rest-", dir=os.environ["HOME"]))
            scene = Scene("rest", 60, 20)
            recorder = tool(folder, 60)
            recorder.start()
            sleep_until(scene.start + 13)
            shot = folder / "shot.png"
            subprocess.run(["import", "-window", "root", str(shot)], check=True)
            recorder.ask_to_stop()
            recorder.finish()
            recorder.close()
            scene.end()
            movie = movies.only_movie(folder)
            values.append(movies.luma_error(movie, movies.last_motion(movie) + 5, shot))
            rows.append([tool.name, f"{values[-1]:.2f}", f"{movie.stat().st_size / 1e6:.1f}"])
            shutil.rmtree(folder)
    table(rows)
    ratio("record-still-after-motion", errors[Ours], errors[Ffmpeg],
          "luma error 5 s after the motion ended, at the same bit rate, against ffmpeg")


def compare_sound(options):
    """A flash and a beep at the same instants, once a second."""
    rows = [["sound - picture ms", "median (range)"]]
    for tool in (Ours, Ffmpeg):
        folder = Path(tempfile.mkdtemp(prefix="sound-", dir=os.environ["HOME"]))
        source = subprocess.Popen([str(BUILD / "Benchmarks/flashbeep"), str(options.seconds + 10)])
        sleep_until(now() + 3)  # until the source has learnt when its sound is heard
        recorder = tool(folder, 60, sound=True)
        recorder.start()
        sleep_until(now() + options.seconds + 2)
        recorder.ask_to_stop()
        recorder.finish()
        recorder.close()
        end(source)
        rows.append([tool.name, summary(movies.sound_offsets(movies.only_movie(folder)), 1)])
    table(rows)


def compare_kill(options):
    """What is left of a recording whose program is killed."""
    rows = [["after kill -9", "kept s", "lost s"]]
    for tool in TOOLS:
        folder = Path(tempfile.mkdtemp(prefix="kill-", dir=os.environ["HOME"]))
        scene = Scene("scroll", 30, options.seconds + 10)
        recorder = tool(folder, 30)
        recorder.start()
        sleep_until(scene.start + options.seconds + 1.5)
        os.kill(recorder.pid, signal.SIGKILL)
        killed = now()
        recorder.close()
        movie = movies.only_movie(folder)
        counts = movies.frame_counts(movie) if movie else []
        kept = scene.time_of(counts[-1] + 1) - scene.time_of(counts[0]) if counts else 0
        lost = f"{killed - scene.time_of(counts[-1] + 1):.2f}" if counts else "all"
        rows.append([tool.name, f"{kept:.2f}", lost])
        scene.end()
    table(rows)


def main():
    parser = argparse.ArgumentParser(prog="./bench record", description=__doc__)
    parser.add_argument("--quick", action="store_true", help="one short round of the scrolling scene at 60 fps")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--seconds", type=float, default=8)
    parser.add_argument("--fps", type=int, nargs="+", default=[30, 60])
    parser.add_argument("--scenes", nargs="+", default=["scroll", "desk", "whole", "pointer", "idle"])
    parser.add_argument("--parts", nargs="+", default=["cpu", "ssim", "rest", "sound", "kill"])
    parser.add_argument("--no-sound", dest="sound", action="store_false", help="measure CPU without the sound")
    options = parser.parse_args()
    if options.quick:
        options.rounds, options.seconds, options.fps = 1, 4, [60]
        options.scenes, options.parts = ["scroll"], ["cpu"]
    if "cpu" in options.parts:
        results = {(mode, fps): compare(mode, fps, options) for mode in options.scenes for fps in options.fps}
    if "ssim" in options.parts:
        compare_likeness(options)
    if "rest" in options.parts:
        compare_rest(options)
    if "sound" in options.parts:
        compare_sound(options)
    if "kill" in options.parts:
        compare_kill(options)
    if "cpu" in options.parts:
        report(results)


if __name__ == "__main__":
    main()
