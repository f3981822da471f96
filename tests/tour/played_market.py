"""Prices for --replay that are the same in every run: one symbol that wavers, and one that falls on and on,
so that losses and alerts come within seconds. Two more families, of three symbols each, waver in a step of
three minutes: at any minute one symbol of each is where the example expert buys."""

import random
from datetime import datetime, timedelta

WAVERING, FALLING = "EURUSD", "GBPUSD"
# Averages of 10 and 30 closes cross in the one family, RSI of 14 leaves 30 in the other, both every third minute.
CROSSING, REVERSING = ("AUDUSD", "USDCHF", "USDCAD"), ("XAUUSD", "ETHUSD", "USDJPY")
# Where each price begins, as anyone would expect it. No cross is among them: it would not follow its legs. A
# pip is ten points of the symbol.
LEVELS = {"EURUSD": 1.085, "GBPUSD": 1.265, "AUDUSD": 0.658, "USDCHF": 0.882, "USDCAD": 1.36,
          "USDJPY": 149.5, "XAUUSD": 2350.0, "ETHUSD": 3200.0}
DIGITS = {"USDJPY": 3, "XAUUSD": 2, "ETHUSD": 2}
# The platform plays two fifths of a record as the past. The chart of quarters of an hour shows 30 hours.
PAST = 1800
MINUTES = PAST * 5 // 2


# A walk that stands in the middle of its range, 25 pips and more from both ends,
# when the tour begins, and moves by less than three pips meanwhile.
CALM_SEED = 569


def wavering():
    """Pulled back to where it came from, so that the chart leaves room above and below the newest price."""
    chance, pips = random.Random(CALM_SEED), [0.0]
    for _ in range(MINUTES):
        pips.append(pips[-1] * 0.998 + chance.gauss(0, 0.8))
    return pips


def falling(walk):
    """Wavers like the other in the past, then loses 70 pips a minute."""
    return [pips if minute <= PAST else walk[PAST] - 70.0 * min(minute - PAST, 100)
            for minute, pips in enumerate(walk)]


def crossing(phase):
    """Ten closes hold each of the three steps three times and the newest once more, thirty hold them evenly:
    the difference of both averages follows the newest step. No two steps are alike: a minute in which
    nothing moves has no ticks, and the expert would not see its bar close. The step after a signal is so steep that
    an order which takes half a second gets another price, and the next one ends above the stop loss."""
    steps = (16.0, -6.0, -10.0)
    return [steps[(minute + phase) % 3] if minute > PAST - 90 else 0.0 for minute in range(MINUTES + 1)]


def reversing(phase):
    """Falls from an hour before the tour until two hours after its beginning, with a rise in every third
    minute. Fourteen moves hold four or five of the rises: RSI is 26 or 33."""
    pips, steps = [0.0], (3.6, -4.0, -4.0)
    for minute in range(MINUTES):
        pips.append(pips[-1] + (steps[(minute + phase) % 3] if PAST - 60 < minute < PAST + 120 else 0.0))
    return pips


def write_symbol(folder, name, pips):
    start, digits = LEVELS[name], DIGITS.get(name, 5)
    pip = 10.0 ** (1 - digits)
    chance, time = random.Random(name), datetime(2026, 1, 5)
    lines = ["time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close"]
    for before, after in zip(pips, pips[1:]):
        steep = abs(after - before) > 10 or name in CROSSING + REVERSING
        wicks = (0, 0) if steep else (3 * chance.random(), 3 * chance.random())
        prices = [start + pip * value for value in
                  (before, max(before, after) + wicks[0], min(before, after) - wicks[1], after)]
        bids = ",".join(f"{price:.{digits}f}" for price in prices)
        asks = ",".join(f"{price + pip:.{digits}f}" for price in prices)
        lines.append(f"{time:%Y-%m-%dT%H:%M:%SZ},{bids},{chance.randrange(20, 120)},{asks}")
        time += timedelta(minutes=1)
    (folder / f"{name}-1m.csv").write_text("\n".join(lines) + "\n", encoding="utf-8")


def write_market(folder):
    folder.mkdir(parents=True, exist_ok=True)
    walk = wavering()
    write_symbol(folder, WAVERING, walk)
    write_symbol(folder, FALLING, falling(walk))
    for phase, (first, second) in enumerate(zip(CROSSING, REVERSING)):
        write_symbol(folder, first, crossing(phase))
        write_symbol(folder, second, reversing(phase))
    return folder
