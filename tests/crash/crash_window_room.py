"""The terminal itself on a full disk: a save that is refused is told in the Journal, once until one goes well again, and
what the next start shows is what was saved, whole."""

from crash_room import PLENTY, Room, spread
from crash_window import Trial, Window
from line_reader import Silent

REFUSED = "settings could not be saved to "
STEPS = 6
ENDS = ("killed", "room", "left")


class RoomTrial(Trial):
    """One profile on a disk with so much room, and with more."""

    def __init__(self, ground):
        super().__init__(ground)
        self._room = Room(ground)
        self._may_be_cut = False  # the run before ended with a refused save
        self._refused = self._told = 0  # lines of the log and of the Journal
        self._was_refused = False  # the save before; None when that is not known
        self.saves = self.refusals = self.damages = self.left_full = 0

    def used_by_steps(self):
        """The bytes that the steps of a run take."""
        return self._room.used_by(lambda: self.use("to measure", PLENTY - 1, "killed", True, False))

    def use(self, where, size, end, from_start, names):
        """A run whose disk has this room from its start, or after its first save. Its end is "killed", "room", when it is
        killed after a save with room, or "left", by Exit on the full disk."""
        self._room.left = size if from_start else PLENTY
        variables = self._room.environment(self._ground, self.folder, names=names)
        disk = {name: variables[name] for name in variables if name == "LD_PRELOAD" or name.startswith("TAVORAN_DISK")}
        window = Window(self._ground, self._profile, self._step, STEPS, disk | {"TAVORAN_HANDS_ASKED": "1"})
        try:
            self._go_through(window, where, size, end, from_start)
        except Silent as silence:
            window.kill()
            self._ground.fault(f"{where}: the terminal {silence}; {window.end()}")

    def _go_through(self, window, where, size, end, from_start):
        line = window.line()
        if not line or line[0] != "found":
            window.kill()
            self._ground.fault(f"{where}: the terminal does not start, {window.end()} {line}")
            return
        self._look_at_start(window, line[1], where, from_start)
        is_refused = False
        for step in range(STEPS):
            if step == 1 and not from_start:
                self._room.left = size
            if step == STEPS - 1 and end == "room":
                self._room.left = PLENTY
            is_refused = self._save(window, where)
        if end == "left":
            is_refused = self._save(window, where)
            while window.line():
                pass
            self.left_full += is_refused
        else:
            window.kill()
        self._may_be_cut = is_refused
        status, errors = window.end()
        if status != (0 if end == "left" else -9):
            self._ground.fault(f"{where}: ended with {status}: {errors}")

    def _look_at_start(self, window, found, where, from_start):
        self._told = found.pop("told")
        log = window.told()
        self._refused = log.count(REFUSED)
        self._was_refused = None if self._refused else False
        if (self._told > 0) != (self._refused > 0) or (self._refused and not from_start):
            self._ground.fault(f"{where}: {self._refused} saves refused at the start, {self._told} lines in the Journal")
        self.damages += "damaged" in log
        self._judge(found, log, where, self._may_be_cut or (from_start and "damaged" not in log))

    def _save(self, window, where):
        """The next step of the hands; whether it was refused."""
        window.ask()
        before = self._states
        for word in ("saving", "saved"):
            line = window.line()
            if not line or line[0] != word:
                window.kill()
                raise RuntimeError(f"{where}: {line} instead of {word}; {window.end()}")
            self.note(line)
        refused = window.told().count(REFUSED)
        is_refused = refused > self._refused
        self._refused = refused
        right = {self._told + (is_refused and not self._was_refused)}
        if self._was_refused is None:
            right.add(self._told)
        self._told = line[1]["told"]
        if self._told not in right:
            self._ground.fault(f"{where}: the Journal tells {self._told} times of refusals, not {sorted(right)} times")
        self._was_refused = is_refused
        self.saves += 1
        self.refusals += is_refused
        if is_refused and self._room.left > PLENTY // 2:
            self._ground.fault(f"{where}: a save is refused though there is room")
        if is_refused:
            self._states = before + self._states
        return is_refused


def rooms(ground, count):
    before = ground.faults
    trial = RoomTrial(ground)
    try:
        sizes = spread(trial.used_by_steps(), count)
        for turn, size in enumerate(sizes):
            trial.use(f"window, room for {size} bytes", size, ENDS[turn % 3], turn // 3 % 2 == 1, turn % 2 == 1)
            if ground.faults - before > 10:
                break
        trial.use("window, the last start", PLENTY, "killed", True, False)
    finally:
        trial.end()
    ground.must_have(trial.refusals, "full disk: saves of the window refused")
    ground.row(f"full disk, the window: {len(sizes)} rooms from 0 to {sizes[-1]} bytes, {trial.saves} saves, "
               f"{trial.refusals} refused and told; {trial.left_full} ends by Exit on the full disk, {trial.damages} starts "
               f"told of what a refused save had cut, {trial.default_layouts} of the default layout; "
               f"{ground.faults - before} faults")
