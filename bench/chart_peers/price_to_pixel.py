"""How long a live price takes to its first pixel, and whether frames change pixels at all."""

import time

PRICES = 25
PATIENCE_MS = 2000  # what a price that nobody has seen counts as
# Where newest candle and price label are, in all programs; the rest of the screen need not be watched.
RIGHT_EDGE = "1450 0 150 900"
# What frames of a kind must change. While the view is panned the crosshair stays out of that part.
CHANGED_BY = {"tick": RIGHT_EDGE, "pointer": "200 100 1000 600", "pan": "900 100 400 300"}


class PriceToPixel:
    def __init__(self, watch, line, sleep=time.sleep):
        self.watch, self.line, self.sleep = watch, line, sleep

    def samples(self, ticks, draw):
        """Milliseconds from each price's way into the socket to its first pixel; None for each never seen."""
        part = self.moving_part(ticks[:10])
        return [self.one_price(tick, part, draw) for tick in ticks[10:10 + PRICES]]

    def moving_part(self, ticks):
        """The part of the screen that prices change."""
        for _ in range(3):  # on a busy machine the first ones may come too late
            self.watch.begin(f"moving {RIGHT_EDGE} {PATIENCE_MS}")
            for bid, ask in ticks:
                self.line.tell({"bid": bid, "ask": ask})
                self.sleep(0.1)
            part = self.watch.moved()
            if part:
                return part
        raise RuntimeError("no price has reached the screen")

    def one_price(self, tick, part, draw):
        # At no fixed beat, and when the last price has been drawn for long.
        self.sleep(0.1 + draw.random() * 0.05)
        self.watch.begin(f"change {part} {PATIENCE_MS}")
        sent = self.line.tell({"bid": tick[0], "ask": tick[1]})
        seen = self.watch.seen()
        return None if seen is None else (seen - sent) / 1e6

    def check_frames(self, kind, count):
        """Throws if frames of this kind leave the screen as it was."""
        self.watch.begin(f"moving {CHANGED_BY[kind]} {PATIENCE_MS}")
        self.line.ask({"do": "frames", "kind": kind, "count": count})
        if self.watch.moved() is None:
            raise RuntimeError(f"no {kind} frame has changed a pixel")


def figures(samples):
    """(figure, value) of each sample; one that was not seen is as late as can be told."""
    return [pair for ms in samples for pair in (
        ("pixel", PATIENCE_MS if ms is None else ms), ("pixel_missed", int(ms is None)))]
