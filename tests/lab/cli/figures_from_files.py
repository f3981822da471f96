#!/usr/bin/python3
"""Works figures of a run out of its CSV files and its prices, with nothing of the lab's, and compares them with
its summary.json.

figures_from_files.py FOLDER PRICES HALF_SPREAD CONTRACT: a run by the `ohlc` model over prices without asks, with
the same spread in every minute, in a symbol that pays in USD, of a script with one position at a time. Prints each
figure and ends with 1 if any differs."""

import csv
import datetime
import json
import sys

import numpy

FOLDER, PRICES = sys.argv[1], sys.argv[2]
HALF_SPREAD, CONTRACT = float(sys.argv[3]), float(sys.argv[4])
DAY = 86_400_000


def rows(path):
    with open(path, newline="", encoding="utf-8") as file:
        return list(csv.DictReader(file))


def milliseconds(text):
    moment = datetime.datetime.fromisoformat(text.replace("Z", "+00:00"))
    return round(moment.timestamp() * 1000)


def column(table, name, kind=float):
    return numpy.array([kind(row[name]) for row in table])


def deepest(values):
    """The deepest fall below the highest value so far: as a share of that, and in money."""
    peaks = numpy.maximum.accumulate(values)
    return ((peaks - values) / peaks).max(), (peaks - values).max()


def called_prices(start, end):
    """Times and middle prices of the script's calls: open, the extreme nearer to it (the low of two as near), the
    other extreme, close."""
    times, prices = [], []
    for minute in rows(PRICES):
        begin = milliseconds(minute["time"])
        if not start <= begin < end:
            continue
        first, high, low, last = (float(minute[name]) for name in ("open", "high", "low", "close"))
        extremes = (high, low) if round(high - first, 6) < round(first - low, 6) else (low, high)
        prices += [first, *extremes, last]
        times += [begin, begin + 20_000, begin + 40_000, begin + 59_999]
    return numpy.array(times), numpy.array(prices)


with open(f"{FOLDER}/summary.json", encoding="utf-8") as file:
    summary = json.load(file)
trades, equity = rows(f"{FOLDER}/trades.csv"), rows(f"{FOLDER}/equity.csv")
opened, closed = column(trades, "openTime", milliseconds), column(trades, "closeTime", milliseconds)
units = column(trades, "lots") * CONTRACT
sign = numpy.where(column(trades, "side", str) == "BUY", 1, -1)
entry, profit = column(trades, "openPrice"), column(trades, "profit")
commission, swap, net = column(trades, "commission"), column(trades, "swap"), column(trades, "net")
balances = column(equity, "balance")
assert len(trades) > 5, "too few trades to check anything"
assert (opened[1:] >= closed[:-1]).all(), "positions overlap"
assert not swap.any(), "the course of an account with swaps is not worked out here"

times, prices = called_prices(milliseconds(summary["from"]), milliseconds(summary["to"]))


def account(moments, mids, side):
    """The account's equity at these moments: `side` "left" before the orders of that moment, "right" after them."""
    number_opened = numpy.searchsorted(opened, moments, side)
    number_closed = numpy.searchsorted(closed, moments, side)
    before = numpy.concatenate([[0], numpy.cumsum(commission)])
    gained = numpy.concatenate([[0], numpy.cumsum(profit)])
    value = balances[0] - before[number_opened] + gained[number_closed]
    is_open = number_opened > number_closed
    trade = numpy.clip(number_opened - 1, 0, None)
    distance = (mids - sign[trade] * HALF_SPREAD - entry[trade]) * sign[trade]
    return value + numpy.where(is_open, numpy.round(distance * units[trade], 2), 0)


# At each price before and after what the script did there, and after each closing, which may lie in between.
course = numpy.concatenate([account(times, prices, "left"), account(times, prices, "right"),
                            balances[0] + numpy.cumsum(profit - commission)])
moments = numpy.concatenate([times, times, closed])
order = numpy.lexsort((numpy.concatenate([numpy.full(len(times), 0), numpy.full(len(times), 2),
                                          numpy.full(len(closed), 1)]), moments))
course, days = course[order], moments[order] // DAY

found = {"netProfit": net.sum(), "startBalance": balances[0], "endBalance": balances[-1],
         "endEquity": course[-1], "commission": commission.sum(),
         "spreadCost": (2 * HALF_SPREAD * units).sum(),
         "exposure": (closed - opened).sum() / (milliseconds(equity[-1]["time"]) - milliseconds(equity[0]["time"])),
         "maxDrawdownBalance": deepest(balances)[0], "buyAndHold": prices[-1] / prices[0] - 1}
found["maxDrawdown"], found["maxDrawdownMoney"] = deepest(course)
found["worstDay"] = min(course[days == day].min() / course[days == day][0] - 1 for day in numpy.unique(days))
found["recoveryFactor"] = found["netProfit"] / found["maxDrawdownMoney"]

# Money is in whole cents; a share of the account's follows from that.
CENT = 0.011
wrong = 0
for key, value in found.items():
    is_money = key in ("netProfit", "startBalance", "endBalance", "endEquity", "commission", "spreadCost",
                       "maxDrawdownMoney")
    if is_money:
        margin = CENT * (len(trades) if key == "spreadCost" else 1)
    elif key in ("maxDrawdown", "worstDay"):
        margin = CENT / balances[0]
    elif key == "recoveryFactor":
        margin = abs(value) * 2 * CENT / found["maxDrawdownMoney"] + 1e-9
    else:
        margin = 1e-9
    agrees = summary[key] is not None and abs(summary[key] - value) <= margin
    wrong += not agrees
    print("ok   " if agrees else "WRONG", key, summary[key], value)

# The last of each day, as daily.csv has it.
for row in rows(f"{FOLDER}/daily.csv")[1:]:
    day = milliseconds(row["date"] + "T00:00:00Z") // DAY
    last = course[days == day][-1]
    if abs(last - float(row["equity"])) > CENT:
        wrong += 1
        print("WRONG daily.csv", row["date"], row["equity"], last)
sys.exit(1 if wrong else 0)
