#!/usr/bin/python3
"""That every chart is fed the same prices, and prices that a market could have."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "bench/chart_peers"))
import prices  # noqa: E402


class Prices(unittest.TestCase):
    def test_the_same_seed_makes_the_same_prices_and_another_one_others(self):
        self.assertEqual(prices.candles(50), prices.candles(50))
        self.assertNotEqual(prices.candles(50), prices.candles(50, seed=7))
        self.assertEqual(prices.ticks(50, 1.1), prices.ticks(50, 1.1))

    def test_highs_and_lows_hold_what_is_between_them(self):
        for _, opened, high, low, close, volume in prices.candles(2000):
            self.assertLessEqual(low, min(opened, close))
            self.assertGreaterEqual(high, max(opened, close))
            self.assertGreater(low, 0.5)
            self.assertGreater(volume, 0)

    def test_candles_follow_each_other_without_a_hole_and_end_at_one_moment(self):
        made = prices.candles(100)
        times = [candle[0] for candle in made]
        self.assertEqual({prices.CANDLE_MS}, {later - time for time, later in zip(times, times[1:])})
        self.assertEqual(prices.END_MS, times[-1])
        self.assertEqual([candle[4] for candle in made[:-1]], [candle[1] for candle in made[1:]])

    def test_each_tick_is_far_enough_from_the_one_before_to_be_seen(self):
        bids = [bid for bid, _ in prices.ticks(500, 1.1)]
        self.assertGreaterEqual(min(abs(bid - before) for before, bid in zip(bids, bids[1:])), 4.9 * prices.POINT)

    def test_ticks_stay_about_the_close_with_the_ask_above_the_bid(self):
        for bid, ask in prices.ticks(500, 1.1):
            self.assertLessEqual(abs(bid - 1.1), 30.1 * prices.POINT)
            self.assertAlmostEqual(prices.SPREAD * prices.POINT, ask - bid)

    def test_a_file_gives_back_what_was_written(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "prices.csv"
            prices.write(path, 30, 5)
            candles, ticks = prices.read(path)
        self.assertEqual(prices.candles(30), candles)
        self.assertEqual(prices.ticks(5, candles[-1][4]), ticks)


if __name__ == "__main__":
    unittest.main()
