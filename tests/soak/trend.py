"""Does anything grow? Judges the samples of a soak, and sums it up.

trend.py SAMPLES.csv SUMMARY.txt

Each series is looked at where nothing is open (the rests), after a warm-up. A series grows when the test of Mann and
Kendall finds it rising and the slope of Theil and Sen makes of that more than its grain, over the time looked at: with
a chance of one in a thousand to be wrong, and no matter for less than what caches and measuring move. Of the heap the
rows are taken off that a trader wants to keep: lines of the Journal and closed trades, at what they take each. Of the
platform's memory that is taken off which the longest answer with a history so far has taken, row by row: what the system
gave for it stays, and the next one has it.
Whether the window gets slower is looked at while it is busy, in the same way, by its own work between two turns of its
event loop: how late they are is also others' doing. In one go it may not work for longer than a second.
"""

import csv
import math
import sys

import numpy

WARM_UP = 0.2  # of the time
LEAST_RESTS = 8
CHANCE = 0.001

# What a series may rise by over the time looked at without being called growing, in its own unit.
GRAINS = {
    "heap_kb_net": 512,
    "pss_kb_net": 3000,
    "files": 1,
    "sockets": 6,
    "threads": 2,
    "objects": 10,
    "timer_objects": 1,
    "timers": 3,
    "widgets": 1,
    "top_levels": 1,
    "actions": 1,
    "native_windows": 1,
    "x_windows": 2,
    "x_pixmaps": 4,
    "x_resources": 20,
    "platform_rss_kb_net": 3000,
    "platform_files": 1,
    "platform_sockets": 6,
    "platform_threads": 1,
}

# 17.6 MB for an answer with 5,000 rows, beyond which there is none.
PLATFORM_ROW_KB = 3.6
MOST_PLATFORM_ROWS = 5000

# The same for what says something where the window is busy.
BUSY_GRAINS = {"gap_cpu_ms": 100}
LONGEST_WORK_MS = 1000

# Those of which the least terminal and platform have some: none at all is a series that was not counted.
NEVER_NONE = ("heap_kb_net", "pss_kb_net", "files", "threads", "objects", "timers", "widgets", "top_levels",
              "native_windows", "x_windows", "x_resources", "platform_rss_kb_net", "platform_files",
              "platform_threads", "gap_cpu_ms")


def theil_sen(times, values):
    """The median of the slopes between any two points."""
    first, second = numpy.triu_indices(len(times), 1)
    return float(numpy.median((values[second] - values[first]) / (times[second] - times[first])))


def mann_kendall(values):
    """How likely points without a trend would rise at least so much, by the normal approximation with ties."""
    count = len(values)
    first, second = numpy.triu_indices(count, 1)
    score = float(numpy.sign(values[second] - values[first]).sum())
    _, ties = numpy.unique(values, return_counts=True)
    variance = (count * (count - 1) * (2 * count + 5) - float((ties * (ties - 1) * (2 * ties + 5)).sum())) / 18
    if variance == 0:
        return 1.0
    z = (score - numpy.sign(score)) / math.sqrt(variance)
    return 0.5 * math.erfc(z / math.sqrt(2))


class Trend:
    """What became of one series: its growth over the time looked at, and whether that counts."""

    def __init__(self, name, times, values):
        self.name = name
        self.first, self.last = float(numpy.median(values[:3])), float(numpy.median(values[-3:]))
        self.growth = theil_sen(times, values) * (times[-1] - times[0])
        self.chance = mann_kendall(values)
        self.grows = self.chance < CHANCE and self.growth > {**GRAINS, **BUSY_GRAINS}[name]


def read_samples(path):
    """The columns of the file, as arrays by name."""
    with open(path, encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(file))
    return {name: numpy.array([float(row[name]) for row in rows]) for name in rows[0]} if rows else {}


def read_summary(path):
    """The lines "name value"; what is no number stays a text."""
    summary = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            name, _, value = line.strip().partition(" ")
            try:
                summary[name] = float(value)
            except ValueError:
                summary[name] = value
    return summary


def net_of_rows(samples, summary):
    """Adds the series of memory without the rows that are meant to be kept."""
    rows = (samples["journal_rows"] * summary.get("journal_row_bytes", 0.0)
            + samples["history_rows"] * summary.get("history_row_bytes", 0.0)) / 1024
    return {**samples, "heap_kb_net": samples["heap_kb"] - rows, "pss_kb_net": samples["pss_kb"] - rows,
            "platform_rss_kb_net": samples["platform_rss_kb"] - PLATFORM_ROW_KB * numpy.minimum(
                numpy.maximum.accumulate(samples["history_rows"]), MOST_PLATFORM_ROWS)}


def judge(samples):
    """The trends of all series that there are, or None where there are too few rests for a judgement."""
    rests = samples["rest"] == 1
    times = samples["seconds"][rests]
    if not len(times):
        return None
    late = times >= times[0] + WARM_UP * (times[-1] - times[0])
    if late.sum() < LEAST_RESTS:
        return None
    trends = [Trend(name, times[late], samples[name][rests][late]) for name in GRAINS if name in samples]
    busy = ~rests & (samples["seconds"] >= times[late][0])
    if busy.sum() >= LEAST_RESTS:
        trends += [Trend(name, samples["seconds"][busy], samples[name][busy]) for name in BUSY_GRAINS if name in samples]
    return trends


def uncounted(samples):
    """The series that are missing, or were never counted."""
    missing = [name for name in (*GRAINS, *BUSY_GRAINS) if name not in samples]
    return missing + [name for name in NEVER_NONE if name in samples and not samples[name].any()]


def main(samples_path, summary_path):
    samples = read_samples(samples_path)
    summary = read_summary(summary_path)
    if not samples:
        print("There is no sample")
        return 1
    samples = net_of_rows(samples, summary)
    for name in ("seconds", "messages", "flooded", "reconnects", "activities", "rests_given_up", "did_timeframe_switches",
                 "journal_row_bytes", "history_row_bytes", "gap_ms", "gap_cpu_ms", "gap_p99_ms", "gap_during"):
        if name in summary:
            value = summary[name]
            print(f"{name:24} {value if isinstance(value, str) else format(value, '14,.1f')}")
    dialogs = sum(value for name, value in summary.items() if name in (
        "did_order_dialogs", "did_modify_dialogs", "did_trade_menus", "did_depth_windows", "did_specifications",
        "did_about_boxes", "did_popup_prices", "did_chart_properties", "did_data_windows", "did_sign-in_dialogs",
        "did_chart_menus", "did_alerts_added", "did_averages"))
    print(f"{'windows and menus':24} {dialogs:14,.0f}")
    trends = judge(samples)
    if trends is None:
        print(f"no judgement: fewer than {LEAST_RESTS} rests after the warm-up")
        return 1
    print(f"\n{'series':24} {'first':>12} {'last':>12} {'growth':>10} {'chance':>8}")
    for trend in trends:
        print(f"{trend.name:24} {trend.first:12,.0f} {trend.last:12,.0f} {trend.growth:10,.1f} {trend.chance:8.4f}"
              f"{'  GROWS' if trend.grows else ''}")
    growing = [trend.name for trend in trends if trend.grows]
    verdict = "grows: " + ", ".join(growing) if growing else "no trend"
    print(f"\n{verdict}")
    too_long = summary["gap_cpu_ms"] > LONGEST_WORK_MS
    if too_long:
        print(f"worked {summary['gap_cpu_ms']:.0f} ms in one go, longer than {LONGEST_WORK_MS}, at {summary['gap_during']}")
    not_counted = uncounted(samples)
    if not_counted:
        print("not counted: " + ", ".join(not_counted))
    memory = next(trend for trend in trends if trend.name == "heap_kb_net")
    print("\n| hours | messages | reconnects | timeframe switches | windows and menus | growth of memory | trend | "
          "longest gap |\n|---|---|---|---|---|---|---|---|")
    print(f"| {summary['seconds'] / 3600:.2f} | {summary['messages']:,.0f} | {summary['reconnects']:,.0f} | "
          f"{summary['did_timeframe_switches']:,.0f} | {dialogs:,.0f} | {memory.growth / 1024:.2f} MB | {verdict} | "
          f"{summary['gap_ms']:.0f} ms ({summary['gap_cpu_ms']:.0f} ms of them its own) |")
    return 1 if growing or too_long or not_counted else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
