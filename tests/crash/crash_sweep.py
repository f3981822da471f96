"""Sweeps of the lab and the chunks of a plan, killed and without power: finished sets are kept as they were, and what
was interrupted goes on to the same end."""

import random
import shutil
import sqlite3
import time

import power_loss
from crash_lab import MOST, Lab, was_killed

SETS = ("--set", "Every=5:24:1", "--set", "Points=30,40", "--min-trades", "1")
SWEEP = (*SETS, "--jobs", "1")


def sets_in(file):
    """What the store has of each set, by its number; None when it cannot be read."""
    try:
        connection = sqlite3.connect(file)
        if connection.execute("PRAGMA integrity_check").fetchall() != [("ok",)]:
            return None
        rows = connection.execute("SELECT * FROM sets").fetchall()
        connection.close()
        return {row[0]: row for row in rows}
    except sqlite3.OperationalError as error:
        return {} if "no such table" in str(error) else None
    except sqlite3.DatabaseError:
        return None


class Sweeps:
    """A sweep as it should end, and the judgement of those that were cut short."""

    def __init__(self, ground):
        self._ground = ground
        self.lab = Lab(ground)
        self.kept = 0
        done = self.lab.run("sweep", *SWEEP, "--out", "whole")
        if done.returncode != 0:
            raise RuntimeError(done.stderr[:300])
        self.table = (self.lab.folder / "whole" / "sweep.csv").read_bytes()
        self._sets = sets_in(self.lab.folder / "whole" / "sweep.sqlite")

    def is_done(self, out):
        """Whether all of its results stand there."""
        return (out / "sweep.csv").exists() and (out / "sweep.csv").read_bytes() == self.table

    def judge(self, out, where):
        """`out` holds what is left, or is not there."""
        if (out / "sweep.sqlite").exists():
            look = self._ground.folder()
            shutil.copytree(out, look)
            kept = sets_in(look / "sweep.sqlite")
            shutil.rmtree(look)
            if kept is None:
                self._ground.fault(f"{where}: the store cannot be read")
                return
            self.kept += len(kept)
            if any(row != self._sets.get(number) for number, row in kept.items()):
                self._ground.fault(f"{where}: a kept set differs")
        done = self.lab.run("sweep", *SWEEP, "--resume", "--out", out)
        if done.returncode != 0:
            self._ground.fault(f"{where}: does not go on: {done.stderr.strip()[:200]}")
        elif not self.is_done(out):
            self._ground.fault(f"{where}: goes on to another end")


def kills_of_sweeps(ground, sweeps, count, chance):
    """Before each operation on files of a sweep, or so many of them, and as often at random moments."""
    before = ground.faults
    kept = sweeps.kept
    operations = at_random = 0
    begun = time.monotonic()
    sweeps.judge(ground.folder(), "a sweep by itself")
    length = time.monotonic() - begun
    step = max(1, 100 // count)
    for at in range(1 + chance.randrange(step), MOST, step):
        where = f"sweep killed before operation {at}"
        folder = ground.folder()
        folder.mkdir()
        done = sweeps.lab.run("sweep", *SWEEP, "--out", folder / "out", environment=ground.environment(folder, KILL=at))
        if not was_killed(ground, done.returncode, where):
            break
        operations += 1
        sweeps.judge(folder / "out", where)
        shutil.rmtree(folder)
    for _ in range(count):
        moment = length * chance.random()
        where = f"sweep killed after {moment:.3f} s"
        out = ground.folder()
        at_random += was_killed(ground, sweeps.lab.killed_after(moment, "sweep", *SWEEP, "--out", out), where)
        sweeps.judge(out, where)
        shutil.rmtree(out)
    ground.must_have(operations, "kills before operations of a sweep")
    ground.row(f"sweeps of the lab killed: {operations} before {'each operation' if step == 1 else 'operations'}, "
               f"{at_random} at random moments; {sweeps.kept - kept} finished sets found again, "
               f"{ground.faults - before} faults")


def losses_of_sweeps(ground, sweeps, count, chance):
    before = ground.faults
    kept = sweeps.kept
    folder = ground.folder()
    folder.mkdir()
    journal = ground.place / "journal-sweep"
    sweeps.lab.run("sweep", *SWEEP, "--out", folder / "out", environment=ground.environment(folder, JOURNAL=journal))
    ends = max(1, count // 20)
    for size, lose in power_loss.losses(folder, journal, count, chance.randrange(1 << 30), ends=ends):
        place = ground.folder()
        lose(place)
        where = f"sweep, power lost after {size} bytes of its journal"
        if size == journal.stat().st_size and not sweeps.is_done(place / "out"):
            ground.fault(f"{where}: it was told to be done, and is not")
        sweeps.judge(place / "out", where)
        shutil.rmtree(place)
    ground.row(f"power lost during a sweep of the lab: {count} losses, {ends} of them after the end, "
               f"{sweeps.kept - kept} finished sets found again, {ground.faults - before} faults")


class Plan:
    """A small sweep in two chunks, both of them done in `done`, and the judgement of what was cut short."""

    SETS = ("--set", "Every=5:6:1", "--set", "Points=30,40", "--min-trades", "1")
    CHUNK = "1"  # the one that is cut short

    def __init__(self, ground):
        self._ground = ground
        self._lab = Lab(ground)
        self._lab.run("sweep", *self.SETS, "--out", "whole")
        self._table = (self._lab.folder / "whole" / "sweep.csv").read_bytes()
        self.done = self._lab.folder / "done"
        self._lab.run("plan", *self.SETS, "--chunks", "2", "--out", self.done / "p.json")
        for chunk in ("1", "2"):
            self._lab.call("work", self.done / "p.json", chunk)
        self._chunk = sets_in(self._chunk_in(self.done))
        if not self._chunk:
            raise RuntimeError("the lab makes no chunk of a plan")

    def _chunk_in(self, folder):
        return folder / f"p-{self.CHUNK}.sqlite"

    def begun(self, kind):
        """A copy of the folder as it is before work at the chunk, or before the chunks are merged."""
        folder = self._ground.folder()
        shutil.copytree(self.done, folder)
        if kind == "work":
            self._chunk_in(folder).unlink()
        return folder

    def go_on(self, kind, folder, environment=None):
        words = (self.CHUNK,) if kind == "work" else ("--out", folder / "out")
        return self._lab.call(kind, folder / "p.json", *words, environment=environment)

    def is_done(self, kind, folder):
        """Whether the whole chunk stands there, or all of the table."""
        if kind == "work":
            return self._chunk_in(folder).exists() and sets_in(self._chunk_in(folder)) == self._chunk
        table = folder / "out" / "sweep.csv"
        return table.exists() and table.read_bytes() == self._table

    def judge(self, kind, folder, where):
        """A chunk is whole or not in its place, and what was cut short goes on to the same end and leaves nothing."""
        if kind == "work" and self._chunk_in(folder).exists() and not self.is_done(kind, folder):
            self._ground.fault(f"{where}: a chunk that is not whole stands in its place")
        done = self.go_on(kind, folder)
        if done.returncode != 0:
            self._ground.fault(f"{where}: does not go on: {done.stderr.strip()[:200]}")
        elif not self.is_done(kind, folder):
            self._ground.fault(f"{where}: goes on to another end")
        usual = {place.name for place in self.done.iterdir()} | {"out"}
        if left := {place.name for place in folder.iterdir()} - usual:
            self._ground.fault(f"{where}: left behind {sorted(left)}")


def chunks_of_plans(ground, kills, losses, chance):
    """Work at a chunk, and merging: killed before operations that are spread over the whole, and power losses."""
    plan = Plan(ground)
    for kind in ("work", "merge"):
        before = ground.faults
        folder = plan.begun(kind)
        base = ground.folder()
        shutil.copytree(folder, base)
        journal = ground.place / f"journal-{kind}"
        plan.go_on(kind, folder, ground.environment(folder, JOURNAL=journal))
        killed = 0
        step = max(1, 40 // kills)
        for at in range(1 + chance.randrange(step), MOST, step):
            where = f"{kind} killed before operation {at}"
            place = plan.begun(kind)
            if not was_killed(ground, plan.go_on(kind, place, ground.environment(place, KILL=at)).returncode, where):
                break
            killed += 1
            plan.judge(kind, place, where)
            shutil.rmtree(place)
        ends = max(1, losses // 20)
        for size, lose in power_loss.losses(folder, journal, losses, chance.randrange(1 << 30), base, ends):
            place = ground.folder()
            lose(place)
            where = f"{kind}, power lost after {size} bytes of its journal"
            if size == journal.stat().st_size and not plan.is_done(kind, place):
                ground.fault(f"{where}: it was told to be done, and is not")
            plan.judge(kind, place, where)
            shutil.rmtree(place)
        ground.must_have(killed, f"kills before operations of {kind}")
        ground.row(f"chunks of a plan, {kind}: {killed} kills before {'each operation' if step == 1 else 'operations'}, "
                   f"{losses} power losses, {ends} of them after the end, {ground.faults - before} faults")


def all_of_it(ground, losses, kills):
    chance = random.Random(ground.seed)
    sweeps = Sweeps(ground)
    kills_of_sweeps(ground, sweeps, kills, chance)
    losses_of_sweeps(ground, sweeps, max(2, losses // 10), chance)
    chunks_of_plans(ground, kills, max(2, losses // 20), chance)
