#!/usr/bin/python3
"""That a price which nobody sees counts, and that frames which change nothing are found out."""

import random
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "bench/chart_peers"))
import price_to_pixel  # noqa: E402
from price_to_pixel import PriceToPixel  # noqa: E402

TICKS = [(1.1 + number * 0.0001, 1.2) for number in range(100)]


class Line:
    """Hands each price on at a moment that is a whole number of ms."""

    def __init__(self):
        self.told, self.asked = [], []

    def tell(self, message):
        self.told.append(message)
        return len(self.told) * 1_000_000

    def ask(self, message):
        self.asked.append(message)
        return {}


class Watch:
    """Sees every price three ms after it was sent, but for those of these numbers."""

    def __init__(self, line, blind=(), box="1500 10 20 30"):
        self.line, self.blind, self.box, self.errands, self.looks = line, blind, box, [], 0

    def begin(self, errand):
        self.errands.append(errand)

    def moved(self):
        return self.box

    def seen(self):
        self.looks += 1
        return None if self.looks - 1 in self.blind else len(self.line.told) * 1_000_000 + 3_000_000


def samples(watch):
    return PriceToPixel(watch, watch.line, lambda _: None).samples(TICKS, random.Random(1))


class Prices(unittest.TestCase):
    def test_each_price_takes_from_the_socket_to_its_pixel(self):
        watch = Watch(Line())
        self.assertEqual([3.0] * price_to_pixel.PRICES, samples(watch))
        self.assertEqual("change 1500 10 20 30 2000", watch.errands[-1])

    def test_a_price_is_sent_only_once(self):
        watch = Watch(Line())
        samples(watch)
        bids = [message["bid"] for message in watch.line.told]
        self.assertEqual([bid for bid, _ in TICKS[:len(bids)]], bids)

    def test_a_price_that_is_not_seen_counts_as_the_whole_wait(self):
        found = samples(Watch(Line(), blind=(4, 7)))
        self.assertEqual(2, found.count(None))
        figures = price_to_pixel.figures(found)
        late = [value for figure, value in figures if figure == "pixel"]
        self.assertEqual(price_to_pixel.PRICES, len(late))
        self.assertEqual([2000, 2000], [value for value in late if value != 3.0])
        self.assertEqual(2, sum(value for figure, value in figures if figure == "pixel_missed"))

    def test_a_chart_that_takes_no_price_is_found_out(self):
        with self.assertRaises(RuntimeError):
            samples(Watch(Line(), box=None))


class Frames(unittest.TestCase):
    def test_frames_that_change_nothing_are_found_out(self):
        for kind in ("tick", "pointer", "pan"):
            line = Line()
            PriceToPixel(Watch(line), line).check_frames(kind, 6)
            self.assertEqual([{"do": "frames", "kind": kind, "count": 6}], line.asked)
            with self.assertRaises(RuntimeError):
                PriceToPixel(Watch(line, box=None), line).check_frames(kind, 6)


if __name__ == "__main__":
    unittest.main()
