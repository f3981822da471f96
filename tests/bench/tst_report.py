#!/usr/bin/python3
"""That a figure of bench/run is called ok only when it was measured and keeps its target."""

import contextlib
import io
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "bench"))
import report  # noqa: E402

NAN = float("nan")


def lines(printing, *arguments):
    """What is printed: each figure's name, its measured value, the target and the verdict."""
    printed = io.StringIO()
    with contextlib.redirect_stdout(printed):
        printing(*arguments)
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in printed.getvalue().splitlines()]


def rows(printing, *arguments):
    """The same by the figure's name; of several with one name the last."""
    return {figure: cells for figure, *cells in lines(printing, *arguments)}


def verdict(printing, *arguments):
    return rows(printing, *arguments)["figure"][-1]


def measured(**changes):
    """Pixel figures that all keep their targets, but for these changes; None leaves one out."""
    found = {name: 1.0 for _, name, _ in report.PIXEL} | {name: 0.0 for _, name, _ in report.WAKES}
    found |= {"quiet_1_missed": 0, "quiet_1_early": 0, "quiet_1_grain_p99_ms": 0.1, "loaded_1_rate": 99,
              "quiet_1_samples": 200, "quiet_1_click_samples": 100, "quiet_1_awake": 1, "quiet_1_apart": 1, **changes}
    return {name: str(value) for name, value in found.items() if value is not None}


class Limits(unittest.TestCase):
    def test_a_value_at_its_upper_limit_is_ok_and_one_above_it_is_short(self):
        self.assertEqual("ok", verdict(report.limited, "figure", 1.5, "{:.1f}", 1.5))
        self.assertEqual("SHORT", verdict(report.limited, "figure", 1.51, "{:.1f}", 1.5))

    def test_a_value_at_its_lower_limit_is_ok_and_one_below_it_is_short(self):
        self.assertEqual("ok", verdict(report.at_least, "figure", 95.0, "{:.1f}", 95))
        self.assertEqual("SHORT", verdict(report.at_least, "figure", 94.9, "{:.1f}", 95))

    def test_what_was_not_measured_is_short_and_said_to_be_not_run(self):
        for printing in (report.limited, report.at_least):
            self.assertEqual(["not run", "SHORT"], rows(printing, "figure", None, "{:.1f}", 1)["figure"][::2])

    def test_what_is_no_number_keeps_no_limit(self):
        self.assertEqual("SHORT", verdict(report.limited, "figure", NAN, "{:.1f}", 1))
        self.assertEqual("SHORT", verdict(report.at_least, "figure", NAN, "{:.1f}", 1))

    def test_without_a_limit_every_value_will_do_but_none_at_all(self):
        self.assertEqual("ok", verdict(report.limited, "figure", 1e9, "{:.1f}", None))
        self.assertEqual("SHORT", verdict(report.limited, "figure", None, "{:.1f}", None))


class PixelLines(unittest.TestCase):
    def short(self, **changes):
        return [cells[0] for cells in lines(report.pixel_lines, measured(**changes)) if cells[-1] != "ok"]

    def test_figures_within_their_targets_are_ok(self):
        self.assertEqual([], self.short())

    def test_a_slow_price_is_short(self):
        self.assertEqual(["price to pixels, 20 charts, quiet: median"], self.short(quiet_20_median_ms=3.01))

    def test_a_figure_that_is_missing_is_short(self):
        self.assertEqual(["price to pixels, 4 charts, quiet: median"], self.short(quiet_4_median_ms=None))
        self.assertEqual(["wake-ups a minute beyond the known timers"], self.short(wakes_beyond=None))

    def test_nothing_measured_leaves_nothing_ok(self):
        shown = rows(report.pixel_lines, {})
        self.assertEqual({"SHORT"}, {cells[-1] for cells in shown.values()})
        self.assertEqual({"not run"}, {cells[0] for cells in shown.values()})

    def test_one_price_that_nobody_has_seen_is_short(self):
        self.assertEqual(["prices and clicks that nobody has seen"], self.short(loaded_4_missed=1))

    def test_too_few_snapshots_in_one_of_the_runs_are_short(self):
        for rate in (94.9, NAN):
            self.assertEqual(["snapshots a second really sent, fewest"], self.short(loaded_20_rate=rate))

    def test_a_click_is_measured_with_each_number_of_charts_quiet_and_loaded(self):
        for run in ("quiet", "loaded"):
            for charts in (1, 4, 20):
                self.assertEqual(["p99"], self.short(**{f"{run}_{charts}_click_p99_ms": 3.1}))

    def test_one_run_on_a_machine_that_was_not_prepared_is_told(self):
        shown = rows(report.pixel_lines, measured(wakes_apart=0, loaded_4_awake=0, loaded_20_awake=1))
        self.assertEqual("0", shown["terminal apart from X server (1) or not (0)"][0])
        self.assertEqual("0", shown["processors kept from sleeping (1) or not (0)"][0])

    def test_what_a_p99_is_of_is_told_of_prices_and_of_clicks(self):
        shown = rows(report.pixel_lines, measured(loaded_4_samples=80, loaded_4_click_samples=40))
        self.assertEqual("80", shown["prices behind a p99, fewest"][0])
        self.assertEqual("40", shown["clicks behind a p99, fewest"][0])

    def test_a_time_that_is_no_number_is_short(self):
        self.assertEqual(["price to pixels, 1 chart, quiet: median"], self.short(quiet_1_median_ms=NAN))


if __name__ == "__main__":
    unittest.main()
