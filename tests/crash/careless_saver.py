#!/usr/bin/python3 -ISE
"""Saves as tavoran-crash-saver does, and says the same, but without care: tst_crash_judges.py demands that it is found
out. What it leaves undone is said by the name that it is called by; as "careful" it leaves nothing undone."""

import os
import sys
import time

LINES = 400  # of a state; a part of them is no state


def content_of(number):
    return f"{number}\n".encode() * LINES


def number_of(file):
    """The state in it: 0 when there is none, and nothing when it is not whole."""
    try:
        with open(file, "rb") as opened:
            content = opened.read()
    except FileNotFoundError:
        return 0
    number = content.split(b"\n")[0]
    return int(number) if number.isdigit() and content == content_of(int(number)) else None


def settle(folder):
    descriptor = os.open(folder, os.O_RDONLY)
    os.fsync(descriptor)
    os.close(descriptor)


def write(file, number, way, mark):
    """One file, by way of another, which has a mark in its name, unless it is written in its place."""
    draft = file if way == "in place" else f"{file}.Draft{mark}"
    descriptor = os.open(draft, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600)
    os.write(descriptor, content_of(number))
    if way not in ("unsynced", "apart"):
        os.fsync(descriptor)
    os.close(descriptor)
    if draft != file:
        os.rename(draft, file)
    if way not in ("unsettled", "apart"):
        settle(os.path.dirname(file))


def remove_left_overs(folder, way):
    if way != "litters":
        for name in os.listdir(folder):
            if ".Draft" in name:
                os.remove(os.path.join(folder, name))


def say(line):
    print(line, flush=True)


def main():
    way = os.path.basename(sys.argv[0])
    file, count = sys.argv[2], int(sys.argv[3])
    folder = os.path.dirname(file)
    if way == "hangs":
        time.sleep(60)
    os.makedirs(folder, exist_ok=True)
    remove_left_overs(folder, way)
    first = number_of(file)
    if way == "apart" and number_of(file + ".copy") != first:
        first = None
    say("broken" if first is None else f"read {first}")
    if way == "tells":
        say("told The settings file was damaged")
    if way == "fails":
        sys.exit(3)
    journal = os.environ.get("TAVORAN_DISK_JOURNAL")
    mark = chr(65 + count % 26)
    for number in range((first or 0) + 1, (first or 0) + 1 + count):
        if way == "apart":
            write(file + ".copy", number, way, mark)
        write(file, number, way, mark)
        word = "refused" if way == "refuses" else "saved"
        say(f"{word} {number} {os.path.getsize(journal)}" if journal else f"{word} {number}")


main()
