"""What an independent reader finds in a movie."""

import array
import json
import math
import pathlib
import shutil
import subprocess
import wave

from desktop import output_of

RATE = 48000


def probe(path):
    found = json.loads(output_of("ffprobe", "-v", "error", "-show_streams", "-show_format", "-of", "json", path))
    streams = {stream["codec_type"]: stream for stream in found["streams"]}
    return streams, float(found["format"]["duration"])


def decode(path, *options):
    """Raw output of a decoder that is told to call any damage an error."""
    command = ["ffmpeg", "-v", "error", "-xerror", "-i", str(path), *[str(option) for option in options], "-"]
    done = subprocess.run(command, capture_output=True, timeout=60)
    if done.returncode != 0 or done.stderr:
        raise AssertionError(f"{path} does not decode: {done.stderr.decode()}")
    return done.stdout


def picture_sums(path):
    """One sum for each picture."""
    lines = decode(path, "-map", "0:v", "-f", "framemd5").decode().splitlines()
    return [line.split(",")[-1].strip() for line in lines if not line.startswith("#")]


def picture_times(path, *options):
    found = output_of("ffprobe", "-v", "error", "-select_streams", "v", *options,
                      "-show_entries", "frame=pts_time", "-of", "csv=p=0", path)
    return [float(line.strip(",")) for line in found.split()]


def key_picture_times(path):
    return picture_times(path, "-skip_frame", "nokey")


def picture(path, seconds, target):
    """The picture shown at that time, as a PNG file."""
    output_of("ffmpeg", "-v", "error", "-y", "-i", path, "-vf", "fps=20", "-ss", seconds, "-frames:v", 1, target)
    return target


def pixels(image, x, y, width, height):
    """The rectangle's pixels as (red, green, blue)."""
    raw = subprocess.run(["ffmpeg", "-v", "error", "-i", str(image), "-vf", f"crop={width}:{height}:{x}:{y}",
                          "-f", "rawvideo", "-pix_fmt", "rgb24", "-"], capture_output=True, timeout=60, check=True).stdout
    return [tuple(raw[i:i + 3]) for i in range(0, len(raw), 3)]


def likeness(one, other, blank=(0, 0, 0, 0)):
    """Peak signal to noise ratio in dB of two pictures of one size, outside a rectangle."""
    x, y, width, height = blank
    box = f"drawbox={x}:{y}:{width}:{height}:black:fill" if width else "null"
    graph = f"[0]format=rgb24,{box}[a];[1]format=rgb24,{box}[b];[a][b]psnr"
    done = subprocess.run(["ffmpeg", "-v", "info", "-i", str(one), "-i", str(other), "-lavfi", graph,
                           "-f", "null", "-"], capture_output=True, text=True, timeout=60, check=True)
    return float(done.stderr.split("average:")[1].split()[0])


def sound(path, stream=0):
    """The samples of one sound track, left channel, placed at their times."""
    raw = decode(path, "-map", f"0:a:{stream}", "-af", "aresample=async=1:first_pts=0,pan=mono|c0=c0",
                 "-ar", RATE, "-f", "s16le")
    return array.array("h", raw)


def level(samples, frequency):
    """How loud that tone is: 1 is the loudest sine that fits."""
    step = 2 * math.pi * frequency / RATE
    real = sum(sample * math.cos(step * index) for index, sample in enumerate(samples))
    imaginary = sum(sample * math.sin(step * index) for index, sample in enumerate(samples))
    return 2 * math.hypot(real, imaginary) / len(samples) / 32768


def levels(samples, frequency, begin, seconds):
    """The tone's level in each twentieth of a second."""
    part = RATE // 20
    first, last = int(begin * RATE), int((begin + seconds) * RATE)
    return [level(samples[at:at + part], frequency) for at in range(first, last, part)]


def brightness(path):
    """(time, mean luma) of each picture."""
    # The reader's own file names know no Chinese or punctuation.
    plain = pathlib.Path(path).with_name("plain.mp4")
    shutil.copy(path, plain)
    found = output_of("ffprobe", "-v", "error", "-f", "lavfi", f"movie={plain},crop=64:64,signalstats",
                      "-show_entries", "frame=pts_time:frame_tags=lavfi.signalstats.YAVG", "-of", "csv=p=0")
    plain.unlink()
    return [tuple(float(field) for field in line.split(",")[:2]) for line in found.split()]


def write_tone(path, frequency, seconds, amplitude=0.5):
    samples = array.array("h")
    for index in range(int(RATE * seconds)):
        value = round(32767 * amplitude * math.sin(2 * math.pi * frequency * index / RATE))
        samples.extend((value, value))
    with wave.open(str(path), "wb") as file:
        file.setparams((2, 2, RATE, 0, "NONE", ""))
        file.writeframes(samples.tobytes())
    return path
