#!/usr/bin/env python3
"""Kills what saves, fills its disk and cuts its power, and looks at what is left.

  crash_safety.py --tests FOLDER --bin FOLDER [--kills N] [--windows N] [--sizes N] [--losses N]
  [--seed N] [--only PIECE]...

Prints a line for each thing tried, and ends with 1 when any of it lost or mixed up what was saved.
"""

import argparse
import sys
import tempfile
import time

import crash_lab
import crash_practice
import crash_practice_kills
import crash_room
import crash_settings
import crash_sweep
import crash_window
import crash_window_room
from crash_ground import Ground

PIECES = ("kills", "kills-practice", "window", "disk", "disk-window", "disk-practice", "disk-lab", "power", "practice",
          "lab", "sweep")


def at_least_one(text):
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError(f"{number} would prove nothing")
    return number


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tests", required=True, help="folder of the test programs")
    parser.add_argument("--bin", required=True, help="folder of the programs")
    parser.add_argument("--kills", type=at_least_one, default=1000)
    parser.add_argument("--windows", type=at_least_one, default=1000, help="kills of the window itself")
    parser.add_argument("--platforms", type=at_least_one, default=1000, help="kills of the practice platform")
    parser.add_argument("--labs", type=at_least_one, default=1000, help="kills of the lab's runs; a fifth as many of sweeps")
    parser.add_argument("--operations", type=at_least_one, default=1000, help="at most so many operations are killed before")
    parser.add_argument("--sizes", type=int, default=0, help="of a full disk; 0 for each single one")
    parser.add_argument("--losses", type=at_least_one, default=500)
    parser.add_argument("--seed", type=int, default=int(time.time()))
    parser.add_argument("--only", action="append", choices=PIECES)
    arguments = parser.parse_args()
    pieces = arguments.only or PIECES
    with tempfile.TemporaryDirectory(prefix="tavoran-crash-") as place:
        ground = Ground(arguments.tests, arguments.bin, place, arguments.seed)
        if "kills" in pieces:
            crash_settings.kills(ground, arguments.kills, arguments.operations)
        if "kills-practice" in pieces:
            crash_practice_kills.kills(ground, arguments.platforms)
        if "window" in pieces:
            crash_settings.check_left_overs(
                ground, crash_window.kills(ground, arguments.windows), "after the kills of the window")
        if not ground.disk.exists():
            ground.row("the rest is not tried: nothing can be preloaded before sanitizers")
            pieces = ()
        if "disk" in pieces:
            crash_settings.full_disk(ground, arguments.sizes)
        if "disk-window" in pieces:
            crash_window_room.rooms(ground, arguments.sizes // 20 if arguments.sizes else 100)
        if "power" in pieces:
            crash_settings.power_losses(ground, arguments.losses)
        if "practice" in pieces:
            crash_practice.power_losses(ground, arguments.losses // 4)
        if "disk-practice" in pieces:
            crash_room.platform_with_rooms(ground, arguments.sizes)
        if not (ground.bin / "tavoran-lab").exists():
            ground.row("the lab is not tried: it is not built")
            pieces = ()
        if "lab" in pieces:
            crash_lab.all_of_it(ground, arguments.losses, arguments.labs)
        if "sweep" in pieces:
            crash_sweep.all_of_it(ground, arguments.losses, max(1, arguments.labs // 5))
        if "disk-lab" in pieces:
            crash_room.lab_with_rooms(ground, arguments.sizes)
    sys.exit(1 if ground.faults else 0)


if __name__ == "__main__":
    main()
