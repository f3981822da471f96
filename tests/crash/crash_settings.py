"""The settings, saved by a program with the terminal's own classes: killed, starved and cut off from its power."""

import random
import re
import shutil
import subprocess
import time

import power_loss
from line_reader import LineReader, Silent

PATIENCE = 20  # seconds that a program may take to answer
KILLED = -9
NAME = "Terminal.conf"


class Saver:
    """tavoran-crash-saver as it saves, one line after the other."""

    def __init__(self, ground, file, count, environment=None):
        self._process = subprocess.Popen([ground.saver, "save", file, str(count)], stdout=subprocess.PIPE,
                                         env=environment or ground.environment())
        self._lines = LineReader(self._process.stdout)
        self._is_over = False

    def line(self):
        """The next one; None at the end. One that hangs is killed, and what is told of that is no answer of it."""
        try:
            line = self._lines.line(PATIENCE)
        except Silent as silence:
            self.kill()
            return str(silence)
        self._is_over = line is None
        return line

    def kill(self):
        self._process.kill()

    def end(self):
        """The status, its own where it has said all that it had to say."""
        try:
            self._process.wait(PATIENCE if self._is_over else 0)
        except subprocess.TimeoutExpired:
            self.kill()
            self._process.wait()
        self._process.stdout.close()
        return self._process.returncode


def number_in(line):
    found = re.fullmatch(r"(?:read|saved) (\d+)(?: \d+)?", line or "")
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


def run_to_end(ground, saver, where, statuses=(0,), saved=None):
    """The last state that it says is there or saved. Refusals are faults, and so are what it tells the trader and an end
    in another way. `saved` gets for each state the size that the journal had once it was saved."""
    last = None
    while (line := saver.line()) is not None:
        number = number_in(line)
        if number is None:
            ground.fault(f"{where}: {line}")
            continue
        last = number
        if saved is not None:
            saved[number] = int(line.split()[2])
    status = saver.end()
    if status not in statuses:
        ground.fault(f"{where}: ended with {status}")
    return last


def check_left_overs(ground, folder, where):
    """What a start leaves: the settings, what belongs to them, and names that a person may have given. A kill cuts no
    file, so nothing was set aside as damaged."""
    usual = {NAME + end for end in ("", ".copy", ".digest", ".saving")}
    word = re.compile(re.escape(NAME) + r"(\.copy)?\.([A-Za-z][a-z]{5}|[A-Z]{6})")
    if more := {name for name in names_in(folder) if name not in usual and not word.fullmatch(name)}:
        ground.fault(f"{where}: left behind {sorted(more)[:5]}, {len(more)} in all")


def start_once(ground, file, where):
    """The number of the state that a start finds, which has nothing to tell."""
    return run_to_end(ground, Saver(ground, file, 0), where)


def kills_at_random(ground, count):
    """After up to 40 ms of saving; on a second disk, whose files all have names, likewise."""
    chance = random.Random(ground.seed)
    before = ground.faults
    left = 0
    for names, share in ((0, count - count // 2), (1, count // 2)):
        file = ground.folder() / "Tavoran" / NAME
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
            acknowledged = max(acknowledged, run_to_end(ground, saver, where, (KILLED,)) or 0)
            left = max(left, len(names_in(file.parent)))
        where = f"after {share} kills"
        check_start(ground, f"read {start_once(ground, file, where)}", acknowledged, acknowledged + 1, where)
        check_left_overs(ground, file.parent, where)
    ground.row(f"killed while saving, random moments: {count} kills, {ground.faults - before} faults, at most {left} files")


def kills_at_each_operation(ground, most):
    """Before each single operation of a start and three saves, on disks with and without nameless files."""
    kills = 0
    before = ground.faults
    for names in (0, 1):
        for operation in range(1, most + 1):
            folder = ground.folder() / "Tavoran"
            folder.parent.mkdir()
            file = folder / NAME
            where = f"kill before operation {operation}, names {names}"
            if run_to_end(ground, Saver(ground, file, 2), where) != 2:
                ground.fault(f"{where}: two saves were not done before it")
            saver = Saver(ground, file, 3, ground.environment(folder, KILL=operation, NAMES=names))
            # It may be killed before it can say anything.
            acknowledged = max(2, run_to_end(ground, saver, where, (0, KILLED)) or 0)
            if saver.end() == 0:
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
    ground.must_have(kills, "kills before operations of saving")
    ground.row(f"killed before each operation of saving: {kills} kills, {ground.faults - before} faults")


def full_disk(ground, sizes):
    """Every room for bytes from none to more than a save takes, or so many of them."""
    folder = ground.folder() / "Tavoran"
    folder.parent.mkdir()
    most = 24000
    step = 1 if sizes == 0 else max(1, most // sizes)
    run = subprocess.run([ground.saver, "disk", folder / NAME, "0", str(most), str(step)],
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


def power_losses(ground, count):
    """Several runs, each from what the loss before it left. What was saved when the power went is there, or what was
    being saved then, and nobody is told of damage."""
    chance = random.Random(ground.seed)
    before = ground.faults
    base, base_number = None, 0
    looked_for = 0
    runs = max(2, count // 50)
    for run in range(runs):
        folder = ground.folder()
        if base is None:
            folder.mkdir(mode=0o700)
        else:
            shutil.copytree(base, folder)
        journal = ground.place / f"journal-{run}"
        saver = Saver(ground, folder / "Tavoran" / NAME, 8, ground.environment(folder, JOURNAL=journal, NAMES=run % 2))
        saved = {}
        check_start(ground, saver.line(), base_number, base_number, f"run {run} that loses power")
        if run_to_end(ground, saver, f"run {run} that loses power", saved=saved) != base_number + 8:
            ground.fault(f"power loss: run {run} did not save 8 times from state {base_number} on")
        share = count // runs + (run < count % runs)
        for size, lose in power_loss.losses(folder, journal, share, chance.randrange(1 << 30), base):
            place = ground.folder()
            lose(place)
            where = f"power loss in run {run} after {size} bytes of its journal"
            acknowledged = max([base_number, *(number for number, then in saved.items() if then <= size)])
            looked_for += acknowledged > base_number
            found = start_once(ground, place / "Tavoran" / NAME, where)
            check_start(ground, f"read {found}", acknowledged, acknowledged + 1, where)
            newest = place
            newest_number = found
        base, base_number = newest, newest_number or 0
    ground.must_have(looked_for, "power lost while saving: saves looked for")
    ground.row(f"power lost while saving settings: {count} losses in {runs} runs, after {looked_for} of which a save of "
               f"the run was looked for, {ground.faults - before} faults")


def kills(ground, count, operations):
    kills_at_random(ground, count)
    if ground.disk.exists():
        kills_at_each_operation(ground, operations)
