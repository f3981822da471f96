#!/usr/bin/env python3
"""Kills what saves, fills its disk and cuts its power, and looks at what is left.

  crash_safety.py --tests FOLDER --bin FOLDER [--kills N] [--windows N] [--sizes N] [--losses N]
  [--seed N] [--only PIECE]...

Prints a line for each thing tried, and ends with 1 when any of it lost or mixed up what was saved.
"""

import argparse
import os
import random
import re
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import crash_lab
import crash_practice
import crash_room
import crash_window
import power_loss
from line_reader import LineReader

PIECES = ("kills", "window", "disk", "disk-practice", "disk-lab", "power", "practice", "lab")
PATIENCE = 20  # seconds that a program may take to answer


class Ground:
    """Where the programs are, and what came of trying them."""

    def __init__(self, arguments, place):
        self.saver = Path(arguments.tests, "tavoran-crash-saver").resolve()
        self.disk = Path(arguments.tests, "tavoran-faulty-disk.so").resolve()
        self.hands = Path(arguments.tests, "hands").resolve()
        self.bin = Path(arguments.bin).resolve()
        self.seed = arguments.seed
        self.place = Path(place)
        self.faults = 0
        self._number = 0

    def folder(self):
        """The name of a new folder, which is not made."""
        self._number += 1
        return self.place / str(self._number)

    def fault(self, text):
        self.faults += 1
        print(f"FAULT: {text} (seed {self.seed})", flush=True)

    def environment(self, folder=None, **more):
        variables = dict(os.environ, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8", LANGUAGE="en",
                         TMPDIR=str(self.place), HOME=str(self.place))
        if folder is not None:
            variables.update(LD_PRELOAD=str(self.disk), TAVORAN_DISK=str(folder))
        variables.update({f"TAVORAN_DISK_{name}": str(value) for name, value in more.items()})
        return variables

    def row(self, text):
        print(text, flush=True)


class Saver:
    """tavoran-crash-saver as it saves, one line after the other."""

    def __init__(self, ground, file, count, environment=None):
        self._process = subprocess.Popen([ground.saver, "save", file, str(count)], stdout=subprocess.PIPE,
                                         env=environment or ground.environment())
        self._lines = LineReader(self._process.stdout)

    def line(self, seconds=PATIENCE):
        return self._lines.line(seconds)

    def kill(self):
        self._process.send_signal(signal.SIGKILL)

    def end(self):
        self._process.kill()
        self._process.wait()
        self._process.stdout.close()


def number_in(line):
    found = re.fullmatch(r"(?:read|saved) (\d+)", line or "")
    return int(found.group(1)) if found else None


def names_in(folder):
    return sorted(place.name for place in folder.iterdir())


def check_start(ground, line, acknowledged, tried, where):
    """The number of the state that a start found, which is the last one told to be saved or the one after."""
    found = number_in(line)
    if found is None:
        ground.fault(f"{where}: the next start says {line!r}")
        return None
    if not acknowledged <= found <= tried:
        ground.fault(f"{where}: state {found} is there, {acknowledged} was saved")
    return found


def run_to_end(ground, saver, where, may_tell=False):
    """The last state that it says is there or saved. Refusals are faults, and so is what it tells the trader, unless
    it may have something to tell."""
    last = None
    while (line := saver.line()) is not None:
        number = number_in(line)
        if number is None and not (may_tell and line.startswith("told ")):
            ground.fault(f"{where}: {line}")
        last = last if number is None else number
    saver.end()
    return last


def run_until_killed(ground, saver, acknowledged, where):
    """The last state that it told to be saved, or found when it started."""
    line = saver.line()
    # Killed before it could say anything.
    found = None if line is None else check_start(ground, line, acknowledged, acknowledged + 1, where)
    last = max(acknowledged, found or 0)
    if found is None:
        saver.end()
        return last
    return max(last, run_to_end(ground, saver, where) or 0)


def kills_while_saving(ground, count):
    """At random moments, after up to 40 ms of saving; on a second disk, whose files all have names, likewise."""
    chance = random.Random(ground.seed)
    left = 0
    for names, share in ((0, count - count // 2), (1, count // 2)):
        file = ground.folder() / "Tavoran" / "Terminal.conf"
        file.parent.parent.mkdir()
        acknowledged = 0
        environment = ground.environment(file.parent, NAMES=1) if names and ground.disk.exists() else None
        for turn in range(share):
            where = f"kill {turn + 1} while saving"
            saver = Saver(ground, file, 1000000, environment)
            found = check_start(ground, saver.line(), acknowledged, acknowledged + 1, where)
            if found is None:
                saver.end()
                return
            acknowledged = found
            time.sleep(chance.random() * 0.04)
            saver.kill()
            acknowledged = max(acknowledged, run_to_end(ground, saver, where) or 0)
            left = max(left, len(names_in(file.parent)))
        start_once(ground, file)
        check_left_overs(ground, file.parent, f"after {share} kills")
    ground.row(f"killed while saving, random moments: {count} kills, {ground.faults} faults, at most {left} files")


def start_once(ground, file):
    """The number of the state that a start finds."""
    saver = Saver(ground, file, 0)
    found = number_in(saver.line())
    saver.line()
    saver.end()
    return found


def check_left_overs(ground, folder, where):
    """What a start leaves: the settings, what belongs to them, and names that a person may have given. A kill cuts no
    file, so nothing was set aside as damaged."""
    usual = {"Terminal.conf" + end for end in ("", ".copy", ".digest", ".saving")}
    word = re.compile(r"Terminal\.conf(\.copy)?\.([A-Za-z][a-z]{5}|[A-Z]{6})")
    if more := {name for name in names_in(folder) if name not in usual and not word.fullmatch(name)}:
        ground.fault(f"{where}: left behind {sorted(more)[:5]}, {len(more)} in all")


def kills_at_each_operation(ground, most):
    """Before each single operation of a start and three saves, on disks with and without nameless files."""
    kills = 0
    before = ground.faults
    for names in (0, 1):
        for operation in range(1, most + 1):
            folder = ground.folder() / "Tavoran"
            folder.parent.mkdir()
            file = folder / "Terminal.conf"
            where = f"kill before operation {operation}, names {names}"
            first = Saver(ground, file, 2)
            if run_to_end(ground, first, where) != 2:
                ground.fault(f"{where}: two saves were not done before it")
            saver = Saver(ground, file, 3, ground.environment(folder, KILL=operation, NAMES=names))
            acknowledged = run_until_killed(ground, saver, 2, where)
            if acknowledged == 5:
                break
            kills += 1
            again = Saver(ground, file, 1)
            begun = time.monotonic()
            found = check_start(ground, again.line(), acknowledged, acknowledged + 1, where)
            if found is not None and number_in(again.line()) != found + 1:
                ground.fault(f"{where}: the next start does not save")
            elif time.monotonic() - begun > 2:
                ground.fault(f"{where}: the next save took {time.monotonic() - begun:.0f} s")
            run_to_end(ground, again, where)
            check_left_overs(ground, folder, where)
    ground.row(f"killed before each operation of saving: {kills} kills, {ground.faults - before} faults")


def full_disk(ground, sizes):
    """Every room for bytes from none to more than a save takes, or so many of them."""
    folder = ground.folder() / "Tavoran"
    folder.parent.mkdir()
    most = 24000
    step = 1 if sizes == 0 else most // sizes
    run = subprocess.run([ground.saver, "disk", folder / "Terminal.conf", "0", str(most), str(step)],
                         env=ground.environment(folder), capture_output=True, text=True, check=False)
    lines = run.stdout.splitlines()
    for line in lines[:5]:
        if line.startswith("fault"):
            print(line)
    if run.returncode != 0:
        ground.fault(f"full disk: status {run.returncode}, {lines[-1:]} {run.stderr[:300]}")
    log = ground.place / "tavoran-terminal.log"
    refused = int(re.search(r"refused (\d+)", lines[-1]).group(1)) if lines and "refused" in lines[-1] else -1
    told = log.read_text().count("settings could not be saved to ") if log.exists() else 0
    if refused <= 0 or told < refused:
        ground.fault(f"full disk: {refused} saves refused, {told} lines in the log")
    ground.row(f"full disk, settings: {lines[-1] if lines else 'nothing'}")


def power_losses_settings(ground, count):
    """Several runs, each from what the loss before it left."""
    chance = random.Random(ground.seed)
    before = ground.faults
    lost = 0
    base, base_number = None, 0
    runs = max(2, count // 50)
    for run in range(runs):
        folder = ground.folder()
        folder.mkdir(mode=0o700)
        journal = ground.place / f"journal-{run}"
        if base is not None:
            for place in base.iterdir():
                (folder / place.name).write_bytes(place.read_bytes())
        file = folder / "Terminal.conf"
        saver = Saver(ground, file, 8, ground.environment(folder, JOURNAL=journal, NAMES=run % 2))
        start = number_in(saver.line())
        if start is None:
            ground.fault(f"power loss: run {run} does not start")
            return
        # What the loss before has damaged is told; there is room for every save.
        last = run_to_end(ground, saver, f"run {run} that loses power", may_tell=True) or start
        if last != start + 8:
            ground.fault(f"power loss: run {run} ends with state {last}, and began with {start}")
        share = count // runs + (run < count % runs)
        for size, lose in power_loss.losses(folder, journal, share, chance.randrange(1 << 30), base):
            place = ground.folder()
            lose(place)
            again = Saver(ground, place / "Terminal.conf", 0)
            # A saved state may go with the power: no more than the newest names, and never a part of one.
            check_start(ground, again.line(), base_number, last,
                        f"power loss in run {run} after {size} bytes of its journal")
            again.end()
            lost += 1
            newest = place
        base, base_number = newest, start_once(ground, newest / "Terminal.conf") or 0
    ground.row(f"power lost while saving settings: {lost} losses in {runs} runs, {ground.faults - before} faults")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tests", required=True, help="folder of the test programs")
    parser.add_argument("--bin", required=True, help="folder of the programs")
    parser.add_argument("--kills", type=int, default=1000)
    parser.add_argument("--windows", type=int, default=1000, help="kills of the window itself")
    parser.add_argument("--operations", type=int, default=1000, help="at most so many operations are killed before")
    parser.add_argument("--sizes", type=int, default=0, help="of a full disk; 0 for each single one")
    parser.add_argument("--losses", type=int, default=500)
    parser.add_argument("--seed", type=int, default=int(time.time()))
    parser.add_argument("--only", action="append", choices=PIECES)
    arguments = parser.parse_args()
    pieces = arguments.only or PIECES
    with tempfile.TemporaryDirectory(prefix="tavoran-crash-") as place:
        ground = Ground(arguments, place)
        if "kills" in pieces:
            kills_while_saving(ground, arguments.kills)
        if "window" in pieces:
            check_left_overs(ground, crash_window.kills(ground, arguments.windows), "after the kills of the window")
        if not ground.disk.exists():
            ground.row("the rest is not tried: nothing can be preloaded before sanitizers")
            pieces = ()
        if "kills" in pieces:
            kills_at_each_operation(ground, arguments.operations)
        if "disk" in pieces:
            full_disk(ground, arguments.sizes)
        if "power" in pieces:
            power_losses_settings(ground, arguments.losses)
        if "practice" in pieces:
            crash_practice.power_losses(ground, arguments.losses // 4)
        if "disk-practice" in pieces:
            crash_room.platform_with_rooms(ground, arguments.sizes)
        if not (ground.bin / "tavoran-lab").exists():
            ground.row("the lab is not tried: it is not built")
            pieces = ()
        if "lab" in pieces:
            crash_lab.all_of_it(ground, arguments.losses, max(3, arguments.losses // 10))
        if "disk-lab" in pieces:
            crash_room.lab_with_rooms(ground, arguments.sizes)
    sys.exit(1 if ground.faults else 0)


if __name__ == "__main__":
    main()
