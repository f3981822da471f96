"""The terminal itself, killed while it saves: what the next start shows is what was saved, and nothing is told."""

import json
import os
import random
import statistics
import subprocess
import time

import crash_practice
from line_reader import LineReader

SCREEN = "offscreen:configfile=" + os.path.abspath(os.path.join(os.path.dirname(__file__), "../../bench/screen.json"))
PATIENCE = 60  # seconds that a start may take; a busy machine is slow, and a hanging one is found all the same
DEFAULT_LAYOUT = "the default layout is used"


class Window:
    """A run of the terminal with hands at its windows (WindowHands.cpp)."""

    def __init__(self, ground, profile, first, steps):
        self.log = profile / "tmp" / "tavoran-terminal.log"
        self.log.unlink(missing_ok=True)
        environment = ground.environment(
        ) | {"QT_QPA_PLATFORM": SCREEN, "HOME": str(profile / "home"), "XDG_CONFIG_HOME": str(profile / "config"),
             "XDG_DATA_HOME": str(profile / "data"), "XDG_CACHE_HOME": str(profile / "cache"),
             "TMPDIR": str(profile / "tmp"), "QT_PLUGIN_PATH": str(ground.hands),
             "QT_QPA_GENERIC_PLUGINS": "tavoran-hands", "TAVORAN_HANDS_PASSWORD": crash_practice.PASSWORD,
             "TAVORAN_HANDS_FIRST": str(first), "TAVORAN_HANDS_STEPS": str(steps)}
        self.begun = time.monotonic()
        self._process = subprocess.Popen([ground.bin / "tavoran-terminal"], stdout=subprocess.PIPE,
                                         stderr=subprocess.PIPE, env=environment)
        self._lines = LineReader(self._process.stdout)

    def line(self, seconds=PATIENCE):
        """The next line as its word and its parts; None at the end, or when none comes in time."""
        line = self._lines.line(seconds)
        if line is None:
            return None
        word, _, parts = line.partition(" ")
        return word, json.loads(parts or "{}")

    def kill(self):
        self._process.kill()

    def end(self):
        """How it ended, and what it said on the way."""
        self._process.kill()
        _, errors = self._process.communicate()
        return self._process.returncode, errors.decode()[-300:]


class Trial:
    """One profile, and what its settings must hold after all that was done to it."""

    def __init__(self, ground):
        self._ground = ground
        self._profile = ground.folder()
        for name in ("config", "data", "cache", "home", "tmp"):
            (self._profile / name).mkdir(parents=True, mode=0o700)
        self._platform = crash_practice.Platform(ground, self._profile / "practice.db")
        self.folder = self._profile / "config" / "Tavoran"
        self.folder.mkdir(mode=0o700)
        (self.folder / "Terminal.conf").touch(mode=0o600)
        (self.folder / "Terminal.conf").write_text(
            f"[auth]\nserverUrl=http://127.0.0.1:{self._platform.port}\nemail={crash_practice.EMAIL}\n")
        self._saved = None
        self._saving = {}
        self._step = 0
        self.starts = []
        self.kills = self.while_saving = self.newer = self.at_start = self.default_layouts = self.left = 0

    def end(self):
        self._platform.end()

    def run(self, where, moment):
        """Starts, looks, and kills when `moment` says so: a function of the run, called once it has told what it
        found. Without one it is killed `moment` seconds after its start."""
        window = Window(self._ground, self._profile, self._step, 200 if self.kills % 5 else 3)
        if not callable(moment):
            time.sleep(moment)
            window.kill()
            self.at_start += 1
        line = window.line()
        if line and line[0] == "found":
            self.starts.append(time.monotonic() - window.begun)
            self._judge(line[1], window.log, where)
        elif callable(moment):
            self._ground.fault(f"{where}: the terminal does not start, {window.end()} {line}")
            return
        begun = self._step
        if callable(moment):
            moment(window, self)
        while line := window.line():
            self.note(line)
        status, errors = window.end()
        if status == -9:
            self.kills += 1
        elif status == 0:
            self.left += 1
        else:
            self._ground.fault(f"{where}: ended with {status}: {errors}")
        self.while_saving += self._step > begun and bool(self._saving)

    def note(self, line):
        word, parts = line
        if word == "saving":
            self._saving = parts
            self._step += 1
        elif word == "saved":
            self._saved = self._saved | self._saving
            self._saving = {}

    def _judge(self, found, log, where):
        told = log.read_text(encoding="utf-8")
        if "damaged" in told or "could not be saved" in told:
            self._ground.fault(f"{where}: the next start tells of damage")
        is_default = DEFAULT_LAYOUT in told
        self.default_layouts += is_default
        before = self._saved or found
        for state in (before | self._saving, before):
            # Killed while it restored the layout, perhaps by it. Its charts come back all the same.
            layout = state["layout"] | {"charts": found["layout"]["charts"]} if is_default else found["layout"]
            if found | {"layout": layout} == state:
                self.newer += state != before
                break
        else:
            self._ground.fault(f"{where}: found {found}, saved {before}, was saving {self._saving}")
            state = found
        self._saved = state
        self._saving = {}


def kills(ground, count):
    chance = random.Random(ground.seed)
    before = ground.faults
    trial = Trial(ground)

    def while_it_saves(window, trial):
        """Soon after one of the next saves has begun: at once, or up to 20 ms later."""
        left = chance.randrange(1, 12)
        while left > 0 and (line := window.line(20)):
            trial.note(line)
            left -= line[0] == "saving"
        time.sleep(chance.random() * chance.choice((0, 0.005, 0.02)))
        window.kill()

    def at_any_time(window, _):
        time.sleep(chance.random() * 0.6)
        window.kill()

    try:
        while trial.kills < count and ground.faults - before < 10:
            kind = chance.random()
            typical = statistics.median(trial.starts) if trial.starts else 1
            moment = chance.random() * typical if kind < 0.15 and trial.starts else (
                while_it_saves if kind < 0.7 else at_any_time)
            trial.run(f"kill {trial.kills + 1} of the window", moment)
        trial.run("the last start", lambda window, _: window.kill())
    finally:
        trial.end()
    ground.row(f"the window killed: {trial.kills} kills, {trial.while_saving} of them while a save was under way, which "
               f"then counted {trial.newer} times, {trial.at_start} during a start, after which {trial.default_layouts} "
               f"times the default layout was told; {trial.left} ends by Exit; {len(trial.starts)} starts looked at, "
               f"{statistics.median(trial.starts):.1f} s in the middle, {max(trial.starts):.1f} s at most; "
               f"{ground.faults - before} faults")
    return trial.folder
