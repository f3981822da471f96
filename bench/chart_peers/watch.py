"""Asks tavoran-pixel-watch when something appears on the screen."""

import subprocess


class Watch:
    """Looks at the pixels of an Xvfb, which are in that file."""

    def __init__(self, program, pixels):
        self._process = subprocess.Popen([program, str(pixels)], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         text=True, bufsize=1)
        # Whether processors are kept from sleeping as long as it looks.
        self.awake = self._answer() == ["awake", "1"]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.stdin.close()
        self._process.stdout.close()
        self._process.wait(10)

    def begin(self, errand):
        """Returns when it looks."""
        self._process.stdin.write(errand + "\n")
        words = self._answer()
        if words[0] != "armed":
            raise RuntimeError(f"the watch does not understand '{errand}'")

    def moved(self):
        """The part that has changed, after "moving"; None if none has."""
        what, *part = self._answer()
        return " ".join(part) if what == "box" else None

    def seen(self):
        """When the part had changed, after "change", in ns of the monotonic clock; None if it has not."""
        kind, moment, *_ = self._answer()
        return int(moment) if kind == "seen" else None

    def _answer(self):
        words = self._process.stdout.readline().split()
        if not words:
            raise RuntimeError("the watch has ended")
        return words
