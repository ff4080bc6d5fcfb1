"""./bench idle: what Velbrix costs while it only sits in the tray, beside an empty tray program."""

import argparse
import subprocess
import threading

from support import (BUILD, Velbrix, cpu_seconds, end, now, private_dirty_megabytes, ratio, sleep_until, summary, table,
                     sleeps, wait_for, wake_ups)


class EmptyTray:
    def start(self):
        self.process = subprocess.Popen([BUILD / "Benchmarks/emptytray"])
        self.pid = self.process.pid
        return self

    def end(self):
        end(self.process)


class Docking:
    """Notes when a program's icon moves into the tray."""

    def __init__(self):
        self.process = subprocess.Popen(["stdbuf", "-oL", "xev", "-root", "-event", "substructure"],
                                        stdout=subprocess.PIPE, text=True)
        self.last = None
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            if line.startswith("ReparentNotify"):
                self.last = now()

    def milliseconds(self, program):
        self.last = None
        begin = now()
        program.start()
        wait_for(lambda: self.last, "no icon in the tray", step=0.0005)
        return 1000 * (self.last - begin)


def measure_start(rounds):
    docking = Docking()
    ours, theirs = [], []
    for _ in range(rounds + 1):
        for program, times in ((Velbrix(), ours), (EmptyTray(), theirs)):
            times.append(docking.milliseconds(program))
            sleep_until(now() + 0.5)
            program.end()
    end(docking.process)
    # The first start of each reads its libraries.
    return ours[1:], theirs[1:]


def measure_rest(seconds):
    """Private memory in MB, wake-ups and CPU ms per minute of both programs."""
    programs = [Velbrix().start(), EmptyTray().start()]
    sleep_until(now() + 5)
    begin = now()
    before = [(sleeps(program.pid), cpu_seconds(program.pid)) for program in programs]
    sleep_until(begin + seconds)
    minutes = (now() - begin) / 60
    result = []
    for program, (wakes, cpu) in zip(programs, before):
        result.append((private_dirty_megabytes(program.pid), wake_ups(wakes, sleeps(program.pid)) / minutes,
                       1000 * (cpu_seconds(program.pid) - cpu) / minutes))
        program.end()
    return result


def main():
    parser = argparse.ArgumentParser(prog="./bench idle", description=__doc__)
    parser.add_argument("--rounds", type=int, default=9, help="starts of each program")
    parser.add_argument("--seconds", type=float, default=60, help="length of the rest")
    options = parser.parse_args()

    with subprocess.Popen(["trayer", "--SetDockType", "true"], stderr=subprocess.DEVNULL) as trayer:
        sleep_until(now() + 1)
        ours, theirs = measure_start(options.rounds)
        rest = measure_rest(options.seconds)
        end(trayer)
    rows = [["", "start to tray ms", "private dirty MB", "wake-ups/min", "CPU ms/min"]]
    for name, starts, (memory, wakes, cpu) in zip(("velbrix", "empty tray program"), (ours, theirs), rest):
        rows.append([name, summary(starts, 0), f"{memory:.1f}", f"{wakes:.1f}", f"{cpu:.1f}"])
    table(rows)
    ratio("idle-start", ours, theirs, "start to tray against an empty tray program")
    ratio("idle-memory", [rest[0][0]], [rest[1][0]], "private dirty memory against an empty tray program")
    print(f"IDLE wake-ups/min {rest[0][1]:.1f}\nIDLE cpu-ms/min {rest[0][2]:.1f}")


if __name__ == "__main__":
    main()
