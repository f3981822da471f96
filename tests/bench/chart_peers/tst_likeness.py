#!/usr/bin/python3
"""That programs which do not show the same are found out."""

import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "bench/chart_peers"))
import likeness  # noqa: E402

COLUMNS = [("chart", "Ours"), ("other", "Theirs 1.0")]


def findings(shown, bars):
    values = {(program, "bars_7"): count for (program, _), count in zip(COLUMNS, bars)}
    return likeness.findings(shown, values, COLUMNS, (7,))


class Likeness(unittest.TestCase):
    def test_programs_disagree_by_their_largest_relative_difference(self):
        self.assertAlmostEqual(0.5, likeness.disagreement([[1.0, 50.0], [1.0, 50.0], [2.0, 50.0]]))
        self.assertEqual(0.0, likeness.disagreement([[1.0], [1.0]]))

    def test_one_program_alone_cannot_disagree(self):
        self.assertIsNone(likeness.disagreement([[1.0, 2.0], []]))

    def test_a_missing_line_is_no_agreement(self):
        with self.assertRaises(ValueError):
            likeness.disagreement([[1.0, 2.0], [1.0]])

    def test_what_is_no_number_agrees_with_nothing(self):
        for wrong in (float("nan"), float("inf"), None):
            self.assertEqual(float("inf"), likeness.disagreement([[1.0, wrong], [1.0, 2.0]]))
            self.assertEqual(float("inf"), likeness.disagreement([[1.0, 2.0], [1.0, 2.0], [1.0, wrong]]))
        self.assertEqual(float("inf"), likeness.disagreement([[float("nan")], [float("nan")]]))

    def test_all_that_is_alike_is_told(self):
        self.assertEqual([("Averages and RSI of the newest candle at first differ by 0.0e+00 at most.", True),
                          ("Bars in view at 7 px differ by 1.8e-02 at most.", True)],
                         findings({"at first": [[1.0], [1.0]]}, [219, 223]))

    def test_each_moment_counts_by_itself(self):
        found = findings({"before": [[1.0], [1.0]], "after": [[1.0], [1.001]]}, [219, 219])
        self.assertEqual([True, False, True], [alike for _, alike in found])

    def test_fewer_bars_in_view_are_not_alike(self):
        self.assertEqual([("Bars in view at 7 px differ by 3.2e-01 at most: more than 0.05.", False)],
                         findings({}, [219, 150]))

    def test_of_one_program_nothing_is_told(self):
        self.assertEqual([], findings({"before": [[1.0]]}, [219]))


if __name__ == "__main__":
    unittest.main()
