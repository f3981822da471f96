"""Runs of the lab killed and without power: no file under its final name is half-written, a result that was told is
there, and the same command puts right what was cut short."""

import random
import shutil
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
KILLED = -9
MOST = 2000  # operations on files of a command; more are no end


class Lab:
    """tavoran-lab in a folder with a script."""

    def __init__(self, ground):
        self._ground = ground
        self.folder = ground.folder()
        self.folder.mkdir()
        (self.folder / "Clock.js").write_text(SCRIPT)

    def run(self, command, *options, environment=None):
        return self.call(command, *MARKET, *options, environment=environment)

    def call(self, *words, environment=None):
        return subprocess.run([self._ground.bin / "tavoran-lab", *words], cwd=self.folder, capture_output=True,
                              env=environment or self._ground.environment(), text=True, timeout=300, check=False)

    def killed_after(self, seconds, command, *options):
        """How a command ended that is killed after so long a time."""
        process = subprocess.Popen([self._ground.bin / "tavoran-lab", command, *MARKET, *options], cwd=self.folder,
                                   env=self._ground.environment(), stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        try:
            process.wait(seconds)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
        return process.returncode


def was_killed(ground, status, where):
    """Whether it was; False when it had come to its end, and for an end of its own that is a fault."""
    if status not in (0, KILLED):
        ground.fault(f"{where}: ended with {status}")
    return status == KILLED


def whole(folder):
    """What stands there under final names."""
    return {place.name: place.read_bytes() for place in folder.iterdir() if not place.name.startswith(".")}


def unfit_after_loss(found, former, now, is_told):
    """What is wrong with the files that a power loss left of a result; `is_told` once the command had ended well."""
    wrong = [f"{name} is neither the old one nor the new one" for name, content in sorted(found.items())
             if content not in (former.get(name), now.get(name))]
    if missing := set(former) - set(found):
        wrong.append(f"{sorted(missing)} are gone")
    if is_told and found != now:
        wrong.append("the result was told to be there, and is not")
    return wrong


def losses_of_results(ground, count, chance):
    """Two runs, one after the other, into one folder; at times the power goes only when they have ended."""
    lab = Lab(ground)
    before = ground.faults
    mixed = told = 0
    out = lab.folder / "out"
    base = None
    former = {}
    ends = max(1, count // 20)
    for turn, every in enumerate(("20", "30")):
        journal = ground.place / f"journal-lab-{turn}"
        done = lab.run("run", "--set", f"Every={every}", "--out", out,
                       environment=ground.environment(lab.folder, JOURNAL=journal))
        if done.returncode != 0:
            ground.fault(f"lab: {done.stderr[:200]}")
            return
        now = whole(out)
        for size, lose in power_loss.losses(lab.folder, journal, count // 2, chance.randrange(1 << 30), base, ends):
            place = ground.folder()
            lose(place)
            found = whole(place / "out") if (place / "out").exists() else {}
            is_told = size == journal.stat().st_size
            told += is_told
            for wrong in unfit_after_loss(found, former, now, is_told):
                ground.fault(f"lab, power lost after {size} bytes: {wrong}")
            ages = {found[name] == now[name] for name in found if former.get(name) != now[name]}
            mixed += len(ages) > 1
            shutil.rmtree(place)
        former = now
        base = ground.folder()
        shutil.copytree(lab.folder, base)
    ground.row(f"power lost while the lab writes results: {2 * (count // 2)} losses, {told} of them after the end, "
               f"{ground.faults - before} faults, {mixed} with files of two runs")


def unfit_after_kill(found, hidden, old, new):
    """What is wrong with the files that a killed run left, of which `hidden` are of no final name."""
    if found in (old, new):
        return []
    # Killed between one name and the next: each file is whole, and what is hidden beside them tells of it.
    wrong = []
    parts = [name for name, content in found.items() if content not in (old.get(name), new.get(name))]
    if parts or set(old) - set(found):
        wrong.append(f"left {sorted(found)}, not all of them whole")
    if "run.json" not in found or not hidden:
        wrong.append("parts of a result pass for a whole one")
    return wrong


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
        names = {place.name for place in out.iterdir()} if out.exists() else set()
        found = whole(out) if out.exists() else {}
        old = self._results["old"] if is_over else {}
        new = self._results["new"]
        self.new += found == new
        self.mixed += found not in (old, new)
        for wrong in unfit_after_kill(found, names - set(found), old, new):
            self._ground.fault(f"{where}: {wrong}")
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
        for at in range(1 + chance.randrange(step), MOST, step):
            where = f"run killed before operation {at}{' over another' if is_over else ''}"
            folder = runs.begun(is_over)
            done = runs.lab.run("run", *runs.NEW, "--out", folder / "out",
                                environment=ground.environment(folder, KILL=at))
            if not was_killed(ground, done.returncode, where):
                break
            operations += 1
            runs.judge(folder, is_over, where)
    begun = time.monotonic()
    runs.judge(runs.begun(False), False, "a run by itself")
    length = time.monotonic() - begun
    for turn in range(count):
        is_over = turn % 2 == 1
        folder = runs.begun(is_over)
        moment = length * (chance.random() if turn % 4 < 2 else 0.8 + chance.random() * 0.3)
        where = f"run killed after {moment:.3f} s"
        at_random += was_killed(ground, runs.lab.killed_after(moment, "run", *runs.NEW, "--out", folder / "out"), where)
        runs.judge(folder, is_over, where)
    ground.must_have(operations, "kills before operations of a run")
    ground.row(f"runs of the lab killed: {operations} before {'each operation' if step == 1 else 'operations'}, "
               f"{at_random} at random moments; {runs.new} had put all into place, {runs.mixed} left files of two results "
               f"or some of one, each whole; {ground.faults - before} faults")


def all_of_it(ground, losses, kills):
    chance = random.Random(ground.seed)
    losses_of_results(ground, losses, chance)
    kills_of_runs(ground, kills, chance)
