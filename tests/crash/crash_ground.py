"""Where the programs are that are killed, starved and cut off, and what came of it."""

import os
from pathlib import Path


class Ground:
    """The programs, a place for their files, and the faults that were found."""

    def __init__(self, tests, programs, place, seed):
        self.saver = Path(tests, "tavoran-crash-saver").resolve()
        self.disk = Path(tests, "tavoran-faulty-disk.so").resolve()
        self.hands = Path(tests, "hands").resolve()
        self.bin = Path(programs).resolve()
        self.seed = seed
        self.place = Path(place)
        self.faults = 0
        self._number = 0

    def folder(self):
        """The name of a new folder, which is not made."""
        self._number += 1
        return self.place / str(self._number)

    def fault(self, text):
        self.faults += 1
        self.row(f"FAULT: {text} (seed {self.seed})")

    def must_have(self, count, what):
        """A trial without a single one of them would find no fault whatever happens."""
        if count < 1:
            self.fault(f"{what}: none, so nothing is proved")

    def environment(self, folder=None, **more):
        """That of a program; what it does to files below the folder goes through the faulty disk."""
        variables = dict(os.environ, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8", LANGUAGE="en",
                         TMPDIR=str(self.place), HOME=str(self.place))
        if folder is not None:
            variables.update(LD_PRELOAD=str(self.disk), TAVORAN_DISK=str(folder))
        variables.update({f"TAVORAN_DISK_{name}": str(value) for name, value in more.items()})
        return variables

    def row(self, text):
        print(text, flush=True)
