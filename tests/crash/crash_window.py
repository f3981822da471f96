"""The terminal itself, killed while it saves: what the next start shows is what was saved, and nothing is told."""

import json
import os
import random
import statistics
import subprocess
import time

import crash_practice
from line_reader import LineReader, Silent

SAVING_AMONG = 50  # so many kills hit a save
SCREEN = "offscreen:configfile=" + os.path.abspath(os.path.join(os.path.dirname(__file__), "../../bench/screen.json"))
PATIENCE = 60  # seconds that a start may take; a busy machine is slow, and a hanging one is found all the same
DEFAULT_LAYOUT = "the default layout is used"


class Window:
    """A run of the terminal with hands at its windows (WindowHands.cpp)."""

    def __init__(self, ground, profile, first, steps, more=None):
        self._log = profile / "tmp" / "tavoran-terminal.log"
        self._log.unlink(missing_ok=True)
        environment = ground.environment(
        ) | {"QT_QPA_PLATFORM": SCREEN, "HOME": str(profile / "home"), "XDG_CONFIG_HOME": str(profile / "config"),
             "XDG_DATA_HOME": str(profile / "data"), "XDG_CACHE_HOME": str(profile / "cache"),
             "TMPDIR": str(profile / "tmp"), "QT_PLUGIN_PATH": str(ground.hands),
             "QT_QPA_GENERIC_PLUGINS": "tavoran-hands", "TAVORAN_HANDS_PASSWORD": crash_practice.PASSWORD,
             "TAVORAN_HANDS_FIRST": str(first), "TAVORAN_HANDS_STEPS": str(steps)} | (more or {})
        self.begun = time.monotonic()
        self._process = subprocess.Popen([ground.bin / "tavoran-terminal"], stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment)
        self._lines = LineReader(self._process.stdout)

    def line(self):
        """The next line as its word and its parts; None at the end. Raises Silent when it hangs."""
        line = self._lines.line(PATIENCE)
        if line is None:
            return None
        word, _, parts = line.partition(" ")
        return word, json.loads(parts or "{}")

    def told(self):
        """All that is in its log by now."""
        return self._log.read_text(encoding="utf-8")

    def ask(self):
        """For the next step, of hands that wait for that."""
        self._process.stdin.write(b"\n")
        self._process.stdin.flush()

    def kill(self):
        self._process.kill()

    def end(self):
        """How it ended, and what it said on the way. It is over, or was killed."""
        try:
            _, errors = self._process.communicate(timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            self.kill()
            _, errors = self._process.communicate()
            return "it does not end", errors.decode()[-300:]
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
        self._states = []  # that the settings may hold, the newest last; none before the first start
        self._step = 0
        self.starts = []
        self.kills = self.while_saving = self.newer = self.at_start = self.default_layouts = self.left = 0

    def end(self):
        self._platform.end()

    def run(self, where, moment):
        """Starts, looks, and kills when `moment` says so: a function of the run, called once it has told what it
        found. Without one it is killed `moment` seconds after its start. What hangs is no kill, but a fault."""
        window = Window(self._ground, self._profile, self._step, 200 if self.kills % 5 else 3)
        try:
            self._watch(window, where, moment)
        except Silent as silence:
            window.kill()
            self._ground.fault(f"{where}: the terminal {silence}; {window.end()}")

    def _watch(self, window, where, moment):
        if not callable(moment):
            time.sleep(moment)
            window.kill()
            self.at_start += 1
        line = window.line()
        if line and line[0] == "found":
            self.starts.append(time.monotonic() - window.begun)
            self._judge(line[1], window.told(), where)
        elif callable(moment):
            window.kill()
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
        self.while_saving += self._step > begun and len(self._states) > 1

    def note(self, line):
        word, parts = line
        if word == "saving":
            self._states.append(self._states[-1] | parts)
            self._step += 1
        elif word == "saved":
            self._states = self._states[-1:]

    def _judge(self, found, told, where, may_tell=False):
        """What a start shows, and has told in the log, which is what the settings may hold."""
        if not may_tell and ("damaged" in told or "could not be saved" in told):
            self._ground.fault(f"{where}: the next start tells of damage")
        is_default = DEFAULT_LAYOUT in told
        self.default_layouts += is_default
        for state in reversed(self._states or [found]):
            # Killed while it restored the layout, perhaps by it. Its charts come back all the same.
            layout = state["layout"] | {"charts": found["layout"]["charts"]} if is_default else found["layout"]
            if found | {"layout": layout} == state:
                self.newer += state not in (self._states or [found])[:1]
                break
        else:
            self._ground.fault(f"{where}: found {found}, expected one of {self._states}")
            state = found
        self._states = [state]


def kills(ground, count):
    chance = random.Random(ground.seed)
    before = ground.faults
    trial = Trial(ground)

    def while_it_saves(window, trial):
        """Soon after one of the next saves has begun: at once, or up to 20 ms later."""
        left = chance.randrange(1, 12)
        while left > 0 and (line := window.line()):
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
    if count >= SAVING_AMONG:
        ground.must_have(trial.while_saving, "kills of the window: in a save")
    ground.must_have(len(trial.starts), "kills of the window: starts looked at")
    if not trial.starts:
        return trial.folder
    ground.row(f"the window killed: {trial.kills} kills, {trial.while_saving} of them while a save was under way, which "
               f"then counted {trial.newer} times, {trial.at_start} during a start, after which {trial.default_layouts} "
               f"times the default layout was told; {trial.left} ends by Exit; {len(trial.starts)} starts looked at, "
               f"{statistics.median(trial.starts):.1f} s in the middle, {max(trial.starts):.1f} s at most; "
               f"{ground.faults - before} faults")
    return trial.folder
