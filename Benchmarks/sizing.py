"""./bench sizing: how long it takes to say what many folders take up, against `du -sk` for one after another."""

import argparse
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

from support import BUILD, now, ratio, summary

WALKER = BUILD / "Benchmarks/foldersizes"
CACHES = [60000, 40000, 30000, 20000, 12000, 8000, 5000, 3000, 2000, 1500, 1000, 700, 500, 300, 200, 100, 50, 20, 10]


def plant(folder, files, chance):
    """A tree of so many files, as caches and bundles have them: 1 % second names, 2 % links."""
    folders = [folder]
    folder.mkdir()
    last = None
    for number in range(files):
        if number % 11 == 0:
            parent = chance.choice(folders[-40:])
            folders.append(parent / f"{chance.getrandbits(32):08x}")
            folders[-1].mkdir()
        path = chance.choice(folders[-40:]) / f"{number:x}-{chance.getrandbits(64):016x}"
        kind = chance.random()
        if last and kind < 0.01:
            os.link(last, path)
        elif last and kind < 0.03:
            path.symlink_to(last)
        else:
            descriptor = os.open(path, os.O_CREAT | os.O_WRONLY, 0o600)
            # Takes up room as if it were written.
            os.posix_fallocate(descriptor, 0, int(chance.expovariate(1 / 7000)) + 1)
            os.close(descriptor)
            last = path
    return len(folders)


def make_trees(place, files):
    chance = random.Random(6)
    bundles = [chance.randint(60, 2300) for _ in range(100)]
    share = files / (sum(CACHES) + sum(bundles))
    folders, count = [], 0
    for index, size in enumerate(CACHES + bundles):
        folders.append(place / (f"cache {index}" if index < len(CACHES) else f"bundle {index}.app"))
        count += plant(folders[-1], max(1, round(size * share)), chance)
    print(f"{files} files in {count} folders, in {len(CACHES)} + {len(bundles)} trees")
    return folders


def du(folders):
    start = now()
    done = subprocess.run(["sh", "-c", 'for folder; do du -sk "$folder"; done', "sh", *folders], capture_output=True,
                          check=True)
    seconds = now() - start
    return seconds, [int(line.split(b"\t")[0]) * 1024 for line in done.stdout.splitlines()]


class Walker:
    """The program's own way, in a process that has started before."""

    def __init__(self, place, folders, threads):
        names = place / "folders"
        names.write_bytes(b"\0".join(map(os.fsencode, folders)))
        self.process = subprocess.Popen([WALKER, names, *threads], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True)

    def __call__(self):
        self.process.stdin.write("\n")
        self.process.stdin.flush()
        return float(self.process.stdout.readline()), [int(size) for size in self.process.stdout.readline().split()]

    def end(self):
        self.process.stdin.close()
        self.process.wait()


def forget_files():
    """Empties the kernel's caches; False where that is not allowed."""
    os.sync()
    try:
        Path("/proc/sys/vm/drop_caches").write_text("3")
    except OSError:
        return False
    return True


def compare(walker, folders, rounds, prepare):
    """Times of both side by side; the figures must be equal."""
    ours, theirs = [], []
    for index in range(rounds):
        figures = []
        for measure, times in [(walker, ours), (lambda: du(folders), theirs)][::1 if index % 2 else -1]:
            prepare()
            seconds, sizes = measure()
            times.append(seconds)
            figures.append(sizes)
        if figures[0] != figures[1]:
            different = [str(folder) for folder, a, b in zip(folders, *figures) if a != b]
            raise SystemExit(f"the figures differ: {different}")
    return ours, theirs


def main():
    parser = argparse.ArgumentParser(prog="./bench sizing", description=__doc__)
    parser.add_argument("--files", type=int, default=300_000)
    parser.add_argument("--rounds", type=int, default=9, help="warm; a third as many cold")
    parser.add_argument("--threads", type=int, help="of the walk; the program's own number without it")
    parser.add_argument("--place", help="where to put the trees; the folder for temporary files without it")
    options = parser.parse_args()

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # the trees go all the same
    place = Path(tempfile.mkdtemp(prefix="velbrix-sizing-", dir=options.place))
    try:
        folders = make_trees(place, options.files)
        walker = Walker(place, folders, [str(options.threads)] if options.threads else [])
        walker(), du(folders)
        print(f"load {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors")
        results = {"warm": compare(walker, folders, options.rounds, lambda: None)}
        if forget_files():
            results["cold"] = compare(walker, folders, max(1, options.rounds // 3), forget_files)
        else:
            print("cold: not measured, the kernel's caches may not be emptied here")
        walker.end()
        print("the figures are equal")
        for name, (ours, theirs) in results.items():
            print(f"{name} s: ours {summary(ours, 3)}, du one by one {summary(theirs, 3)}")
        for name, (ours, theirs) in results.items():
            ratio(f"sizing-{name}-wall", ours, theirs, f"our sizes of all folders against du -sk one by one, {name}")
    finally:
        shutil.rmtree(place)


if __name__ == "__main__":
    main()
