#!/usr/bin/python3
"""That the table of charts shows medians in their places, and a dash for what was not measured."""

import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "bench/chart_peers"))
import table  # noqa: E402

COLUMNS = [("chart", "Ours"), ("other", "Theirs 1.0")]


def rows(values):
    """Cells by the title of their row."""
    lines = [line.strip("|").split("|") for line in table.table(values, COLUMNS).splitlines()]
    return {title.strip(): [cell.strip() for cell in cells] for title, *cells in lines}


class Table(unittest.TestCase):
    def test_each_figure_is_the_median_of_its_rounds(self):
        found = [("chart", "x", 3.0), ("chart", "x", 100.0), ("chart", "x", 1.0), ("other", "x", 7.0)]
        self.assertEqual({("chart", "x"): 3.0, ("other", "x"): 7.0}, table.medians(found))

    def test_a_cell_stands_below_its_program_and_beside_its_title(self):
        shown = rows({("chart", "tick_7_cpu"): 0.366, ("chart", "tick_7_wall"): 0.44, ("other", "memory_1000"): 431.2})
        self.assertEqual(["Ours", "Theirs 1.0"], shown[""])
        self.assertEqual("0.37 / 0.4", shown["price frame, 7 px a bar"][0])
        self.assertEqual("431", shown["memory with 1 000 candles, MB"][1])

    def test_what_was_not_measured_is_a_dash_and_no_number(self):
        shown = rows({("chart", "tick_7_cpu"): 0.366})
        self.assertEqual(["0.37 / -", "- / -"], shown["price frame, 7 px a bar"])
        self.assertEqual(["-", "-"], shown["memory with 100 000 candles, MB"])

    def test_every_line_is_as_long_as_the_others(self):
        lines = table.table({("other", "memory_1000"): 123456.0}, COLUMNS).splitlines()
        self.assertEqual(1, len(set(map(len, lines))))
        self.assertEqual(len(table.ROWS) + 2, len(lines))

    def test_a_percentile_is_one_of_the_values(self):
        values = list(range(100, 0, -1))
        self.assertEqual(95, table.percentile(values, 0.95))
        self.assertEqual(50, table.percentile(values, 0.5))
        self.assertEqual(100, table.percentile(values, 1))
        self.assertEqual(7, table.percentile([7], 0.95))

    def test_prices_that_were_not_seen_have_a_row(self):
        shown = rows({("other", "pixel_missed"): 3, ("other", "pixel_sent"): 75})
        self.assertEqual(["- / -", "3 / 75"], shown["prices not seen / sent"])

    def test_a_frame_without_a_chart_has_a_row(self):
        shown = rows({("chart", "frame_bare_cpu"): 0.012, ("chart", "frame_bare_wall"): 0.06})
        self.assertEqual(["0.01 / 0.1", "- / -"], shown["frame without a chart"])


if __name__ == "__main__":
    unittest.main()
