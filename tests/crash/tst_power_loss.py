"""Tests of power_loss.py: it finds what careless programs lose, and nothing with careful ones."""

import random
import tempfile
import unittest
from pathlib import Path

import power_loss

FOLDER = "/d"


def opened(number, name, how=1):
    return ("O", number, how, f"{FOLDER}/{name}".encode(), b"")


def written(number, place, content):
    return ("W", number, place, content, b"")


def renamed(one, two, letter="R"):
    return (letter, 0, 0, f"{FOLDER}/{one}".encode(), f"{FOLDER}/{two}".encode())


def synced(number):
    return ("S", number, 0, b"", b"")


def outcomes(operations, before=None, tries=150):
    """All that was seen on the disk after the power went, as {name: content} in sets."""
    seen = set()
    chance = random.Random(1)
    with tempfile.TemporaryDirectory() as folder:
        old = Path(folder, "before")
        old.mkdir()
        for name, content in (before or {}).items():
            Path(old, name).write_bytes(content)
        for turn in range(tries):
            disk = power_loss.Disk(FOLDER, old)
            for operation in operations:
                disk.do(operation)
            place = Path(folder, str(turn))
            disk.lose_power(place, chance)
            seen.add(frozenset((found.name, found.read_bytes()) for found in place.iterdir()))
    return seen


def contents(seen, name):
    return {dict(state).get(name) for state in seen}


class TestPowerLoss(unittest.TestCase):
    def test_a_rename_without_sync_may_lead_to_an_empty_file(self):
        seen = outcomes([opened(3, "new"), written(3, 0, b"later"), renamed("new", "file")], {"file": b"early"})
        self.assertIn(b"", contents(seen, "file"))
        self.assertIn(b"lat", contents(seen, "file"))
        self.assertIn(bytes(5), contents(seen, "file"))

    def test_a_synced_file_that_is_renamed_is_the_old_one_or_the_new_one(self):
        seen = outcomes(
            [opened(3, "new"), written(3, 0, b"later"), synced(3), renamed("new", "file")], {"file": b"early"})
        self.assertEqual(contents(seen, "file"), {b"early", b"later"})
        self.assertEqual(contents(seen, "new"), {None, b"later"})

    def test_a_synced_folder_keeps_its_names(self):
        seen = outcomes([opened(3, "new"), written(3, 0, b"later"), synced(3), renamed("new", "file"),
                         opened(4, ".", 3), synced(4)], {"file": b"early"})
        self.assertEqual(seen, {frozenset({("file", b"later")})})

    def test_names_change_in_their_order(self):
        seen = outcomes([renamed("a", "b"), renamed("c", "d")], {"a": b"1", "c": b"2"})
        self.assertEqual({frozenset(name for name, _ in state) for state in seen},
                         {frozenset("ac"), frozenset("bc"), frozenset("bd")})

    def test_a_file_that_is_cut_and_written_anew_may_be_anything_between(self):
        seen = outcomes([opened(3, "file", 2), written(3, 0, b"late")], {"file": b"early"}, tries=400)
        self.assertTrue({b"early", b"late", b"", b"la"} <= contents(seen, "file"))

    def test_pages_may_come_without_those_before_them(self):
        first, second = b"1" * 4096, b"2" * 4096
        seen = contents(outcomes([opened(3, "file", 0), written(3, 0, first + second)], {"file": bytes(8192)}), "file")
        self.assertIn(bytes(4096) + second, seen)
        self.assertIn(first + bytes(4096), seen)

    def test_a_second_name_is_the_same_file(self):
        seen = outcomes([renamed("file", "kept", "L"), opened(4, ".", 3), synced(4)], {"file": b"early"})
        self.assertEqual(seen, {frozenset({("file", b"early"), ("kept", b"early")})})

    def test_a_file_without_a_name_is_there_once_it_has_one(self):
        seen = outcomes([opened(3, "", 4), written(3, 0, b"later"), synced(3), ("N", 0, 0, b"/d/file", b"3")])
        self.assertEqual(contents(seen, "file"), {None, b"later"})

    def test_a_journal_that_ends_within_an_operation_is_read_up_to_it(self):
        with tempfile.NamedTemporaryFile() as journal:
            journal.write(b"O 3 1 4 0\n/d/aW 3 0 5 0\nlaterW 3 5 9 0\nnot")
            journal.flush()
            operations = [operation for _, operation in power_loss.read_journal(journal.name)]
        self.assertEqual(operations, [opened(3, "a"), written(3, 0, b"later")])


if __name__ == "__main__":
    unittest.main()
