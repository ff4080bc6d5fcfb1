"""./bench backup: a folder's archive beside zip's, and a folder's mirror beside bare rsync's."""

import argparse
import os
import random
import subprocess
import tempfile
from pathlib import Path

from support import BUILD, now, ratio, summary

RUN = BUILD / "Benchmarks/backuprun"
SMALL_FILES = 20_000
LARGE_FILES = 4
LARGE_SIZE = 64 << 20


def prose(size):
    """Words as a text has them: a few often, most of them rarely."""
    letters = "etaoinshrdlucmfwypvbgkjqxz"
    words = ["".join(random.choices(letters, k=random.randint(2, 10))) for _ in range(4000)]
    weights = [(rank + 2) ** -1.1 for rank in range(len(words))]
    pieces = []
    length = 0
    while length < size:
        pieces.append(" ".join(random.choices(words, weights, k=2000)) + "\n")
        length += len(pieces[-1])
    return "".join(pieces).encode()[:size]


def fill(folder):
    """What a user may keep: many small files, most of them text, and a few large ones; 413 MB."""
    random.seed(1)
    text = prose(8 << 20)
    for index in range(SMALL_FILES):
        if index % 100 == 0:
            place = folder / f"folder {index // 1000}" / f"文件夹 {index // 100}"
            place.mkdir(parents=True)
        size = min(int(random.lognormvariate(8.3, 1.16)), 4 << 20)
        start = random.randrange(len(text) - size)
        (place / f"file {index}").write_bytes(text[start:start + size] if random.random() < 0.7 else
                                              random.randbytes(size))
    for index in range(LARGE_FILES):
        with open(folder / f"large {index}", "wb") as file:
            for _ in range(LARGE_SIZE // len(text)):
                file.write(text if index % 2 == 0 else random.randbytes(len(text)))


def pretouch(megabytes):
    """Memory that the machine gave back to its host is slow to touch again; whoever runs next shall not pay for it."""
    block = bytearray(megabytes << 20)
    block[::4096] = b"x" * len(block[::4096])


def timed(*command, **options):
    pretouch(1200)
    os.sync()
    start = now()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, **options)
    return now() - start


class Places:
    """A new folder for each run: to refill one that was emptied is another measurement."""

    def __init__(self, folder):
        self.folder = folder
        self.count = 0

    def new(self):
        self.count += 1
        place = self.folder / f"run {self.count}"
        place.mkdir()
        return place


def compare_archives(source, places, rounds):
    ours, theirs, sizes = [], [], []
    for _ in range(rounds):
        place, other = places.new(), places.new() / "other.zip"
        ours.append(timed(RUN, "archive", source, place))
        theirs.append(timed("zip", "-r", "-q", "-y", other, source.name, cwd=source.parent))
        [archive] = place.glob("*.zip")
        sizes.append((archive.stat().st_size, other.stat().st_size))
        subprocess.run(["unzip", "-tqq", archive], check=True)
        archive.unlink()
        other.unlink()
    our_sizes, their_sizes = zip(*sizes)
    print(f"archive s: ours {summary(ours)} with its test and sync, zip {summary(theirs)}; "
          f"MB: ours {our_sizes[0] / 1e6:.1f}, zip {their_sizes[0] / 1e6:.1f}")
    ratio("backup-archive-wall", ours, theirs, "our archive, tested and on the disk, against zip -r -q -y")
    ratio("backup-archive-size", our_sizes, their_sizes, "our archive's bytes against zip's")


def compare_mirrors(source, places, rounds):
    rsync = ["rsync", "-a", "--checksum", "--delete", "--out-format=%n", f"{source}/"]
    first, again = ([], []), ([], [])
    for index in range(rounds):
        place, other = places.new(), places.new()
        commands = ([RUN, "mirror", source, place], [*rsync, f"{other}/"])
        for times in (first, again):
            # In turn: whoever runs second finds the disk busier.
            for which in (0, 1) if index % 2 == 0 else (1, 0):
                times[which].append(timed(*commands[which]))
    for kind, (ours, theirs) in {"first": first, "unchanged": again}.items():
        print(f"mirror s, {kind} run: ours {summary(ours)}, bare rsync {summary(theirs)}")
    ratio("backup-mirror-wall", *first, "our first sync against bare rsync -a --checksum --delete")
    ratio("backup-mirror-unchanged-wall", *again, "the same when nothing has changed")


def main():
    parser = argparse.ArgumentParser(prog="./bench backup", description=__doc__)
    parser.add_argument("--rounds", type=int, default=5, help="runs of each")
    options = parser.parse_args()

    folder = Path(tempfile.mkdtemp(prefix="backup-", dir=os.environ["HOME"]))
    source = folder / "source"
    source.mkdir()
    fill(source)
    places = Places(folder)
    compare_archives(source, places, options.rounds)
    compare_mirrors(source, places, options.rounds)


if __name__ == "__main__":
    main()
