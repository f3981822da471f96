"""The lines that a program writes, each waited for only so long."""

import os
import select
import time


class Silent(TimeoutError):
    """A program that neither writes a line nor ends."""

    def __init__(self, seconds):
        super().__init__(f"says nothing for {seconds} s")


class LineReader:
    """Reads a pipe of a program that may hang or be killed in the middle of a line."""

    def __init__(self, pipe):
        self._pipe = pipe
        self._rest = b""

    def line(self, seconds):
        """The next whole line; None at the end. Raises Silent when neither comes in time."""
        until = time.monotonic() + seconds
        while b"\n" not in self._rest:
            if not select.select([self._pipe], [], [], max(0, until - time.monotonic()))[0]:
                raise Silent(seconds)
            more = os.read(self._pipe.fileno(), 65536)
            if not more:
                return None
            self._rest += more
        line, self._rest = self._rest.split(b"\n", 1)
        return line.decode()
