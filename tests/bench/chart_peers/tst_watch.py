#!/usr/bin/python3
"""What the eye of the comparison says, as the comparison understands it."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "bench/chart_peers"))
from watch import Watch  # noqa: E402


class Answers(unittest.TestCase):
    def watch(self, *lines):
        """Of a program that says this first, then the rest once it is asked something."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        program = Path(folder.name) / "eye"
        program.write_text("#!/bin/sh\n" f"echo {lines[0]}\n" "read -r errand\n"
                           + "".join(f"echo {line}\n" for line in lines[1:]))
        program.chmod(0o755)
        return Watch(str(program), "pixels")

    def test_processors_are_awake_only_when_the_system_has_agreed(self):
        with self.watch("awake 1") as watch:
            self.assertTrue(watch.awake)
        with self.watch("awake 0") as watch:
            self.assertFalse(watch.awake)

    def test_a_change_is_seen_at_its_moment_or_not_at_all(self):
        with self.watch("awake 1", "armed 5", "seen 123 20") as watch:
            watch.begin("change 1 2 3 4 5")
            self.assertEqual(123, watch.seen())
        with self.watch("awake 1", "armed 5", "missed 123") as watch:
            watch.begin("change 1 2 3 4 5")
            self.assertIsNone(watch.seen())

    def test_what_has_moved_is_a_part_or_nothing(self):
        with self.watch("awake 1", "armed 5", "box 1 2 3 4") as watch:
            watch.begin("moving 0 0 9 9 5")
            self.assertEqual("1 2 3 4", watch.moved())
        with self.watch("awake 1", "armed 5", "still") as watch:
            watch.begin("moving 0 0 9 9 5")
            self.assertIsNone(watch.moved())

    def test_an_errand_that_is_not_understood_is_a_fault(self):
        with self.watch("awake 1", "bad") as watch, self.assertRaises(RuntimeError):
            watch.begin("dance")

    def test_an_eye_that_has_ended_is_a_fault(self):
        with self.watch("awake 1") as watch, self.assertRaises(RuntimeError):
            watch.begin("moving 0 0 9 9 5")


if __name__ == "__main__":
    unittest.main()
