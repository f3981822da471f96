"""The lab killed and without power: no file under its final name is half-written, finished sets are kept as they
were, and what was interrupted goes on to the same end."""

import itertools
import random
import shutil
import sqlite3
import subprocess
import time

import power_loss

SCRIPT = """var Every = 20;  // minutes
var Points = 40;
var calls = 0;
function OnTick() {
    if (++calls % (4 * Every) !== 0 || Positions.count() > 0) return;
    if (calls % (8 * Every) === 0)
        Trade.buy(0.1, { slPoints: Points, tpPoints: Points });
    else
        Trade.sell(0.1, { slPoints: Points, tpPoints: Points });
}
"""
MARKET = ("Clock.js", "--seed", "1", "--symbol", "EURUSD", "--from", "2024-01-01", "--to", "2024-01-03")
SETS = ("--set", "Every=5:24:1", "--set", "Points=30,40", "--min-trades", "1")
SWEEP = (*SETS, "--jobs", "1")


class Lab:
    """tavoran-lab in a folder with a script."""

    def __init__(self, ground):
        self._ground = ground
        self.folder = ground.folder()
        self.folder.mkdir()
        (self.folder / "Clock.js").write_text(SCRIPT)

    def run(self, command, *options, environment=None):
        return subprocess.run([self._ground.bin / "tavoran-lab", command, *MARKET, *options], cwd=self.folder,
                              env=environment or self._ground.environment(), capture_output=True, text=True,
                              timeout=300, check=False)

    def start(self, command, *options):
        return subprocess.Popen([self._ground.bin / "tavoran-lab", command, *MARKET, *options], cwd=self.folder,
                                env=self._ground.environment(), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def whole(folder):
    """What stands there under final names."""
    return {place.name: place.read_bytes() for place in folder.iterdir() if not place.name.startswith(".")}


def losses_of_results(ground, count, chance):
    """Two runs, one after the other, into one folder."""
    lab = Lab(ground)
    before = ground.faults
    mixed = 0
    out = lab.folder / "out"
    base = None
    former = {}
    for turn, every in enumerate(("20", "30")):
        journal = ground.place / f"journal-lab-{turn}"
        done = lab.run("run", "--set", f"Every={every}", "--out", out,
                       environment=ground.environment(lab.folder, JOURNAL=journal))
        if done.returncode != 0:
            ground.fault(f"lab: {done.stderr[:200]}")
            return
        now = whole(out)
        for size, lose in power_loss.losses(lab.folder, journal, count // 2, chance.randrange(1 << 30), base):
            place = ground.folder()
            lose(place)
            found = whole(place / "out") if (place / "out").exists() else {}
            for name, content in found.items():
                if content not in (former.get(name), now.get(name)):
                    ground.fault(f"lab, power lost after {size} bytes: {name} is neither the old one nor the new one")
            if missing := set(former) - set(found):
                ground.fault(f"lab, power lost after {size} bytes: {sorted(missing)} are gone")
            ages = {found[name] == now[name] for name in found if former.get(name) != now[name]}
            mixed += len(ages) > 1
            shutil.rmtree(place)
        former = now
        base = ground.folder()
        shutil.copytree(lab.folder, base)
    ground.row(f"power lost while the lab writes results: {2 * (count // 2)} losses, {ground.faults - before} faults, "
               f"{mixed} with files of two runs")


class Runs:
    """A run into no folder or over a former one that is another, and the judgement of those that were cut short."""

    NEW = ("--set", "Every=30")

    def __init__(self, ground):
        self._ground = ground
        self.lab = Lab(ground)
        self.mixed = self.new = 0
        self._results = {}
        for name, every in (("old", "20"), ("new", "30")):
            done = self.lab.run("run", "--set", f"Every={every}", "--out", name)
            if done.returncode != 0:
                raise RuntimeError(done.stderr[:300])
            self._results[name] = whole(self.lab.folder / name)

    def begun(self, is_over):
        """The folder for a run; its result goes into "out" there."""
        folder = self._ground.folder()
        folder.mkdir()
        if is_over:
            shutil.copytree(self.lab.folder / "old", folder / "out")
        return folder

    def judge(self, folder, is_over, where):
        out = folder / "out"
        found = whole(out) if out.exists() else {}
        old = self._results["old"] if is_over else {}
        new = self._results["new"]
        self.new += found == new
        if found not in (old, new):
            # Killed between one name and the next: each file is whole, and what is hidden beside them tells of it.
            self.mixed += 1
            parts = [name for name, content in found.items() if content not in (old.get(name), new.get(name))]
            if parts or set(old) - set(found):
                self._ground.fault(f"{where}: left {sorted(found)}, not all of them whole")
            if "run.json" not in found or not any(place.name.startswith(".") for place in out.iterdir()):
                self._ground.fault(f"{where}: parts of a result pass for a whole one")
        done = self.lab.run("run", *self.NEW, "--out", out)
        if done.returncode != 0:
            self._ground.fault(f"{where}: the same command does not go well: {done.stderr.strip()[:200]}")
        elif {place.name: place.read_bytes() for place in out.iterdir()} != new:
            self._ground.fault(f"{where}: made again, it leaves {sorted(place.name for place in out.iterdir())}")
        shutil.rmtree(folder)


def kills_of_runs(ground, count, chance):
    """Before each operation on files of a run, or some of them; and so many times at random moments of it, half of them
    while it may be writing."""
    runs = Runs(ground)
    before = ground.faults
    operations = at_random = 0
    step = max(1, 100 // count)
    for is_over in (False, True):
        for at in itertools.count(1 + chance.randrange(step), step):
            folder = runs.begun(is_over)
            done = runs.lab.run("run", *runs.NEW, "--out", folder / "out",
                                environment=ground.environment(folder, KILL=at))
            if done.returncode == 0:
                break
            operations += 1
            runs.judge(folder, is_over, f"run killed before operation {at}{' over another' if is_over else ''}")
    begun = time.monotonic()
    runs.judge(runs.begun(False), False, "a run by itself")
    length = time.monotonic() - begun
    for turn in range(count):
        is_over = turn % 2 == 1
        folder = runs.begun(is_over)
        process = runs.lab.start("run", *runs.NEW, "--out", folder / "out")
        moment = length * (chance.random() if turn % 4 < 2 else 0.8 + chance.random() * 0.3)
        try:
            process.wait(moment)
        except subprocess.TimeoutExpired:
            at_random += 1
            process.kill()
            process.wait()
        runs.judge(folder, is_over, f"run killed after {moment:.3f} s")
    ground.row(f"runs of the lab killed: {operations} before {'each operation' if step == 1 else 'operations'}, "
               f"{at_random} at random moments; {runs.new} had put all into place, {runs.mixed} left files of two results "
               f"or some of one, each whole; {ground.faults - before} faults")


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
        elif (out / "sweep.csv").read_bytes() != self.table:
            self._ground.fault(f"{where}: goes on to another end")


def kills_of_sweeps(ground, sweeps, count, chance):
    """Before an operation on the store; a sweep has some 40 of them, and writing its results as many."""
    before = ground.faults
    kept = sweeps.kept
    kills = 0
    for turn in range(count):
        at = turn + 1 if turn < 12 else chance.randrange(12, 90)
        folder = ground.folder()
        folder.mkdir()
        done = sweeps.lab.run("sweep", *SWEEP, "--out", folder / "out",
                              environment=ground.environment(folder, KILL=at))
        kills += done.returncode != 0
        sweeps.judge(folder / "out", f"sweep killed before operation {at}")
    ground.row(f"sweeps of the lab killed: {kills} kills, {sweeps.kept - kept} finished sets found again, "
               f"{ground.faults - before} faults")


def losses_of_sweeps(ground, sweeps, count, chance):
    before = ground.faults
    kept = sweeps.kept
    folder = ground.folder()
    folder.mkdir()
    journal = ground.place / "journal-sweep"
    sweeps.lab.run("sweep", *SWEEP, "--out", folder / "out", environment=ground.environment(folder, JOURNAL=journal))
    for size, lose in power_loss.losses(folder, journal, count, chance.randrange(1 << 30)):
        place = ground.folder()
        lose(place)
        sweeps.judge(place / "out", f"sweep, power lost after {size} bytes of its journal")
        shutil.rmtree(place)
    ground.row(f"power lost during a sweep of the lab: {count} losses, {sweeps.kept - kept} finished sets found "
               f"again, {ground.faults - before} faults")


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
            self._call("work", self.done / "p.json", chunk)
        self._chunk = sets_in(self._chunk_in(self.done))
        if not self._chunk:
            raise RuntimeError("the lab makes no chunk of a plan")

    def _chunk_in(self, folder):
        return folder / f"p-{self.CHUNK}.sqlite"

    def _call(self, *words, environment=None):
        return subprocess.run([self._ground.bin / "tavoran-lab", *words], capture_output=True, text=True, timeout=300,
                              env=environment or self._ground.environment(), check=False)

    def begun(self, kind):
        """A copy of the folder as it is before work at the chunk, or before the chunks are merged."""
        folder = self._ground.folder()
        shutil.copytree(self.done, folder)
        if kind == "work":
            self._chunk_in(folder).unlink()
        return folder

    def go_on(self, kind, folder, environment=None):
        words = (self.CHUNK,) if kind == "work" else ("--out", folder / "out")
        return self._call(kind, folder / "p.json", *words, environment=environment)

    def judge(self, kind, folder, where):
        """A chunk is whole or not in its place, and what was cut short goes on to the same end and leaves nothing."""
        if kind == "work" and self._chunk_in(folder).exists() and sets_in(self._chunk_in(folder)) != self._chunk:
            self._ground.fault(f"{where}: a chunk that is not whole stands in its place")
        done = self.go_on(kind, folder)
        if done.returncode != 0:
            self._ground.fault(f"{where}: does not go on: {done.stderr.strip()[:200]}")
        elif kind == "work" and sets_in(self._chunk_in(folder)) != self._chunk:
            self._ground.fault(f"{where}: made again, the chunk differs")
        elif kind == "merge" and (folder / "out" / "sweep.csv").read_bytes() != self._table:
            self._ground.fault(f"{where}: merged again, the table differs")
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
        operations = len(power_loss.read_journal(journal))
        killed = 0
        for turn in range(kills):
            at = 1 + (turn * operations + chance.randrange(operations)) // kills
            place = plan.begun(kind)
            killed += plan.go_on(kind, place, ground.environment(place, KILL=at)).returncode < 0
            plan.judge(kind, place, f"{kind} killed before operation {at}")
            shutil.rmtree(place)
        for size, lose in power_loss.losses(folder, journal, losses, chance.randrange(1 << 30), base):
            place = ground.folder()
            lose(place)
            plan.judge(kind, place, f"{kind}, power lost after {size} bytes of its journal")
            shutil.rmtree(place)
        ground.row(f"chunks of a plan, {kind}: {killed} kills, {losses} power losses, {ground.faults - before} faults")


def all_of_it(ground, losses, kills):
    chance = random.Random(ground.seed)
    losses_of_results(ground, losses, chance)
    kills_of_runs(ground, kills * 2, chance)
    sweeps = Sweeps(ground)
    kills_of_sweeps(ground, sweeps, kills, chance)
    losses_of_sweeps(ground, sweeps, max(2, losses // 10), chance)
    chunks_of_plans(ground, max(1, losses // 20), max(1, losses // 20), chance)
