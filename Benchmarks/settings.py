"""./bench settings: how settings are written, and what a kill in the middle of a write does to them."""

import argparse
import json
import os
import random
import subprocess
import threading
from pathlib import Path

from support import BUILD, Velbrix, now, ratio, sleep_until, summary, wait_for

WRITER = BUILD / "Benchmarks/settingswrite"


def compare_writes(folder, rounds):
    lines = subprocess.run([WRITER, "compare", folder / "compare.json", str(rounds)], capture_output=True, text=True,
                           check=True).stdout.splitlines()
    ours, bare = zip(*(map(float, line.split()) for line in lines[rounds // 10:]))
    print(f"write ms: ours {summary(ours, 3)}, bare QSaveFile {summary(bare, 3)}")
    return ours, bare


def watch_burst(folder, changes):
    """How many writes a burst of changes makes, and how long after its first change the file is there."""
    path = folder / "burst.json"
    seen = {}
    process = subprocess.Popen([WRITER, "burst", path, str(changes)], stdout=subprocess.PIPE, text=True)
    while process.poll() is None:
        if path.exists():
            seen.setdefault(path.stat().st_mtime_ns, now())
        sleep_until(now() + 0.001)
    delay = 1000 * (min(seen.values()) - float(process.stdout.read()))
    print(f"burst of {changes} changes in 100 ms: {len(seen)} write(s), the first {delay:.0f} ms after the first change")


def kill_in_writes(kills):
    """Kills a program that keeps writing our settings; counts what was lost."""
    velbrix = Velbrix()
    path = velbrix.settings_file
    before = json.loads(path.read_text())
    lost = strays = 0
    for _ in range(kills):
        process = subprocess.Popen([WRITER, "churn", path], stdout=subprocess.PIPE, text=True)
        safe = []
        reader = threading.Thread(target=lambda: safe.extend(process.stdout))
        reader.start()
        wait_for(lambda: safe, "no write", step=0.001)
        sleep_until(now() + random.uniform(0, 0.05))
        process.kill()
        process.wait()
        reader.join()
        try:
            after = json.loads(path.read_text())
            whole = [line for line in safe if line.endswith("\n")]
            lost += any(after.get(key) != value for key, value in before.items()) or after["churn"] < int(whole[-1])
        except ValueError:
            lost += 1
    strays = len(os.listdir(path.parent)) - 1
    velbrix.start_and_wait()
    left = len(os.listdir(path.parent)) - 1
    velbrix.end()
    print(f"{kills} kills in writes: {lost} lost an earlier setting; {strays} stray file(s), {left} after the next start")
    return lost, left


def main():
    parser = argparse.ArgumentParser(prog="./bench settings", description=__doc__)
    parser.add_argument("--rounds", type=int, default=300, help="writes of each kind")
    parser.add_argument("--kills", type=int, default=100)
    options = parser.parse_args()

    folder = Path(os.environ["HOME"])
    watch_burst(folder, 300)
    subprocess.run([WRITER, "quit", folder / "quit.json"], check=True)
    kept = json.loads((folder / "quit.json").read_text()) == {"Velbrix_Example_last": True}
    print(f"a change just before the end is {'kept' if kept else 'LOST'}")
    lost, left = kill_in_writes(options.kills)
    ours, bare = compare_writes(folder, options.rounds)
    ratio("settings-write", ours, bare, "our write against a bare QSaveFile write of the same bytes")
    if lost or left or not kept:
        raise SystemExit("settings were lost")


if __name__ == "__main__":
    main()
