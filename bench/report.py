"""Prints the measured figures beside their targets. Every ratio is of medians taken in one run."""

import json
import math
import re
import statistics
import sys
from pathlib import Path

ROWS = [
    # figure, numerator, denominator, the most it may be
    ("pointer frame, 7 px / FLOOR", "live/pointer_7px", "floorFrame/7px", 0.15),
    ("pointer frame, 7 px / PLOT", "live/pointer_7px", "plotFrame/pointer_7px", 0.15),
    ("pointer frame, 1 px / FLOOR", "live/pointer_1px", "floorFrame/1px", 0.1),
    ("tick frame, range unchanged / FLOOR", "live/tick_7px", "floorFrame/7px", 0.25),
    ("tick frame, newest volume the largest / FLOOR", "live/tick_largest_7px", "floorFrame/7px", 0.25),
    ("tick frame, range unchanged / PLOT", "live/tick_7px", "plotFrame/tick_7px", 0.07),
    ("pan frame, 7 px / FLOOR", "live/pan_7px", "floorFrame/7px", 0.9),
    ("pan frame, 1 px / FLOOR", "live/pan_1px", "floorFrame/1px", 0.9),
    ("pan frame, 7 px / PLOT", "live/pan_7px", "plotFrame/pan_7px", 0.2),
    ("pointer frame, 1 000 000 loaded / 1 000", "live/pointer_7px_1000000_loaded", "live/pointer_7px_1000_loaded", 1.2),
    ("tick frame, 1 000 000 loaded / 1 000", "live/tick_7px_1000000_loaded", "live/tick_7px_1000_loaded", 1.2),
    ("pan frame, 1 000 000 loaded / 1 000", "live/pan_7px_1000000_loaded", "live/pan_7px_1000_loaded", 1.2),
    ("pan frame, pixel ratio 2 / 1", "ratio2:live/pan_7px", "ratio1:live/pan_7px", 4.0),
    ("SMA over 1 000 000 closes / plain loop", "indicators/simple", "indicators/plain_simple", 1.3),
    ("EMA over 1 000 000 closes / plain loop", "indicators/exponential", "indicators/plain_exponential", 1.3),
    ("RSI over 1 000 000 closes / plain loop", "indicators/rsi", "indicators/plain_rsi", 1.3),
    ("1 000 000 candles, bytes to painted / PARSE", "history/painted", "history/parse", 0.2),
    ("snapshot of 500, 20 % moved / PARSE", "snapshot/500_moved_100", "snapshot/parse_500", 1.4),
    ("snapshot of 500, prices as strings / PARSE", "snapshot/500_strings_moved_100",
     "snapshot/parse_500_strings", 1.8),
    ("snapshot of 500, nothing moved / PARSE", "snapshot/500_still", "snapshot/parse_500", 1.15),
    ("snapshot of 500, 10 000 alerts / 100 alerts", "snapshot/500_moved_100_alerts_10000",
     "snapshot/500_moved_100", 1.1),
    ("expert tick, ten host calls / bound once", "experts/tick", "experts/bound_once", 1.3),
    ("the same / looked up on the host object", "experts/tick", "experts/looked_up", 0.4),
    ("expert tick, average of 400 bars / of 10", "experts/average_400", "experts/average_10", 1.3),
    ("lab: run / a bare script engine, same script", "lab/run", "lab/bare", 1.8),
    ("lab: reading minutes / a plain loop", "lab/reading", "lab/plain_reading", 1.5),
    ("lab: writing the report / its run", "lab/report", "lab/run", 0.2),
]
EXPERTS = [(experts, f"snapshot/{experts}_charts_with_experts", f"snapshot/{experts}_charts") for experts in (1, 5, 20)]
INSTRUCTIONS = [("pointer", 1.2), ("tick", 2.8), ("pan", 7.4)]
SHARES = [
    # figure, what is done, how often a second, the largest share of one core
    ("100 snapshots a second, painted: one core", "snapshot/500_moved_100_painted", 100, 14),
    ("20 experts, 50 ticks a second each: one core", "snapshot/20_charts_with_experts", 50, 10),
]
GAPS = [
    # figure, benchmark, the longest time between two turns of the event loop in ms
    ("longest gap, 50 000 messages at once", "feed/burst_50000", 50),
    ("longest gap, more messages than may wait", "feed/overload_100000", 50),
    ("longest gap, 5 000 messages a second, 20 charts", "feed/steady_5000_a_second", 30),
]
SNAPSHOTS_A_SECOND = ("snapshots of 2 000 a second, all moved", "snapshot/2000_moved_all", 600)

PLATFORM = [
    # figure, name, unit, "<=" or ">=", limit
    ("platform: snapshots a second, each of 50 feeds", "snapshots_a_second", "", ">=", 9.5),
    ("platform: REST requests a second beside them", "requests_a_second", "", ">=", 495),
    ("platform: their p99", "p99_ms", " ms", "<=", 50),
    ("platform: share of one core meanwhile", "core_percent", " %", "<=", 100),
    ("platform: first price, slowest of 10 restarts", "restart_s", " s", "<=", 1),
    ("platform: orders lost by {kills} kills", "lost", "", "<=", 0),
    ("platform: orders there twice after {kills} kills", "twice", "", "<=", 0),
]

COUNTS = ((1, "chart"), (4, "charts"), (20, "charts"))
PIXEL = [
    # figure, name, the most it may be in ms
    *(row for charts, noun in COUNTS for row in (
        (f"price to pixels, {charts} {noun}, quiet: median", f"quiet_{charts}_median_ms", 3),
        ("p99", f"quiet_{charts}_p99_ms", 8),
        ("p99 without waiting for a processor, at least", f"quiet_{charts}_own_p99_ms", None))),
    *(row for charts in (4, 20) for row in (
        (f"the same, a price for each of {charts}: median", f"quiet_{charts}_every_median_ms", 3),
        ("p99", f"quiet_{charts}_every_p99_ms", 8))),
    *(row for charts, noun in COUNTS for row in (
        (f"{charts} {noun}, 100 snapshots a second: median", f"loaded_{charts}_median_ms", None),
        ("p99", f"loaded_{charts}_p99_ms", 16))),
    *(row for run in ("quiet", "loaded") for charts, noun in COUNTS for row in (
        (f"Buy to its bytes, {charts} {noun}, {run}: median", f"{run}_{charts}_click_median_ms", None),
        ("p99", f"{run}_{charts}_click_p99_ms", 3))),
]
WAKES = [
    ("wake-ups a minute when nothing moves", "wakes_a_minute", None),
    ("of them the dock snapshot, each second", "wakes_dock_snapshot", None),
    ("of them pings and news", "wakes_ping_and_news", None),
    ("wake-ups a minute beyond the known timers", "wakes_beyond", 0),
]

PACKAGES = [("grademark", "grademark", 3), ("@backtest/framework", "framework", 3)]
FLOORS = [("a bare Node.js loop", "node"), ("a compiled loop", "compiled")]

ACTIVITIES = [("snapshots", "snapshots"), ("reconnects", "reconnects"), ("timeframes", "timeframe switches"),
              ("dialogs", "order windows")]
MEMORY = [
    ("memory with 4 charts of 1 000 candles", "pss_mb", " MB", 45),
    ("the same, shared libraries counted in full", "rss_mb", " MB", 90),
    *((f"growth over {{count_{name}}} {title}", f"growth_{name}", " MB", 3) for name, title in ACTIVITIES),
    ("growth over all of these", "growth", " MB", 3),
    ("the same, second halves only (no trend)", "second", " MB", 0.5),
    ("a Journal row at {journal_rows}", "journal_bytes", " B", 700),
    ("time of the last tenth of them / the first", "journal_late_early", "", 1.2),
]


def median_entries(folder):
    """The name of a file and one of its medians, for each; a file that was cut off has none."""
    for path in sorted(folder.glob("*.json")):
        try:
            entries = json.loads(path.read_text())["benchmarks"]
        except ValueError:
            continue
        for entry in entries:
            if entry.get("aggregate_name") == "median":
                yield path.stem, entry


def medians(folder):
    """Median CPU time in ns by benchmark name; of files such as ratio2-1 and ratio2-2 the median of theirs,
    with "ratio2:" in front of the name."""
    found = {}
    for stem, entry in median_entries(folder):
        name = re.split("/(?:repeats|iterations)", entry["run_name"])[0].removesuffix("/process_time")
        unit = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}[entry["time_unit"]]
        series, numbered, _ = stem.partition("-")
        found.setdefault(f"{series}:{name}" if numbered else name, []).append(entry["cpu_time"] * unit)
    return {name: statistics.median(times) for name, times in found.items()}


def disagreement(folder):
    """The largest relative difference between indicators and plain loops, if it was measured."""
    found = [float(entry["disagreement"]) for _, entry in median_entries(folder) if "disagreement" in entry]
    return max(found, default=None)


def gap_lines(folder):
    """Of each gap the time on the clock, and what this thread itself ran of it: the rest was taken by others."""
    found = {entry["run_name"].split("/iterations")[0]: entry for _, entry in median_entries(folder)
             if "gap_ms" in entry}
    for figure, name, most in GAPS:
        entry = found.get(name, {})
        limited(figure, entry.get("gap_ms"), "{:.0f} ms", most, " ms")
        limited("the same, processor time alone", entry.get("gap_cpu_ms"), "{:.0f} ms", None)


def line(figure, value, target, short):
    print(f"| {figure:<46} | {value:>10} | {target:>9} | {'SHORT' if short else 'ok':<5} |")


def values(path):
    """The "name value" lines of a file."""
    lines = path.read_text().splitlines() if path.exists() else []
    return dict(words for words in map(str.split, lines) if len(words) == 2)


def start_up_lines(found):
    for figure, name, most in [("process start to sign-in window / BARE", "signin_ms", 1.3),
                               ("sign-in to window, 4 charts painted / BARE", "charts_ms", 2.0)]:
        known = name in found and "bare_ms" in found
        limited(figure, float(found[name]) / float(found["bare_ms"]) if known else None, "{:.2f}", most)


def lab_parts_line(folder, times):
    """Broker and engine have each been measured with the ticks on top."""
    parts = [times.get(f"lab/{part}") for part in ("broker", "engine", "ticks")]
    known = "lab/run" in times and all(parts)
    ratio = times["lab/run"] / (parts[0] + parts[1] - parts[2]) if known else None
    bars = max((int(entry["bars"]) for _, entry in median_entries(folder) if "bars" in entry), default=0)
    count = f"{bars:,}".replace(",", " ") if bars else "N"
    limited(f"lab: run of {count} bars, ohlc / its parts", ratio, "{:.2f}", 1.15)


def worker_lines(found):
    measured = {name: float(value) for name, value in found.items()}.get
    at_least("lab: two workers / one, throughput", measured("two_workers"), "{:.2f}", 1.85)
    limited("the same, processor time alone", measured("two_workers_cpu"), "{:.2f}", None)
    limited("lab: a worker with 2 000 000 minutes, M15", measured("worker_m15_mb"), "{:.1f} MB", 25, " MB")
    limited("the same on a chart of M1", measured("worker_m1_mb"), "{:.1f} MB", 25, " MB")


def peer_lines(path):
    """Medians of what several rounds have written, a line "name value" for each figure."""
    rounds = {}
    for name, value in map(str.split, path.read_text().splitlines() if path.exists() else []):
        rounds.setdefault(name, []).append(float(value))
    found = {name: statistics.median(series) for name, series in rounds.items()}

    def ratio(above, below):
        return found[above] / found[below] if above in found and below in found else None

    for title, name, least in PACKAGES:
        at_least(f"lab: bars a second / {title}", ratio("lab_bars", f"{name}_bars"), "{:.2f}", least)
    for title, name in FLOORS:
        limited(f"{title}, bars a second / lab", ratio(f"{name}_bars", "lab_bars"), "{:.3g}", None)
    trades = [value for name, value in found.items() if name.endswith("_trades")]
    # They have not all traded the same strategy if this is far from 1.
    at_least("trades of all these, fewest / most", min(trades) / max(trades) if trades else None, "{:.2f}", 0.9)


def memory_lines(found):
    for total in ("growth", "second"):
        parts = [float(found[f"{total}_{name}"]) for name, _ in ACTIVITIES if f"{total}_{name}" in found]
        if len(parts) == len(ACTIVITIES):
            # Memory given back by one activity does not excuse another.
            found[total] = sum(max(0.0, part) for part in parts)
    counts = {name: f"{int(float(value)):,}".replace(",", " ") for name, value in found.items()
              if name.startswith("count_") or name == "journal_rows"}
    for figure, name, unit, most in MEMORY:
        words = {word.strip("{}"): "N" for word in figure.split() if word.startswith("{")}
        figure = figure.format(**{**words, **counts})
        limited(figure, float(found[name]) if name in found else None, "{:.3g}" + unit, most, unit)


def instructions(path):
    """What callgrind counted, if it ran to its end."""
    found = re.search(r"Collected : (\d+)", path.read_text()) if path.exists() else None
    return int(found.group(1)) if found else None


def limited(figure, value, text, most, unit=""):
    """A row with an upper limit; no value means that it was not measured, and no limit that any will do."""
    target = f"<= {most:g}{unit}" if most is not None else "-"
    if value is None:
        line(figure, "not run", target, True)
    else:
        line(figure, text.format(value), target, most is not None and not value <= most)


def at_least(figure, value, text, least):
    """A row with a lower limit."""
    shown = "not run" if value is None else text.format(value)
    line(figure, shown, f">= {least:g}", value is None or not value >= least)


def fewest(measured, pattern):
    """The least of the figures with such names."""
    return min((value for name, value in measured.items() if re.search(pattern, name)), default=None)


def pixel_lines(found):
    measured = {name: float(value) for name, value in found.items()}
    for figure, name, most in PIXEL:
        limited(figure, measured.get(name), "{:.2f} ms", most, " ms")
    rates = [value for name, value in measured.items() if name.endswith("_rate")]
    # A plain min() leaves out a NaN that is not the first.
    slowest = min(rates, key=lambda rate: -1 if math.isnan(rate) else rate, default=None)
    at_least("snapshots a second really sent, fewest", slowest, "{:.1f}", 95)
    for figure, name, most in WAKES:
        limited(figure, measured.get(name), "{:.1f}", most)
    for figure, ending in (("prices and clicks that nobody has seen", "_missed"),
                           ("prices shown before they were sent", "_early")):
        counts = [value for name, value in measured.items() if name.endswith(ending)]
        limited(figure, sum(counts) if counts else None, "{:g}", 0)
    grains = [value for name, value in measured.items() if name.endswith("_grain_p99_ms")]
    limited("what such a time may be too long by, p99", max(grains, default=None), "{:.2f} ms", None)
    # Of all runs the worst: one that was not had spoils what is compared with it.
    for figure, pattern in (("prices behind a p99, fewest", "(?<!_click)_samples$"),
                            ("clicks behind a p99, fewest", "_click_samples$"),
                            ("processors kept from sleeping (1) or not (0)", "_awake$"),
                            ("terminal apart from X server (1) or not (0)", "_apart$")):
        limited(figure, fewest(measured, pattern), "{:g}", None)


def main():
    only_pixels = sys.argv[1] == "--pixel"
    folder = Path(sys.argv[-1])
    print(f"| {'figure':<46} | {'measured':>10} | {'target':>9} |       |")
    print(f"|{'-' * 48}|{'-' * 11}:|{'-' * 10}:|-------|")
    if only_pixels:
        pixel_lines(values(folder / "pixel"))
        return
    times = medians(folder)
    for figure, above, below, most in ROWS:
        ratio = times[above] / times[below] if above in times and below in times else None
        limited(figure, ratio, "{:.2f}", most)
    lab_parts_line(folder, times)
    worker_lines(values(folder / "workers"))
    peer_lines(folder / "peers")
    limited("indicators, largest disagreement with them", disagreement(folder), "{:.1e}", 1e-9)
    figure, name, least = SNAPSHOTS_A_SECOND
    at_least(figure, 1e9 / times[name] if name in times else None, "{:.0f}", least)
    for figure, name, a_second, most in SHARES:
        share = times[name] * a_second / 1e9 * 100 if name in times else None
        limited(figure, share, "{:.2f} %", most, " %")
    gap_lines(folder)
    for experts, with_experts, without in EXPERTS:
        known = with_experts in times and without in times
        added = (times[with_experts] - times[without]) / 1000 if known else None
        limited(f"microseconds that {experts} experts add to a snapshot", added, "{:.1f}", None)
    for frame, most in INSTRUCTIONS:
        few, many = (instructions(folder / f"instructions-{frame}-{count}") for count in (20, 120))
        millions = (many - few) / 100 / 1e6 if few and many else None
        limited(f"instructions a {frame} frame, 7 px", millions, "{:.2f} M", most, " M")
    start_up_lines(values(folder / "startup"))
    growths = [folder / f"growth-{name}" for name, _ in ACTIVITIES]
    memory_lines({name: value for path in (folder / "memory", *growths) for name, value in values(path).items()})
    pixel_lines(values(folder / "pixel"))
    found = values(folder / "platform")
    for figure, name, unit, sign, limit in PLATFORM:
        figure = figure.format(kills=found.get("kills", "the"))
        if name in found:
            value = float(found[name])
            short = not (value <= limit if sign == "<=" else value >= limit)
            line(figure, f"{value:.4g}{unit}", f"{sign} {limit:g}{unit}", short)
        else:
            line(figure, "not run", f"{sign} {limit:g}{unit}", True)


if __name__ == "__main__":
    main()
