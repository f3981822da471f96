#!/usr/bin/env python3
"""Works every figure of the lab out a second time, with NumPy, and compares.

Takes the path of figures_dump, which says what the lab makes of the runs that are put to it here. Written from
the published formulas, not from the lab's code: where the lab sums by hand, this asks NumPy or the standard
library. Money is in cents, times in milliseconds.
"""

import datetime
import itertools
import math
import statistics
import subprocess
import sys

import numpy as np

DAY_MS = 86_400_000
TOLERANCE = 1e-9
NORMAL = statistics.NormalDist()


def moments(values, order):
    return np.mean((values - np.mean(values)) ** order)


def has_spread(values):
    return len(values) > 1 and np.ptp(values) > 0


def ratio(over, under):
    if over is None or under is None or not under > 0:
        return None
    return over / under


def runs(signs, wanted):
    return max((len(list(group)) for sign, group in itertools.groupby(signs) if sign == wanted), default=0)


def daily_returns(case):
    """Returns until the first day that ends with nothing left, and whether there is one."""
    curve = np.array([case["start"]] + [day[2] for day in case["days"]], dtype=float)
    empty = np.nonzero(curve <= 0)[0]
    ruined = len(empty) > 0
    if ruined:
        curve = curve[:empty[0] + 1]
    return np.diff(curve) / curve[:-1] if len(curve) > 1 else np.array([]), ruined


def probabilistic_sharpe(returns, threshold=0.0):
    if not has_spread(returns):
        return None
    sharpe = np.mean(returns) / np.std(returns, ddof=1)
    third = moments(returns, 3) / moments(returns, 2) ** 1.5
    fourth = moments(returns, 4) / moments(returns, 2) ** 2
    under = 1 - third * sharpe + (fourth - 1) / 4 * sharpe ** 2
    if under <= 0:
        return None
    argument = (sharpe - threshold) * math.sqrt(len(returns) - 1) / math.sqrt(under)
    return math.erfc(-argument / math.sqrt(2)) / 2


def drawdown_spans(case):
    """Peak, bottom, recovery, depth and length of every fall of daily equity, by looking for its peaks."""
    if not case["days"]:
        return []
    dates = [case["days"][0][0] - 1] + [day[0] for day in case["days"]]
    curve = np.array([case["start"]] + [day[2] for day in case["days"]], dtype=float)
    peaks = np.maximum.accumulate(curve)
    spans = []
    for below, group in itertools.groupby(range(len(curve)), key=lambda i: bool(curve[i] < peaks[i])):
        if not below:
            continue
        group = list(group)
        peak = group[0] - 1
        bottom = group[int(np.argmin(curve[group]))]
        after = group[-1] + 1
        recovered = dates[after] if after < len(dates) else None
        length = (recovered if recovered is not None else dates[-1]) - dates[peak]
        spans.append((dates[peak], dates[bottom], recovered, 1 - curve[bottom] / curve[peak], length))
    return spans


def trade_figures(case, out):
    trades = case["trades"]
    net = np.array([t["profit"] - t["commission"] + t["swap"] for t in trades], dtype=float)
    wins, losses = net[net > 0], net[net < 0]
    out["netProfit"] = net.sum()
    out["trades"] = len(net)
    out["longTrades"] = sum(t["side"] == "BUY" for t in trades)
    out["shortTrades"] = sum(t["side"] == "SELL" for t in trades)
    out["wins"] = len(wins)
    out["commission"] = sum(t["commission"] for t in trades)
    out["swap"] = sum(t["swap"] for t in trades)
    out["spreadCost"] = sum(t["spread"] for t in trades)
    out["ambiguousExits"] = sum(t["ambiguous"] for t in trades)
    out["maxConsecutiveWins"] = runs(np.sign(net), 1)
    out["maxConsecutiveLosses"] = runs(np.sign(net), -1)
    some = len(net) > 0
    share = len(wins) / len(net) if some else None
    payoff = wins.mean() / -losses.mean() if len(wins) and len(losses) else None
    out["winRate"] = share
    out["payoff"] = payoff
    out["profitFactor"] = wins.sum() / -losses.sum() if len(losses) else None
    out["expectancy"] = net.mean() if some else None
    out["sqn"] = math.sqrt(len(net)) * net.mean() / net.std(ddof=1) if has_spread(net) else None
    out["kelly"] = share - (1 - share) / payoff if payoff is not None else None
    out["bestTrade"] = net.max() if some else None
    out["worstTrade"] = net.min() if some else None
    minutes = [(t["close"] - t["open"]) / 60_000 for t in trades]
    out["averageDurationMinutes"] = np.mean(minutes) if some else None


def return_figures(case, out):
    returns, ruined = daily_returns(case)
    for key in ("cagr", "volatility", "sharpe", "sortino", "skew", "kurtosis", "psr", "var95", "es95"):
        out[key] = None
    if len(returns) < 2:
        return
    year = out["annualDays"]
    spread = has_spread(returns)
    out["volatility"] = np.std(returns, ddof=1) * math.sqrt(year) if spread else 0.0
    if spread:
        out["sharpe"] = np.mean(returns) / np.std(returns, ddof=1) * math.sqrt(year)
        out["skew"] = moments(returns, 3) / moments(returns, 2) ** 1.5
        out["kurtosis"] = moments(returns, 4) / moments(returns, 2) ** 2 - 3
        out["psr"] = probabilistic_sharpe(returns)
    downside = math.sqrt(np.mean(np.minimum(returns, 0) ** 2))
    if downside > 0:
        out["sortino"] = np.mean(returns) / downside * math.sqrt(year)
    quantile = np.quantile(returns, 0.05)
    out["var95"] = -quantile
    # The quantile may be a return itself, missed by the rounding of the interpolation.
    out["es95"] = -np.mean(returns[returns <= quantile + 1e-15])
    if not ruined and out["endEquity"] > 0:
        try:
            out["cagr"] = (out["endEquity"] / out["startBalance"]) ** (365.25 / out["days"]) - 1
        except OverflowError:
            pass


def figures_of(case):
    out = {}
    days = case["days"]
    out["from"], out["to"] = case["from"], case["to"]
    out["days"] = days[-1][0] - days[0][0] + 1 if days else 0
    out["bars"], out["ticks"], out["refusals"] = case["bars"], case["ticks"], case["refusals"]
    out["ticksPerBar"] = ratio(case["ticks"], case["bars"])
    out["annualDays"] = 365 if case["weekends"] else 252
    out["startBalance"] = case["start"]
    out["endBalance"] = case["points"][-1][1] if case["points"] else case["start"]
    out["endEquity"] = case["points"][-1][2] if case["points"] else case["start"]
    span = case["points"][-1][0] - case["points"][0][0] if case["points"] else 0
    out["exposure"] = ratio(case["exposed"], span)
    out["buyAndHold"] = case["last"] / case["first"] - 1 if case["first"] > 0 else None
    trade_figures(case, out)
    return_figures(case, out)

    out["maxDrawdown"], out["maxDrawdownMoney"] = case["fall"], case["fall_money"]
    out["maxDrawdownBalance"] = case["fall_balance"]
    out["calmar"] = ratio(out["cagr"], case["fall"])
    out["recoveryFactor"] = ratio(out["netProfit"], case["fall_money"])
    spans = drawdown_spans(case)
    out["longestDrawdownDays"] = max((s[4] for s in spans), default=0) if days else None
    out["averageDrawdown"] = np.mean([s[3] for s in spans]) if spans else None
    out["ulcerIndex"] = None
    if days:
        curve = np.array([case["start"]] + [day[2] for day in days], dtype=float)
        below = 1 - curve / np.maximum.accumulate(curve)
        out["ulcerIndex"] = math.sqrt(np.mean(below[1:] ** 2))

    worst = [(low - first) / first for _, _, _, first, low in days if first > 0]
    out["worstDay"] = min(worst) if worst else None
    out["dailyLimitUse"] = out["totalLimitUse"] = None
    if case["plan"] and days:
        if worst:
            out["dailyLimitUse"] = max(0.0, -min(worst) / 0.05)
        lowest = min([case["start"]] + [day[4] for day in days])
        out["totalLimitUse"] = (case["start"] - lowest) / (case["start"] * 0.10)
    return out


def date_of(day):
    return datetime.date(1970, 1, 1) + datetime.timedelta(days=day)


def monthly(case):
    """(year, month) and year to the change of daily equity within them."""
    changes = {}
    before = case["start"]
    for key, length in (("month", 2), ("year", 1)):
        before = case["start"]
        for period, rows in itertools.groupby(case["days"], key=lambda d: date_of(d[0]).timetuple()[:length]):
            last = list(rows)[-1][2]
            changes[(key,) + period] = last / before - 1 if before > 0 else None
            before = last
    return changes


def slots(case, count, place):
    table = [[0, 0, 0] for _ in range(count)]
    for t in case["trades"]:
        moment = datetime.datetime(1970, 1, 1) + datetime.timedelta(milliseconds=t["open"])
        net = t["profit"] - t["commission"] + t["swap"]
        slot = table[place(moment)]
        slot[0] += 1
        slot[1] += net > 0
        slot[2] += net
    return table


def overfitting(matrix, blocks):
    """The share of the splits whose best trial does not lie above the median of the other half."""
    days = len(matrix) // blocks * blocks
    parts = np.split(matrix[len(matrix) - days:], blocks)

    def ratios(chosen):
        half = np.concatenate([parts[i] for i in chosen])
        means, deviations = half.mean(axis=0), half.std(axis=0, ddof=1)
        flat = np.ptp(half, axis=0) == 0
        return np.where(flat, 0, means / np.where(flat, 1, deviations))

    splits = list(itertools.combinations(range(blocks), blocks // 2))
    lost = 0
    for chosen in splits:
        rest = [i for i in range(blocks) if i not in chosen]
        after = ratios(rest)
        lead = after[np.argmax(ratios(chosen))]
        rank = np.sum(after < lead) + (np.sum(after == lead) + 1) / 2
        lost += rank / (len(after) + 1) <= 0.5
    return lost / len(splits)


def deflated(returns, sharpes, trials):
    if len(sharpes) < 2:
        return None
    euler_mascheroni = float(np.euler_gamma)
    expected = 0.0
    if trials > 1:
        expected = np.std(sharpes, ddof=1) * (
            (1 - euler_mascheroni) * NORMAL.inv_cdf(1 - 1 / trials)
            + euler_mascheroni * NORMAL.inv_cdf(1 - 1 / (trials * math.e)))
    return probabilistic_sharpe(returns, expected)


def wilson(hits, count):
    """Solves |share − p| = z·√(p(1−p)/n) for p, as the interval is defined."""
    z, share = NORMAL.inv_cdf(0.975), hits / count
    roots = np.roots([1 + z * z / count, -(2 * share + z * z / count), share * share])
    return (share, *sorted(float(np.real(r)) for r in roots))


def stability(sizes, values):
    grid = np.array([np.nan if v is None else v for v in values]).reshape(sizes)
    out = []
    for place in np.ndindex(*sizes):
        around = tuple(slice(max(i - 1, 0), i + 2) for i in place)
        block = grid[around].copy()
        block[tuple(i - s.start for i, s in zip(place, around))] = np.nan
        value = grid[place]
        seen = block[~np.isnan(block)]
        share = float(np.mean(seen) / value) if value > 0 and len(seen) else None
        out.append(None if share is None or abs(share) > 10 else share)
    return out


# --- cases ---

def case_of(equities, trades=(), start=10_000_000, first_day=19_000, skips=(), **more):
    """A run with these equities at the ends of days that follow one another but for `skips`."""
    days, date, before = [], first_day, start
    for number, equity in enumerate(equities):
        date += 1 + (int(skips[number]) if number < len(skips) else 0)
        days.append((date, equity, equity, before, min(before, equity)))
        before = equity
    points = [(first_day * DAY_MS, start, start)]
    points += [((day[0] + 1) * DAY_MS, day[1], day[2]) for day in days]
    curve = np.array([start] + list(equities), dtype=float)
    fall = np.maximum.accumulate(curve) - curve
    case = {
        "start": start, "weekends": False, "plan": False, "from": first_day * DAY_MS,
        "to": (first_day + 400) * DAY_MS, "bars": 1000, "ticks": 4000, "exposed": DAY_MS // 3, "refusals": 2,
        "first": 1.1, "last": 1.2, "fall": float(np.max(fall / np.maximum.accumulate(curve))),
        "fall_money": int(fall.max()), "fall_balance": 0.01, "days": days, "points": points,
        "trades": list(trades)}
    case.update(more)
    return case


def trade(ticket, profit, commission=0, swap=0, side="BUY", opened=19_001 * DAY_MS, minutes=90.0, ambiguous=0):
    return {"ticket": ticket, "side": side, "open": opened, "close": opened + int(minutes * 60_000),
            "profit": profit, "commission": commission, "swap": swap, "spread": 7 * ticket,
            "ambiguous": ambiguous}


def hand_made():
    wins = [trade(i, 100 * i, side="SELL") for i in range(1, 6)]
    losses = [trade(i, -100 * i) for i in range(1, 6)]
    mixed = [trade(1, 500), trade(2, 700), trade(3, 50, commission=50), trade(4, 900), trade(5, -300),
             trade(6, -20, swap=10), trade(7, -800, ambiguous=1)]
    rising = [10_000_000 + 1000 * i for i in range(1, 30)]
    yield "no trades", case_of([10_000_000] * 10)
    yield "nothing at all", case_of([], bars=0, ticks=0)
    yield "one trade", case_of([10_000_500, 10_000_500], [trade(1, 500)])
    yield "all wins", case_of(rising, wins)
    yield "all losses", case_of([10_000_000 - 900 * i * i for i in range(1, 30)], losses)
    yield "equal trades", case_of([10_000_300], [trade(i, 100) for i in range(1, 4)])
    yield "a net of nothing between wins", case_of(rising, mixed)
    yield "a flat line", case_of([10_000_000] * 60, wins)
    yield "the same return each day", case_of([200, 400, 800, 1600, 3200], start=100)
    yield "ruin", case_of([9_000_000, 4_000_000, -20_000, -20_000, -20_000], losses)
    yield "exactly nothing left", case_of([9_000_000, 4_000_000, 0], losses)
    yield "nothing left for a day", case_of([9_000_000, -20_000, 4_000_000, 5_000_000], losses)
    yield "one day", case_of([10_100_000], wins)
    yield "two days", case_of([10_100_000, 10_050_000], wins)
    yield "gaps of days", case_of([10_100_000, 9_900_000, 9_950_000, 10_300_000, 10_200_000], wins,
                                  skips=[0, 2, 0, 40, 300])
    yield "twenty-one days, the quantile a return", case_of(
        [10_000_000 + (-1) ** i * 7919 * i for i in range(21)])
    yield "weekends", case_of(rising, mixed, weekends=True)
    yield "a plan", case_of([9_700_000, 9_600_000, 9_900_000, 10_400_000], mixed, plan=True)
    yield "a plan that only gains", case_of(rising, mixed, plan=True)
    yield "a gain too large to be put on a year", case_of([10 ** 15, 10 ** 15 + 1], start=1)
    yield "no time and no price", case_of([10_000_100, 10_000_300], first=0.0, points=[])
    yield "before 1970", case_of(rising, [trade(1, 5, opened=-3 * DAY_MS - 1)], first_day=-20)


def random_case(seed):
    rng = np.random.RandomState(seed)
    count = int(rng.randint(2, 700))
    start = int(rng.randint(100_000, 20_000_000))
    steps = rng.standard_t(4, count) * rng.uniform(0.0005, 0.02) + rng.uniform(-0.001, 0.001)
    curve = np.maximum(start * np.cumprod(1 + np.maximum(steps, -0.9)), 1).astype(np.int64)
    skips = rng.choice([0, 0, 0, 0, 2, 3], count)
    first_day = int(rng.randint(10_000, 20_000))
    trades = []
    for ticket in range(1, int(rng.randint(0, 300)) + 1):
        trades.append(trade(
            ticket, int(rng.randint(-50_000, 52_000)), int(rng.randint(0, 900)), int(rng.randint(-300, 100)),
            side="BUY" if rng.rand() < 0.6 else "SELL", ambiguous=int(rng.rand() < 0.1),
            opened=int((first_day + 1) * DAY_MS + rng.randint(0, 400) * 77_777_777),
            minutes=float(rng.randint(1, 10_000)) / 4))
    case = case_of([int(e) for e in curve], trades, start=start, first_day=first_day, skips=skips,
                   weekends=bool(rng.rand() < 0.3), plan=bool(rng.rand() < 0.5),
                   exposed=int(rng.randint(0, 10 ** 9)), first=float(rng.uniform(0.5, 2000)),
                   last=float(rng.uniform(0.5, 2000)), fall=float(rng.uniform(0.01, 0.9)),
                   fall_money=int(rng.randint(1, 10 ** 6)), fall_balance=float(rng.uniform(0, 0.5)),
                   bars=int(rng.randint(1, 10 ** 6)), ticks=int(rng.randint(1, 10 ** 7)))
    case["days"] = [(d, b, e, f, int(low - rng.randint(0, start // 10))) for d, b, e, f, low in case["days"]]
    return case


# --- putting them to the lab ---

def words_of(case):
    head = [case["start"], int(case["weekends"]), int(case["plan"]), case["from"], case["to"], case["bars"],
            case["ticks"], case["exposed"], case["refusals"], case["first"], case["last"], case["fall"],
            case["fall_money"], case["fall_balance"]]
    lines = ["run " + " ".join(map(repr, head))]
    lines += ["day " + " ".join(str(int(v)) for v in day) for day in case["days"]]
    lines += ["point " + " ".join(str(int(v)) for v in point) for point in case["points"]]
    for t in case["trades"]:
        lines.append(f"trade {t['ticket']} {t['side']} {t['open']} {t['close']} {t['profit']} "
                     f"{t['commission']} {t['swap']} {t['spread']} {t['ambiguous']}")
    return "\n".join(lines + ["end"])


def list_words(values):
    return " ".join([str(len(values))] + [repr(float(v)) for v in values])


class Faults:
    def __init__(self):
        self.texts = []
        self.compared = 0

    def compare(self, where, expected, actual, absolute=1e-12):
        self.compared += 1
        if expected is not None:
            expected = float(expected)
            if not math.isfinite(expected):
                expected = None
        if expected is None or actual is None:
            same = expected is None and actual is None
        else:
            same = math.isfinite(actual) and abs(expected - actual) <= max(TOLERANCE * abs(expected), absolute)
        if not same:
            self.texts.append(f"{where}: expected {expected}, the lab says {actual}")

    def compare_rows(self, where, expected, actual):
        self.compare(where + ", rows", len(expected), len(actual))
        for number, (one, other) in enumerate(zip(expected, actual)):
            self.compare(f"{where} {number}, width", len(one), len(other))
            for place, (value, said) in enumerate(zip(one, other)):
                self.compare(f"{where} {number}.{place}", value, said)


def compare_run(faults, name, case, answer):
    expected = figures_of(case)
    for key, value in expected.items():
        faults.compare(f"{name}: {key}", value, answer[key][0][0] if key in answer else math.nan)
    said = set(answer) - {"span", "month", "year", "bin", "weekday", "hour"}
    for key in said - set(expected):
        faults.texts.append(f"{name}: nobody has checked {key}")

    spans = sorted(drawdown_spans(case), key=lambda s: (-s[3], s[0]))[:5]
    faults.compare_rows(f"{name}: span", spans, answer.get("span", []))
    changes = monthly(case)
    for row in answer.get("month", []):
        faults.compare(f"{name}: month {row[:2]}", changes.pop(("month", *map(int, row[:2])), None), row[2])
    for row in answer.get("year", []):
        faults.compare(f"{name}: year {row[0]}", changes.pop(("year", int(row[0])), None), row[1])
    faults.compare(f"{name}: months and years left out", 0, len(changes))

    returns, _ = daily_returns(case)
    bins = answer.get("bin", [])
    if bins:
        counts, _ = np.histogram(returns, [row[0] for row in bins] + [math.inf])
        faults.compare_rows(f"{name}: bin", [[c] for c in counts], [[row[2]] for row in bins])
        for row, after in zip(bins, bins[1:]):
            faults.compare(f"{name}: bins touch", row[1], after[0])
    faults.compare(f"{name}: returns in bins", len(returns), sum(row[2] for row in bins))
    faults.compare_rows(f"{name}: weekday", slots(case, 7, lambda m: m.weekday()), answer["weekday"])
    faults.compare_rows(f"{name}: hour", slots(case, 24, lambda m: m.hour), answer["hour"])


def study_questions():
    """Question, and what compares the answer."""
    rng = np.random.RandomState(77)
    for number, (days, trials, blocks, bias) in enumerate(
            [(160, 5, 16, 0.0), (333, 8, 14, 0.002), (120, 9, 8, 0.0), (48, 4, 12, 0.0), (90, 7, 6, 0.001)]):
        matrix = rng.normal(0, 0.01, (days, trials))
        matrix[:, 1] += bias
        matrix[:, 2] = 0
        if number == 2:
            matrix[:, 4] = matrix[:, 3]
        expected = overfitting(matrix, blocks)
        yield (f"matrix {blocks} {days} {trials} {list_words(matrix.ravel())}",
               lambda f, a, e=expected, n=number: f.compare(f"matrix {n}", e, a["pbo"][0][0]))
    yield (f"matrix 16 31 2 {list_words(np.zeros(62))}",
           lambda f, a: f.compare("too few days", None, a["pbo"][0][0]))
    yield (f"matrix 16 320 1 {list_words(np.zeros(320))}",
           lambda f, a: f.compare("one trial", None, a["pbo"][0][0]))

    for number, (count, trials) in enumerate([(2, 2), (40, 40), (40, 4000), (3, 1_000_000), (1, 1), (7, 9)]):
        sharpes = rng.normal(0.02, 0.05, count)
        returns = rng.standard_t(5, 400) * 0.01 + 0.001
        expected = deflated(returns, sharpes, trials)
        yield (f"deflated {trials} {list_words(sharpes)} {list_words(returns)}",
               lambda f, a, e=expected, n=number: f.compare(f"deflated {n}", e, a["dsr"][0][0]))

    for hits, count in [(0, 10), (10, 10), (1, 1), (37, 200), (1, 100_000), (5, 9)]:
        yield (f"wilson {hits} {count}", lambda f, a, e=wilson(hits, count), n=(hits, count):
               f.compare_rows(f"wilson {n}", [e], a["wilson"]))

    for sizes in [(5,), (1,), (4, 3), (3, 1, 4), (2, 3, 2, 3)]:
        values = [None if v < -1.3 else float(v) for v in rng.normal(0.5, 1, int(np.prod(sizes)))]
        text = " ".join("null" if v is None else repr(v) for v in values)
        yield (f"grid {len(sizes)} {' '.join(map(str, sizes))} {len(values)} {text}",
               lambda f, a, e=stability(sizes, values), n=sizes:
               f.compare_rows(f"grid {n}", [[v] for v in e], a["stability"]))

    numbers = np.concatenate([rng.uniform(1e-3, 14, 300), 10 ** rng.uniform(-12, 2, 200), [1, 2, 0.5, 8, 3]])
    expected = [(math.log(x), math.exp(x - 3), x ** 1.7, math.erfc((5 - x) / math.sqrt(2)) / 2,
                 NORMAL.inv_cdf(x / (1 + x))) for x in numbers]
    yield (f"math {list_words(numbers)}", lambda f, a: f.compare_rows("math", expected, a["math"]))


def answers_of(program, questions):
    done = subprocess.run([program], input="\n".join(questions), capture_output=True, text=True, check=False)
    if done.returncode != 0:
        sys.exit(f"{program}: {done.stderr}")
    answers, current = [], {}
    for line in done.stdout.splitlines():
        if line == "end":
            answers.append(current)
            current = {}
            continue
        key, *values = line.split()
        current.setdefault(key, []).append([None if v == "null" else float(v) for v in values])
    return answers


def main():
    cases = list(hand_made()) + [(f"seed {seed}", random_case(seed)) for seed in range(200)]
    studies = list(study_questions())
    answers = answers_of(sys.argv[1], [words_of(case) for _, case in cases] + [q for q, _ in studies])
    faults = Faults()
    if len(answers) != len(cases) + len(studies):
        faults.texts.append(f"{len(answers)} answers to {len(cases) + len(studies)} questions")
    for (name, case), answer in zip(cases, answers):
        compare_run(faults, name, case, answer)
    for (_, compare), answer in zip(studies, answers[len(cases):]):
        compare(faults, answer)
    for text in faults.texts[:60]:
        print(text)
    print(f"{faults.compared} numbers compared, {len(faults.texts)} differ")
    return 1 if faults.texts else 0


if __name__ == "__main__":
    sys.exit(main())
