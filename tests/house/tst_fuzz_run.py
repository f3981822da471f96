#!/usr/bin/python3
"""That scripts/fuzz tells what its targets have found, and when one of them has hardly looked.

The real script runs in a tree of its own. Nothing is installed or built there; the targets are shell scripts that print
libFuzzer's last words, and write down how they were called.
"""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

STAND_INS = """
install_packages() { :; }
build_preset() { [ ! -e unbuildable ] || fail "the build failed"; }
"""

# What every target does first. A merge adds what the folder `better` holds; what else a target does comes behind this.
BEGINS = """#!/bin/bash
name=${0##*/fuzz_}
if [ "$1" = -set_cover_merge=1 ]; then
    cp better/* "$3"
    exit
fi
for argument; do
    [ ! -d "$argument" ] || echo "$argument: $(ls -m "$argument")"
    [ -d "$argument" ] || echo "$argument"
done >"called-$name"
echo '#2 INITED cov: 5 ft: 17 corp: 1/1b'
"""
FINDS = BEGINS + "echo 'stat::number_of_executed_units: 40'; echo 'does not hold: one and one are two'\nexit 77\n"
GOES_ON = BEGINS + """trap 'echo "stat::number_of_executed_units: 60"; exit' USR1
while :; do :; done
"""


def tries(count):
    return BEGINS + f"echo 'stat::number_of_executed_units: {count}'\n"


class FuzzRun(unittest.TestCase):
    def setUp(self):
        self.place = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.place)
        self.bin = self.place / "build/fuzz/bin"
        self.bin.mkdir(parents=True)
        (self.place / "scripts").mkdir()
        shutil.copy(ROOT / "scripts/fuzz", self.place / "scripts")
        common = (ROOT / "scripts/common.sh").read_text(encoding="utf-8")
        (self.place / "scripts/common.sh").write_text(common + STAND_INS, encoding="utf-8")
        for name in ("apples", "pears"):
            self.target(name, tries(40))
            corpus = self.corpus(name)
            corpus.mkdir(parents=True)
            (corpus / "one").write_text("one", encoding="utf-8")
            (corpus / "two").write_text("two", encoding="utf-8")

    def target(self, name, text):
        source = self.place / f"tests/fuzz/fuzz_{name}.cpp"
        source.parent.mkdir(parents=True, exist_ok=True)
        source.touch()
        program = self.bin / f"fuzz_{name}"
        program.write_text(text, encoding="utf-8")
        program.chmod(0o755)

    def corpus(self, name):
        return self.place / "tests/fuzz/corpora" / name

    def fuzz(self, *arguments, **environment):
        """Its status, and what it printed."""
        ended = subprocess.run([self.place / "scripts/fuzz", *arguments], capture_output=True, text=True, timeout=300,
                               env={**os.environ, "FUZZ_SEED": "", **environment}, check=False)
        return ended.returncode, ended.stdout + ended.stderr

    def row(self, output, name):
        """The figures of a target's row: inputs, processor seconds, inputs a second, features, findings."""
        rows = [line.split() for line in output.splitlines() if line.startswith(name + " ")]
        self.assertEqual(len(rows), 1, output)
        return rows[0][1:]

    def called(self, name):
        return (self.place / f"called-{name}").read_text(encoding="utf-8").splitlines()

    def folders(self, name):
        return [argument for argument in self.called(name) if not argument.startswith("-")]

    def test_all_well(self):
        status, output = self.fuzz("10")
        self.assertEqual(status, 0, output)
        for name in ("apples", "pears"):
            row = self.row(output, name)
            self.assertEqual([row[0], row[3], row[4]], ["40", "17", "0"])
            self.assertIn("-max_total_time=5", self.called(name))
        self.assertIn("80 inputs in 2 targets, 5 s each", output)
        self.assertNotIn("error", output)

    def test_a_finding_is_told_and_the_others_go_on(self):
        self.target("apples", FINDS)
        status, output = self.fuzz("10")
        self.assertEqual(status, 1, output)
        self.assertEqual(self.row(output, "apples")[4], "1")
        self.assertEqual(self.row(output, "pears")[4], "0")
        self.assertIn("does not hold: one and one are two", output)
        self.assertIn("build/fuzz/findings", output)

    def test_one_that_dies_without_a_word(self):
        self.target("apples", "#!/bin/bash\nexit 1\n")
        status, output = self.fuzz("10")
        self.assertEqual(status, 1, output)
        self.assertEqual(self.row(output, "apples")[4], "1")
        self.assertEqual(self.row(output, "pears")[4], "0")

    def test_one_that_tries_nothing(self):
        for words in (tries(0), BEGINS):
            self.target("apples", words)
            status, output = self.fuzz("10")
            self.assertEqual(status, 1, output)
            self.assertIn("error: apples has tried 0 inputs; its corpus has 2", output)

    def test_one_that_tries_a_part_of_its_corpus(self):
        self.target("pears", tries(1))
        status, output = self.fuzz("10")
        self.assertEqual(status, 1, output)
        self.assertIn("error: pears has tried 1 inputs; its corpus has 2", output)
        self.target("pears", tries(2))
        self.assertEqual(self.fuzz("10")[0], 0)

    def test_a_program_that_is_missing(self):
        (self.bin / "fuzz_pears").unlink()
        for arguments in (["10"], ["--processor", "10"]):
            status, output = self.fuzz(*arguments, "pears")
            self.assertEqual(status, 1, output)
            self.assertEqual(self.row(output, "pears")[4], "1")

    def test_a_build_that_fails(self):
        (self.place / "unbuildable").touch()
        status, output = self.fuzz("10")
        self.assertEqual(status, 1, output)
        self.assertIn("the build failed", output)
        self.assertFalse((self.place / "called-apples").exists())

    def test_processor_time_ends_one_that_goes_on_for_ever(self):
        self.target("apples", GOES_ON)
        status, output = self.fuzz("--processor", "1", "apples")
        self.assertEqual(status, 0, output)
        row = self.row(output, "apples")
        self.assertEqual(row[0], "60")
        self.assertGreaterEqual(float(row[1]), 1)
        self.assertFalse([option for option in self.called("apples") if "time=" in option])

    def test_what_earlier_runs_have_left(self):
        grown = self.place / "build/fuzz/grown/apples"
        grown.mkdir(parents=True)
        (grown / "left").touch()
        self.assertEqual(self.fuzz("10", "apples")[0], 0)
        stored = "tests/fuzz/corpora/apples: one, two"
        self.assertEqual(self.folders("apples"), ["build/fuzz/grown/apples: left", stored])
        self.assertEqual(self.fuzz("--stored", "10", "apples")[0], 0)
        first, second = self.folders("apples")
        self.assertEqual(second, stored)
        # There it leaves what it adds, which is gone in the end.
        folder, before = first.split(": ")
        self.assertNotEqual(folder, "build/fuzz/grown/apples")
        self.assertEqual(before, "")
        self.assertFalse(Path(folder).exists())

    def test_what_reaches_further_is_kept(self):
        better = self.place / "better"
        better.mkdir()
        (better / "short").write_text("1234", encoding="utf-8")
        (better / "one").write_text("another", encoding="utf-8")
        (better / "much").write_text("x" * 8186, encoding="utf-8")
        self.assertEqual(self.fuzz("10", "apples")[0], 0)
        self.assertEqual(sorted(os.listdir(self.corpus("apples"))), ["one", "two"])
        status, output = self.fuzz("--keep", "10", "apples")
        self.assertEqual(status, 0, output)
        # With the last one the corpus would be of more than 8 KiB.
        self.assertEqual(sorted(os.listdir(self.corpus("apples"))), ["one", "short", "two"])
        self.assertEqual((self.corpus("apples") / "one").read_text(encoding="utf-8"), "one")

    def test_the_seed_is_handed_on(self):
        self.assertEqual(self.fuzz("10", "apples", FUZZ_SEED="7")[0], 0)
        self.assertIn("-seed=7", self.called("apples"))

    def test_what_cannot_be_run(self):
        for arguments, words in ((["10", "plums"], "there is no target plums; there are apples pears"),
                                 (["0"], "usage: "), ([], "usage: "), (["--quickly", "10"], "usage: ")):
            status, output = self.fuzz(*arguments)
            self.assertEqual(status, 1, output)
            self.assertIn(words, output)
            self.assertFalse((self.place / "called-apples").exists())


if __name__ == "__main__":
    unittest.main()
