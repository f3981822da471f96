"""Prints the measured figures beside their targets. Every ratio is of medians taken in one run."""

import json
import sys
from pathlib import Path

ROWS = [
    # figure, numerator, denominator, the most it may be
    ("pointer frame, 7 px / FLOOR", "live/pointer_7px", "floorFrame/7px", 0.5),
    ("pointer frame, 7 px / PLOT", "live/pointer_7px", "plotFrame/pointer_7px", 0.35),
    ("pointer frame, 1 px / FLOOR", "live/pointer_1px", "floorFrame/1px", 0.25),
    ("tick frame, range unchanged / FLOOR", "live/tick_7px", "floorFrame/7px", 0.5),
    ("tick frame, newest volume the largest / FLOOR", "live/tick_largest_7px", "floorFrame/7px", 0.5),
    ("tick frame, range unchanged / PLOT", "live/tick_7px", "plotFrame/tick_7px", 0.15),
    ("pan frame, 7 px / FLOOR", "live/pan_7px", "floorFrame/7px", 1.7),
    ("pan frame, 1 px / FLOOR", "live/pan_1px", "floorFrame/1px", 1.7),
    ("pan frame, 7 px / PLOT", "live/pan_7px", "plotFrame/pan_7px", 0.4),
    ("pointer frame, 1 000 000 loaded / 1 000", "live/pointer_7px_1000000_loaded", "live/pointer_7px_1000_loaded", 1.2),
    ("tick frame, 1 000 000 loaded / 1 000", "live/tick_7px_1000000_loaded", "live/tick_7px_1000_loaded", 1.2),
    ("pan frame, 1 000 000 loaded / 1 000", "live/pan_7px_1000000_loaded", "live/pan_7px_1000_loaded", 1.2),
    ("pan frame, pixel ratio 2 / 1", "ratio2:live/pan_7px", "live/pan_7px", 4.0),
    ("SMA over 1 000 000 closes / plain loop", "indicators/simple", "indicators/plain_simple", 1.3),
    ("EMA over 1 000 000 closes / plain loop", "indicators/exponential", "indicators/plain_exponential", 1.3),
    ("RSI over 1 000 000 closes / plain loop", "indicators/strength", "indicators/plain_strength", 1.3),
    ("1 000 000 candles, bytes to painted / PARSE", "history/painted", "history/parse", 1.6),
    ("snapshot of 500, 20 % moved / PARSE", "snapshot/500_moved_100", "snapshot/parse_500", 2.5),
    ("snapshot of 500, prices as strings / PARSE", "snapshot/500_strings_moved_100",
     "snapshot/parse_500_strings", 2.5),
    ("snapshot of 500, nothing moved / PARSE", "snapshot/500_still", "snapshot/parse_500", 1.6),
    ("snapshot of 500, 10 000 alerts / 100 alerts", "snapshot/500_moved_100_alerts_10000",
     "snapshot/500_moved_100", 1.1),
    ("expert tick, ten host calls / bound once", "experts/tick", "experts/bound_once", 1.3),
    ("the same / looked up on the host object", "experts/tick", "experts/looked_up", 0.4),
    ("expert tick, average of 400 bars / of 10", "experts/average_400", "experts/average_10", 1.3),
]
EXPERTS = [(experts, f"snapshot/{experts}_charts_with_experts", f"snapshot/{experts}_charts") for experts in (1, 5, 20)]
INSTRUCTIONS = [("pointer", 1.5), ("tick", None), ("pan", 8.0)]
SNAPSHOTS_A_SECOND = ("snapshots of 2 000 a second, all moved", "snapshot/2000_moved_all", 30)

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

ACTIVITIES = [("snapshots", "snapshots"), ("reconnects", "reconnects"), ("timeframes", "timeframe switches"),
              ("dialogs", "order windows")]
MEMORY = [
    ("memory with 4 charts of 1 000 candles", "pss_mb", " MB", 90),
    ("the same, shared libraries counted in full", "rss_mb", " MB", 90),
    *((f"growth over {{count_{name}}} {title}", f"growth_{name}", " MB", 3) for name, title in ACTIVITIES),
    ("growth over all of these", "growth", " MB", 3),
    ("the same, second halves only (no trend)", "second", " MB", 0.5),
    ("a Journal row at {journal_rows}", "journal_bytes", " B", 700),
    ("time of the last tenth of them / the first", "journal_late_early", "", 1.2),
]


def medians(folder):
    """Median CPU time in ns by benchmark name; names of other files carry the file's name in front."""
    found = {}
    for path in sorted(folder.glob("*.json")):
        prefix = "ratio2:" if path.stem == "ratio2" else ""
        for entry in json.loads(path.read_text())["benchmarks"]:
            if entry.get("aggregate_name") == "median":
                unit = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}[entry["time_unit"]]
                found[prefix + entry["run_name"].split("/repeats")[0].removesuffix("/process_time")] = entry["cpu_time"] * unit
    return found


def disagreement(folder):
    """The largest relative difference between indicators and plain loops, if it was measured."""
    found = [float(entry["disagreement"]) for path in folder.glob("*.json")
             for entry in json.loads(path.read_text())["benchmarks"]
             if entry.get("aggregate_name") == "median" and "disagreement" in entry]
    return max(found, default=None)


def line(figure, value, target, short):
    print(f"| {figure:<46} | {value:>10} | {target:>9} | {'SHORT' if short else 'ok':<5} |")


def values(path):
    """The "name value" lines of a file."""
    return dict(entry.split() for entry in path.read_text().splitlines()) if path.exists() else {}


def start_up_lines(found):
    for figure, name, most in [("process start to sign-in window / BARE", "signin_ms", 2.5),
                               ("sign-in to window, 4 charts painted / BARE", "charts_ms", 3.0)]:
        if name in found:
            ratio = float(found[name]) / float(found["bare_ms"])
            line(figure, f"{ratio:.2f}", f"<= {most:g}", ratio > most)
        else:
            line(figure, "not run", f"<= {most:g}", True)


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
        if name in found:
            value = float(found[name])
            line(figure, f"{value:.3g}{unit}", f"<= {most:g}{unit}", value > most)
        else:
            line(figure, "not run", f"<= {most:g}{unit}", True)


def main():
    folder = Path(sys.argv[1])
    times = medians(folder)
    print(f"| {'figure':<46} | {'measured':>10} | {'target':>9} |       |")
    print(f"|{'-' * 48}|{'-' * 11}:|{'-' * 10}:|-------|")
    for figure, above, below, most in ROWS:
        if above in times and below in times:
            ratio = times[above] / times[below]
            line(figure, f"{ratio:.2f}", f"<= {most:g}", ratio > most)
        else:
            line(figure, "not run", f"<= {most:g}", True)
    largest = disagreement(folder)
    figure = "indicators, largest disagreement with them"
    if largest is None:
        line(figure, "not run", "<= 1e-9", True)
    else:
        line(figure, f"{largest:.1e}", "<= 1e-9", not largest <= 1e-9)
    figure, name, least = SNAPSHOTS_A_SECOND
    if name in times:
        rate = 1e9 / times[name]
        line(figure, f"{rate:.0f}", f">= {least}", rate < least)
    figure = "100 snapshots a second, painted: one core"
    if "snapshot/500_moved_100_painted" in times:
        share = times["snapshot/500_moved_100_painted"] * 100 / 1e9 * 100
        line(figure, f"{share:.1f} %", "<= 40 %", share > 40)
    else:
        line(figure, "not run", "<= 40 %", True)
    for experts, with_experts, without in EXPERTS:
        if with_experts in times and without in times:
            added = (times[with_experts] - times[without]) / 1000
            line(f"microseconds that {experts} experts add to a snapshot", f"{added:.1f}", "-", False)
    figure = "20 experts, 50 ticks a second each: one core"
    if "snapshot/20_charts_with_experts" in times:
        share = times["snapshot/20_charts_with_experts"] * 50 / 1e9 * 100
        line(figure, f"{share:.2f} %", "<= 10 %", share > 10)
    else:
        line(figure, "not run", "<= 10 %", True)
    for frame, most in INSTRUCTIONS:
        counts = [folder / f"instructions-{frame}-{count}" for count in (20, 120)]
        if all(path.exists() and path.read_text().strip() for path in counts):
            few, many = (int(path.read_text().split()[0]) for path in counts)
            millions = (many - few) / 100 / 1e6
            target = f"<= {most:g} M" if most else "-"
            line(f"instructions a {frame} frame, 7 px", f"{millions:.2f} M", target, bool(most) and millions > most)
    start_up_lines(values(folder / "startup"))
    memory_lines(values(folder / "memory"))
    found = values(folder / "platform")
    for figure, name, unit, sign, limit in PLATFORM:
        figure = figure.format(kills=found.get("kills", "the"))
        if name in found:
            value = float(found[name])
            short = value > limit if sign == "<=" else value < limit
            line(figure, f"{value:.4g}{unit}", f"{sign} {limit:g}{unit}", short)
        else:
            line(figure, "not run", f"{sign} {limit:g}{unit}", True)


if __name__ == "__main__":
    main()
