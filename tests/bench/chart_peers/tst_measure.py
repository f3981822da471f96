#!/usr/bin/python3
"""That a run whose charts do not show the same fails."""

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "bench/chart_peers"))
import measure  # noqa: E402

COLUMNS = [("chart", "Ours"), ("plot", "Theirs")]


class Comparison(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        measure.MANY, measure.TICKS = 300, 50
        self.bench = measure.Bench(self.folder.name, self.folder.name, self.folder.name)
        for shown in self.bench.shown.values():
            shown += [[1.1, 50.0], [1.1, 50.0]]
        for program, bars in (("chart", 219), ("plot", 223)):
            self.bench.note(program, "bars_7", bars)
            self.bench.note(program, "bars_1", bars * 7)

    def report(self):
        told = io.StringIO()
        with contextlib.redirect_stdout(told):
            self.bench.report(COLUMNS)
        return told.getvalue()

    def test_charts_that_show_the_same_pass(self):
        self.report()
        self.assertFalse(self.bench.failed)

    def test_a_value_that_differs_only_after_a_price_fails(self):
        self.bench.shown["after a price"][1] = [1.1, 50.1]
        self.assertIn("after a price differ by 2.0e-03", self.report())
        self.assertTrue(self.bench.failed)

    def test_a_value_that_is_no_number_fails(self):
        self.bench.shown["as loaded"][1] = [float("nan"), 50.0]
        self.report()
        self.assertTrue(self.bench.failed)

    def test_a_chart_with_fewer_bars_in_view_fails(self):
        self.bench.found = [(program, figure, 150 if (program, figure) == ("plot", "bars_7") else value)
                            for program, figure, value in self.bench.found]
        self.report()
        self.assertTrue(self.bench.failed)

    def test_of_how_many_rounds_the_medians_are_is_told(self):
        self.bench.rounds = 2
        self.assertIn("Medians of 2 rounds", self.report())

    def test_every_price_counts_in_median_and_misses(self):
        for ms, missed in ((1.0, 0), (2000, 1), (2000, 1)):
            self.bench.note("plot", "pixel", ms)
            self.bench.note("plot", "pixel_missed", missed)
        told = self.report()
        self.assertIn("2000.0 / 2000.0", told)
        self.assertIn("2 / 3", told)


if __name__ == "__main__":
    unittest.main()
