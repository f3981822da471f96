"""Tests of trend.py: a leak is seen, noise and a step in the warm-up are none."""

import contextlib
import io
import tempfile
import unittest
from pathlib import Path

import numpy

import trend


def series(values, name="objects"):
    """Samples with a rest every half minute."""
    values = numpy.asarray(values, dtype=float)
    return {"seconds": numpy.arange(len(values)) * 30.0, "rest": numpy.ones(len(values)), name: values}


def noise(count, size, seed=3):
    return numpy.random.default_rng(seed).normal(0, size, count)


def growing(samples):
    return [found.name for found in trend.judge(samples) if found.grows]


class TestTrend(unittest.TestCase):
    def test_the_slope_is_that_of_the_line_whatever_one_point_does(self):
        times = numpy.arange(20.0)
        values = 3 * times + 7
        values[11] = 1e6
        self.assertAlmostEqual(trend.theil_sen(times, values), 3)

    def test_the_chance_is_the_published_one(self):
        # Ten rising points: S = 45, variance 125, z = 44 / sqrt(125) = 3.9355.
        self.assertAlmostEqual(trend.mann_kendall(numpy.arange(10.0)), 4.15e-5, places=7)
        self.assertGreater(trend.mann_kendall(-numpy.arange(10.0)), 0.999)

    def test_equal_points_have_no_trend(self):
        self.assertEqual(trend.mann_kendall(numpy.ones(10)), 1.0)
        self.assertEqual(growing(series(numpy.full(40, 777))), [])

    def test_a_leak_of_one_object_a_rest_grows(self):
        self.assertEqual(growing(series(800 + numpy.arange(60))), ["objects"])

    def test_a_leak_below_noise_is_found(self):
        values = 20_000 + 30 * numpy.arange(100) + noise(100, 400)
        self.assertEqual(growing(series(values, "heap_kb_net")), ["heap_kb_net"])

    def test_noise_is_no_growth(self):
        for seed in range(20):
            self.assertEqual(growing(series(20_000 + noise(100, 900, seed), "heap_kb_net")), [])

    def test_less_than_the_grain_is_no_growth(self):
        self.assertEqual(growing(series(20_000 + numpy.arange(100), "heap_kb_net")), [])

    def test_a_step_in_the_warm_up_is_no_growth(self):
        values = numpy.full(60, 900.0)
        values[:8] = 700
        self.assertEqual(growing(series(values)), [])

    def test_what_falls_does_not_grow(self):
        self.assertEqual(growing(series(5000 - 20 * numpy.arange(60))), [])

    def busy(self, values):
        """Every second sample is a rest, in the others the window worked so long in one go."""
        count = 2 * len(values)
        samples = {"seconds": numpy.arange(count) * 30.0, "rest": numpy.arange(count) % 2 == 0,
                   "gap_cpu_ms": numpy.zeros(count)}
        samples["gap_cpu_ms"][1::2] = values
        return samples

    def test_a_window_that_gets_slower_is_found_in_the_busy_samples(self):
        self.assertEqual(growing(self.busy(40 + 5 * numpy.arange(60) + noise(60, 30))), ["gap_cpu_ms"])

    def test_a_window_that_is_as_slow_as_ever_does_not_grow(self):
        for seed in range(20):
            self.assertEqual(growing(self.busy(200 + noise(60, 60, seed))), [])

    def test_only_rests_count(self):
        samples = series(numpy.full(80, 800.0))
        samples["objects"][1::2] += numpy.arange(40) * 100
        samples["rest"][1::2] = 0
        self.assertEqual(growing(samples), [])

    def test_few_rests_allow_no_judgement(self):
        self.assertIsNone(trend.judge(series(numpy.arange(8))))

    def test_kept_rows_are_taken_off_the_heap(self):
        rows = numpy.arange(0, 60_000, 1000.0)
        samples = {**series(10_000 + rows * 512 / 1024, "heap_kb"), "journal_rows": rows, "history_rows": 0 * rows,
                   "pss_kb": 0 * rows, "platform_rss_kb": 0 * rows}
        net = trend.net_of_rows(samples, {"journal_row_bytes": 512.0})
        self.assertTrue((net["heap_kb_net"] == 10_000).all())
        self.assertNotIn("heap_kb_net", growing(net))
        self.assertIn("heap_kb_net", growing(trend.net_of_rows(samples, {})))

    def test_the_platform_keeps_what_its_longest_answer_has_taken(self):
        rows = numpy.concatenate([numpy.arange(0, 6000, 200.0), numpy.zeros(10)])
        taken = trend.PLATFORM_ROW_KB * numpy.array([min(max(rows[:i + 1]), 5000) for i in range(len(rows))])
        samples = {name: 0 * rows for name in ("heap_kb", "pss_kb", "journal_rows")} | {
            "history_rows": rows, "platform_rss_kb": 25_000 + taken}
        self.assertTrue(numpy.allclose(trend.net_of_rows(samples, {})["platform_rss_kb_net"], 25_000))

    def judged(self, counts, change=None, longest_work=9):
        """What the program says of rests with these counts of widgets, and its status; change alters the columns."""
        columns = {name: [7] * len(counts) for name in (*trend.GRAINS, *trend.BUSY_GRAINS, "heap_kb", "pss_kb",
                                                         "platform_rss_kb")}
        for name in ("heap_kb_net", "pss_kb_net", "platform_rss_kb_net"):
            del columns[name]
        columns |= {"seconds": [30 * i for i in range(len(counts))], "rest": [1] * len(counts), "widgets": counts,
                    "journal_rows": [0] * len(counts), "history_rows": [0] * len(counts)}
        if change:
            change(columns)
        with tempfile.TemporaryDirectory() as folder:
            samples = Path(folder) / "samples.csv"
            rows = [",".join(str(value) for value in row) for row in zip(*columns.values())]
            samples.write_text("\n".join([",".join(columns), *rows]) + "\n", encoding="utf-8")
            summary = Path(folder) / "summary.txt"
            summary.write_text("seconds 1200\nmessages 5\nreconnects 6\ndid_timeframe_switches 7\n"
                               f"rests_given_up 3\ngap_ms 8\ngap_cpu_ms {longest_work}\ngap_during theme switches\n",
                               encoding="utf-8")
            said = io.StringIO()
            with contextlib.redirect_stdout(said):
                status = trend.main(samples, summary)
            return status, said.getvalue()

    def test_the_program_names_what_grows_and_fails(self):
        status, said = self.judged([300] * 40)
        self.assertEqual(status, 0)
        self.assertIn("no trend", said)
        self.assertRegex(said, r"rests_given_up +3\.0")
        status, said = self.judged([300 + i for i in range(40)])
        self.assertEqual(status, 1)
        self.assertIn("grows: widgets", said)

    def test_without_a_judgement_the_program_fails(self):
        status, said = self.judged([300] * 8)
        self.assertEqual(status, 1)
        self.assertIn("no judgement", said)

    def test_a_second_of_work_in_one_go_fails_the_program(self):
        self.assertEqual(self.judged([300] * 40, longest_work=1000)[0], 0)
        status, said = self.judged([300] * 40, longest_work=1001)
        self.assertEqual((status, "worked 1001 ms in one go, longer than 1000, at theme switches" in said), (1, True))

    def test_a_series_that_is_missing_or_never_counted_fails_the_program(self):
        status, said = self.judged([300] * 40, lambda columns: columns.pop("timers"))
        self.assertEqual((status, "not counted: timers\n" in said), (1, True))

        def without_x(columns):
            for name in ("x_windows", "x_pixmaps", "x_resources"):
                columns[name] = [0] * 40

        status, said = self.judged([300] * 40, without_x)
        self.assertEqual((status, "not counted: x_windows, x_resources\n" in said), (1, True))


if __name__ == "__main__":
    unittest.main()
