"""The prices that every program of the comparison is fed: the same from the same seed."""

import csv
import random
from pathlib import Path

SEED = 42
POINT = 0.00001
CANDLE_MS = 900_000
END_MS = 1_700_000_100_000 // CANDLE_MS * CANDLE_MS
SPREAD = 10
START = 110_000


def candles(count, seed=SEED):
    """Quarter-hour candles (ms since the epoch, open, high, low, close, volume), oldest first, without a hole."""
    draw = random.Random(seed)
    price, found = START, []
    for number in range(count):
        # Drawn back to where it began, so that a long walk stays a plausible price.
        close = price + draw.randint(-40, 40) + round((START - price) * 0.001)
        high = max(price, close) + draw.randint(0, 40)
        low = min(price, close) - draw.randint(0, 40)
        time = END_MS - (count - 1 - number) * CANDLE_MS
        found.append((time, *(round(points * POINT, 5) for points in (price, high, low, close)), draw.randint(50, 549)))
        price = close
    return found


def ticks(count, close, seed=SEED):
    """Bid and ask of the newest candle, about its close. Each bid is far enough from the one before to be seen."""
    draw = random.Random(seed)
    middle, bid, found = round(close / POINT), 0, []
    for _ in range(count):
        before = bid
        while abs(bid - before) < 5:
            bid = draw.randint(-30, 30)
        found.append((round((middle + bid) * POINT, 5), round((middle + bid + SPREAD) * POINT, 5)))
    return found


def write(path, count, tick_count):
    """One file: a line for each candle, then one for each tick."""
    made = candles(count)
    with Path(path).open("w", newline="") as file:
        lines = csv.writer(file)
        lines.writerows(("candle", *candle) for candle in made)
        lines.writerows(("tick", *tick) for tick in ticks(tick_count, made[-1][4]))


def read(path):
    """Candles and ticks of such a file, all of them numbers."""
    found = {"candle": [], "tick": []}
    with Path(path).open(newline="") as file:
        for kind, *fields in csv.reader(file):
            found[kind].append(tuple(map(float, fields)))
    return found["candle"], found["tick"]
