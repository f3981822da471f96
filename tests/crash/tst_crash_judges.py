"""Tests of the judges of crash safety: each kind of loss, brought about or made up, is a fault, and careful saving is
none. The folder of the test programs is in TAVORAN_TESTS."""

import os
import sqlite3
import tempfile
import types
import unittest
from pathlib import Path
from unittest import mock

import crash_lab
import crash_practice
import crash_practice_kills
import crash_room
import crash_settings
import crash_sweep
import crash_window
import crash_window_room
from crash_ground import Ground

HERE = Path(__file__).resolve().parent
TESTS = os.environ.get("TAVORAN_TESTS", "")
PRELOADED = unittest.skipUnless(Path(TESTS, "tavoran-faulty-disk.so").exists(), "nothing can be preloaded here")


class Judged(Ground):
    """Keeps what it is told instead of printing it."""

    def __init__(self, place):
        super().__init__(TESTS, Path(place, "bin"), place, seed=1)
        self.bin.mkdir()
        self.told = []

    def fault(self, text):
        self.faults += 1
        self.told.append(text)

    def row(self, text):
        pass


class Case(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.ground = Judged(place.name)

    def folder(self, files):
        folder = self.ground.folder()
        folder.mkdir()
        for name, content in files.items():
            (folder / name).write_bytes(content)
        return folder

    def program(self, name, text):
        """A program of this name that does that, in Python."""
        place = self.ground.bin / name
        place.write_text(f"#!/usr/bin/python3 -ISE\nimport json, os, sys, time\n{text}\n")
        place.chmod(0o700)

    def assert_told(self, *parts):
        """Each part in a fault of its own or with others, and no fault without any of them."""
        for part in parts:
            self.assertTrue(any(part in each for each in self.ground.told), f"{part!r} is not in {self.ground.told}")
        self.assertFalse([each for each in self.ground.told if not any(part in each for part in parts)])


class TestSettings(Case):
    def save_as(self, way):
        """The saver is one that leaves this undone."""
        self.ground.saver = self.ground.place / way
        self.ground.saver.symlink_to(HERE / "careless_saver.py")

    @PRELOADED
    def test_careful_saving_is_no_fault(self):
        self.save_as("careful")
        crash_settings.power_losses(self.ground, 8)
        crash_settings.kills_at_random(self.ground, 2)
        crash_settings.kills_at_each_operation(self.ground, 3)
        self.assertEqual(self.ground.told, [])

    @PRELOADED
    def test_bytes_that_are_not_synced_are_missed(self):
        self.save_as("unsynced")
        crash_settings.power_losses(self.ground, 8)
        self.assert_told("broken", "the next start says")

    @PRELOADED
    def test_saves_without_their_names_are_missed(self):
        self.save_as("unsettled")
        crash_settings.power_losses(self.ground, 8)
        self.assert_told("was saved")

    @PRELOADED
    def test_damage_that_is_told_after_a_power_loss_is_a_fault(self):
        self.save_as("tells")
        crash_settings.power_losses(self.ground, 2)
        self.assert_told("told The settings file was damaged")

    @PRELOADED
    def test_two_files_of_different_age_are_found(self):
        self.save_as("apart")
        crash_settings.kills_at_each_operation(self.ground, 5)
        self.assert_told("broken")

    @PRELOADED
    def test_a_file_that_is_written_in_its_place_is_found(self):
        self.save_as("in place")
        crash_settings.kills_at_each_operation(self.ground, 3)
        self.assert_told("broken")

    @PRELOADED
    def test_half_made_files_are_found(self):
        self.save_as("litters")
        crash_settings.kills_at_each_operation(self.ground, 3)
        self.assert_told("left behind ['Terminal.conf.Draft")

    def test_a_trial_in_which_nothing_is_killed_proves_nothing(self):
        self.save_as("careful")
        self.ground.disk = self.ground.place / "missing.so"
        crash_settings.kills_at_each_operation(self.ground, 3)
        self.assert_told("kills before operations of saving: none, so nothing is proved")

    def test_a_saver_that_hangs_was_not_killed(self):
        self.save_as("hangs")
        with mock.patch.object(crash_settings, "PATIENCE", 0.2):
            crash_settings.kills_at_random(self.ground, 2)
        self.assert_told("says nothing for 0.2 s")

    def test_a_saver_that_ends_by_itself_was_not_killed(self):
        self.save_as("fails")
        crash_settings.kills_at_random(self.ground, 2)
        self.assert_told("ended with 3")

    def test_refused_saves_are_faults(self):
        self.save_as("refuses")
        crash_settings.run_to_end(self.ground, crash_settings.Saver(self.ground, self.ground.folder() / "f", 1), "here")
        self.assert_told("here: refused 1")

    def test_what_a_start_says_is_judged(self):
        for line, is_right in (("read 4", True), ("read 5", True), ("read 3", False), ("read 6", False),
                               ("broken alerts", False), (None, False), ("says nothing for 20 s", False)):
            before = self.ground.faults
            crash_settings.check_start(self.ground, line, 4, 5, "here")
            self.assertEqual(self.ground.faults == before, is_right, line)

    def test_only_what_belongs_to_the_settings_may_stay(self):
        name = crash_settings.NAME
        crash_settings.check_left_overs(self.ground, self.folder({name: b"", name + ".copy": b"", name + ".backup": b""}),
                                        "here")
        self.assertEqual(self.ground.told, [])
        crash_settings.check_left_overs(self.ground, self.folder({name + ".damaged": b""}), "here")
        crash_settings.check_left_overs(self.ground, self.folder({name + ".copy.aBcDeF": b""}), "here")
        self.assertEqual(self.ground.faults, 2)

    def test_a_full_disk_that_nobody_tells_of_is_a_fault(self):
        self.program("saver", "print('sizes 3 saved 1 refused 2 faults 0')")
        self.ground.saver = self.ground.bin / "saver"
        crash_settings.full_disk(self.ground, 60)
        self.assert_told("2 saves refused, 0 lines in the log")


STATE = {"alerts": ["1"], "theme": "Dark", "layout": {"width": 1, "height": 2, "docks": "two", "charts": ["A"]}}


class TestWindow(Case):
    def setUp(self):
        super().setUp()
        self.program("tavoran-practice", "print('http://127.0.0.1:9', flush=True)\ntime.sleep(60)")

    def trial(self, kind=crash_window.Trial):
        trial = kind(self.ground)
        self.addCleanup(trial.end)
        return trial

    def terminal(self, *lines, log="", then=""):
        """A terminal that says these lines and does that."""
        self.program("tavoran-terminal",
                     f"open(os.environ['TMPDIR'] + '/tavoran-terminal.log', 'w').write({log!r})\n"
                     + "".join(f"print({line!r}, flush=True)\n" for line in lines) + then)

    def run_it(self, trial, moment=lambda window, trial: window.kill()):
        with mock.patch.object(crash_window, "PATIENCE", 0.5):
            trial.run("here", moment)

    def found(self, **parts):
        return "found " + crash_window.json.dumps(STATE | parts)

    def test_what_was_saved_or_was_being_saved_is_no_fault(self):
        trial = self.trial()
        wait = "time.sleep(60)"
        self.terminal(self.found(), 'saving {"theme":"Light"}', "saved", 'saving {"alerts":[]}', then=wait)

        def after_three_lines(window, trial):
            for _ in range(3):
                trial.note(window.line())
            window.kill()

        self.run_it(trial, after_three_lines)
        self.terminal(self.found(theme="Light", alerts=[]), then=wait)
        self.run_it(trial)
        self.assertEqual(self.ground.told, [])
        self.assertEqual(trial.kills, 2)
        self.terminal(self.found(), then=wait)
        self.run_it(trial)
        self.assert_told("here: found {")

    def test_a_mixture_is_a_fault(self):
        trial = self.trial()
        wait = "time.sleep(60)"
        self.terminal(self.found(), 'saving {"theme":"Light","alerts":[]}', then=wait)

        def in_a_save(window, trial):
            trial.note(window.line())
            window.kill()

        self.run_it(trial, in_a_save)
        self.assertEqual(self.ground.told, [])
        self.terminal(self.found(theme="Light"), then=wait)
        self.run_it(trial)
        self.assert_told("here: found {")

    def test_damage_that_is_told_is_a_fault(self):
        self.terminal(self.found(), log="The settings file was damaged", then="time.sleep(60)")
        self.run_it(self.trial())
        self.assert_told("tells of damage")

    def test_a_terminal_that_hangs_was_not_killed(self):
        trial = self.trial()
        self.terminal(self.found(), then="time.sleep(60)")
        self.run_it(trial, lambda window, trial: window.line())
        self.assert_told("the terminal says nothing for 0.5 s")
        self.assertEqual(trial.kills, 0)

    def test_a_terminal_that_does_not_end_was_not_killed(self):
        trial = self.trial()
        self.terminal(self.found(), then="os.close(1)\ntime.sleep(60)")
        self.run_it(trial, lambda window, trial: None)
        self.assert_told("it does not end")
        self.assertEqual(trial.kills, 0)

    def test_a_terminal_that_fails_was_not_killed(self):
        trial = self.trial()
        self.terminal(self.found(), then="sys.exit(3)")
        self.run_it(trial, lambda window, trial: None)
        self.assert_told("ended with 3")
        self.terminal(then="sys.exit(3)")
        self.run_it(trial)
        self.assert_told("ended with 3", "does not start")
        self.assertEqual(trial.kills, 0)

    def use_room(self, refusals, told):
        """What is found of a run in which these saves are refused, and the Journal says so that often after each."""
        log = "open(os.environ['TMPDIR'] + '/tavoran-terminal.log', 'a')"
        self.terminal(self.found(told=0), then=f"for turn in range({crash_window_room.STEPS}):\n"
                      "    sys.stdin.read(1)\n"
                      "    print('saving {\"theme\":\"Light\"}', flush=True)\n"
                      f"    if turn in {refusals}:\n        {log}.write({crash_window_room.REFUSED!r})\n"
                      f"    print('saved {{\"told\":%d}}' % {told}[turn], flush=True)\n"
                      "time.sleep(60)")
        self.ground.told.clear()
        self.trial(crash_window_room.RoomTrial).use("here", 0, "killed", False, False)

    def test_the_journal_tells_each_time_that_saves_begin_to_be_refused(self):
        self.use_room((2, 3, 5), (0, 0, 1, 1, 1, 2))
        self.assertEqual(self.ground.told, [])
        self.use_room((2, 3, 5), (0, 0, 0, 0, 0, 0))
        self.assert_told("the Journal tells 0 times")
        self.use_room((2, 3), (0, 0, 1, 2, 2, 2))
        self.assert_told("the Journal tells 2 times")
        self.use_room((), (0, 0, 1, 1, 1, 1))
        self.assert_told("the Journal tells 1 times")
        self.use_room((0,), (1, 1, 1, 1, 1, 1))
        self.assert_told("refused though there is room")


def told(placed, closed=()):
    made = crash_practice.Told("")
    made.placed.update(placed)
    made.closed.update(closed)
    return made


class TestPlatform(Case):
    def test_acknowledged_orders_are_missed_after_a_power_loss(self):
        wrong = crash_practice.unfit_after_loss
        known = told({"a": ("1", 100), "b": ("2", 200)}, {"1": 150})
        there = {"a": [("1", "history")], "b": [("2", "open")]}
        self.assertEqual(wrong(known, 200, there), [])
        self.assertEqual(wrong(known, 199, {"a": there["a"]}), [])  # not yet acknowledged
        self.assertEqual(wrong(known, 200, {"a": there["a"]}), ["b was acknowledged and is lost"])
        self.assertEqual(wrong(known, 200, there | {"b": [("3", "open")]}), ["b was acknowledged and is lost"])
        self.assertEqual(wrong(known, 200, there | {"a": [("1", "open")]}), ["a was closed and is open"])
        self.assertEqual(wrong(known, 0, {"a": [("1", "open"), ("4", "open")]}), ["a is there 2 times"])

    def test_acknowledged_orders_are_missed_after_a_kill(self):
        known = crash_practice_kills.Acknowledged()
        known.placed = {"a": ("1", True), "b": ("2", False), "c": ("3", True)}
        known.asked, known.gone = {"1", "2"}, {"1"}

        def look(**lists):
            rows = [(kind, {"id": each[0], "comment": each[1]}) for kind, ids in lists.items() for each in ids]
            return crash_practice_kills.lost_and_twice(known, rows)

        self.assertEqual(look(history=["1a"], pending=["2b"], open=["3c"]), ([], []))
        self.assertEqual(look(history=["1a"], open=["3c"]), ([], []))  # its cancellation was asked for
        self.assertEqual(len(look(open=["1a", "3c"])[0]), 1)  # closed, and open again
        self.assertEqual(len(look(history=["1a", "3c"])[0]), 1)  # nobody closed it
        self.assertEqual(len(look()[0]), 2)
        self.assertEqual(look(history=["1a"], open=["3c", "4c"])[1], ["c"])

    def test_a_platform_that_does_not_start_is_a_fault(self):
        self.program("tavoran-practice", "sys.exit(2)")
        crash_practice_kills.kills(self.ground, 1)
        self.assert_told("does not start: status 2", "acknowledged orders: none, so nothing is proved")

    def test_a_damaged_database_is_found(self):
        folder = self.folder({})
        connection = sqlite3.connect(folder / "x.db")
        connection.execute("CREATE TABLE t (a UNIQUE)")
        connection.executemany("INSERT INTO t VALUES (?)", [(str(number) * 20,) for number in range(2000)])
        connection.commit()
        connection.close()
        crash_practice.check_integrity(self.ground, folder / "x.db", "here")
        self.assertEqual(self.ground.told, [])
        content = bytearray((folder / "x.db").read_bytes())
        content[5 * 4096:6 * 4096] = bytes(4096)
        (folder / "x.db").write_bytes(content)
        crash_practice.check_integrity(self.ground, folder / "x.db", "here")
        self.assert_told("integrity_check says")

    def test_refusals_without_room_say_that_nothing_was_changed(self):
        room = types.SimpleNamespace(left=0)

        def asked(status, text, reading=200):
            answers = iter([(status, text), (200, {})])
            orders = types.SimpleNamespace(step=lambda platform, account: next(answers))
            platform = types.SimpleNamespace(answer=lambda *words: (reading, None))
            before = self.ground.faults
            crash_room.try_room(self.ground, platform, "a", orders, room, 5, "here")
            return self.ground.faults - before

        self.assertEqual(asked(503, "nothing was changed"), 0)
        self.assertEqual(asked(500, "nothing was changed"), 1)
        self.assertEqual(asked(503, "sorry"), 1)
        self.assertEqual(asked(503, "nothing was changed", 503), 1)

    def test_orders_that_are_shown_and_stored_are_those_acknowledged(self):
        wrong = crash_room.differences
        known = {"a": ["1", "OPEN", 0.0], "b": ["2", "CANCELLED", 0.5]}
        self.assertEqual(wrong(known, {"a": "1"}, known), [])
        self.assertIn("shown", wrong(known, {}, known)[0])
        self.assertIn("shown", wrong(known, {"a": "1", "b": "2"}, known)[0])
        for stored in ({"a": known["a"]}, known | {"c": known["a"]}, known | {"b": ["2", "PENDING", 0.5]}):
            self.assertIn("acknowledged", wrong(known, {"a": "1"}, stored)[0])


OLD = {"run.json": b"old", "report.html": b"old"}
NEW = {"run.json": b"new", "report.html": b"new", "trades.csv": b"new"}


class TestLab(Case):
    def test_files_of_a_result_after_a_power_loss(self):
        wrong = crash_lab.unfit_after_loss
        self.assertEqual(wrong(OLD, OLD, NEW, False), [])
        self.assertEqual(wrong(NEW, OLD, NEW, True), [])
        self.assertEqual(wrong(OLD | {"run.json": b"new"}, OLD, NEW, False), [])
        self.assertIn("told to be there", wrong(OLD, OLD, NEW, True)[0])
        self.assertIn("neither", wrong(OLD | {"run.json": b"ne"}, OLD, NEW, False)[0])
        self.assertIn("gone", wrong({"run.json": b"new"}, OLD, NEW, False)[0])

    def test_files_of_a_killed_run(self):
        wrong = crash_lab.unfit_after_kill
        mixed = OLD | {"run.json": b"new"}
        self.assertEqual(wrong(OLD, set(), OLD, NEW), [])
        self.assertEqual(wrong(NEW, set(), OLD, NEW), [])
        self.assertEqual(wrong(mixed, {".hidden"}, OLD, NEW), [])
        self.assertIn("pass for a whole one", wrong(mixed, set(), OLD, NEW)[0])
        self.assertIn("pass for a whole one", wrong({"trades.csv": b"new"}, {".hidden"}, {}, NEW)[0])
        self.assertIn("not all of them whole", wrong(mixed | {"trades.csv": b"n"}, {".hidden"}, OLD, NEW)[0])
        self.assertIn("not all of them whole", wrong({"run.json": b"new"}, {".hidden"}, OLD, NEW)[0])

    def test_only_what_was_killed_counts_as_killed(self):
        self.assertTrue(crash_lab.was_killed(self.ground, -9, "here"))
        self.assertFalse(crash_lab.was_killed(self.ground, 0, "here"))
        self.assertEqual(self.ground.told, [])
        self.assertFalse(crash_lab.was_killed(self.ground, 2, "here"))
        self.assert_told("here: ended with 2")

    # A lab that writes what it is told in its folder, and with WRONG something else.
    LAB = """
out = sys.argv[sys.argv.index('--out') + 1]
os.makedirs(out, exist_ok=True)
every = [word for word in sys.argv if word.startswith('Every=')][0]
for name in ('run.json', 'report.html'):
    open(os.path.join(out, name), 'w').write(every)
"""

    def test_a_run_that_does_not_go_well_again_is_a_fault(self):
        self.program("tavoran-lab", self.LAB)
        runs = crash_lab.Runs(self.ground)
        runs.judge(runs.begun(True), True, "here")
        self.assertEqual(self.ground.told, [])
        self.program("tavoran-lab", self.LAB + "open(os.path.join(out, '.left'), 'w')\n")
        runs.judge(runs.begun(True), True, "here")
        self.assert_told("made again, it leaves")
        self.program("tavoran-lab", "sys.exit(2)")
        runs.judge(runs.begun(False), False, "here")
        self.assert_told("made again, it leaves", "does not go well")

    def test_a_lab_that_always_fails_comes_to_an_end(self):
        self.program("tavoran-lab", self.LAB)
        runs = crash_lab.Runs(self.ground)
        self.program("tavoran-lab", "sys.exit(2)")
        with mock.patch.object(crash_lab, "Runs", lambda ground: runs):
            crash_lab.kills_of_runs(self.ground, 1, crash_lab.random.Random(1))
        self.assertIn("run killed before operation 18: ended with 2", "\n".join(self.ground.told))

    def test_runs_on_a_full_disk_leave_nothing_and_say_one_line(self):
        self.program("tavoran-lab", self.LAB + "if 'TAVORAN_DISK_ROOM' in os.environ: sys.exit(1)\n")
        crash_room.runs_with_rooms(self.ground, 1)
        self.assert_told("status 1, ", "left [")

    def store(self, folder, sets, name="sweep.sqlite"):
        folder.mkdir(parents=True, exist_ok=True)
        connection = sqlite3.connect(folder / name)
        connection.execute("CREATE TABLE sets (number, result)")
        connection.executemany("INSERT INTO sets VALUES (?, ?)", sets.items())
        connection.commit()
        connection.close()
        return folder

    def sweeps(self):
        """Judges of a sweep with two sets, whose lab does nothing."""
        sweeps = object.__new__(crash_sweep.Sweeps)
        self.program("tavoran-lab", "")
        sweeps._ground, sweeps.lab, sweeps.kept = self.ground, crash_lab.Lab(self.ground), 0
        sweeps.table = b"table"
        sweeps._sets = {1: (1, "a"), 2: (2, "b")}
        return sweeps

    def test_sets_and_table_of_a_sweep(self):
        sweeps = self.sweeps()
        for sets, table, part in (({1: "a"}, b"table", None), ({1: "c"}, b"table", "a kept set differs"),
                                  ({3: "a"}, b"table", "a kept set differs"), ({}, b"tab", "another end")):
            out = self.store(self.ground.folder(), sets)
            (out / "sweep.csv").write_bytes(table)
            self.ground.told.clear()
            sweeps.judge(out, "here")
            self.assert_told(*([part] if part else []))
        self.ground.told.clear()
        sweeps.judge(self.folder({"sweep.sqlite": b"no store at all" * 100}), "here")
        self.assert_told("cannot be read")

    def test_chunks_and_what_is_left_beside_them(self):
        plan = object.__new__(crash_sweep.Plan)
        self.program("tavoran-lab", "")
        plan._ground, plan._lab, plan._table = self.ground, crash_lab.Lab(self.ground), b"table"
        plan._chunk = {1: (1, "a")}
        plan.done = self.store(self.folder({"p.json": b""}), {1: "a"}, "p-1.sqlite")
        plan.judge("work", plan.begun("merge"), "here")
        self.assertEqual(self.ground.told, [])
        plan.judge("work", self.store(self.ground.folder(), {}, "p-1.sqlite"), "here")
        self.assert_told("a chunk that is not whole", "another end")
        self.ground.told.clear()
        plan.judge("work", plan.begun("work"), "here")
        self.assert_told("another end")
        self.ground.told.clear()
        plan.judge("merge", plan.begun("merge"), "here")
        self.assert_told("another end")
        self.ground.told.clear()
        left = plan.begun("merge")
        (left / ".p-1.sqlite.draft").write_bytes(b"")
        plan.judge("work", left, "here")
        self.assert_told("left behind")


if __name__ == "__main__":
    unittest.main()
