"""What the experts did, once more in the lab: it follows what the platform has recorded, call by call."""

import re
import subprocess
from datetime import datetime, timezone
from pathlib import Path

from acts import experts

EXAMPLES = Path(__file__).parent.parent.parent.parent / "resources/examples"
MOVED = re.compile(r"decided at ([\d.]+), filled at ([\d.]+): (\d+) points? (worse|better), after (\d+) ms")


def verify(stage, plan, name, symbol, *options, session=None):
    """What the lab says to an example on a chart of minutes, between the plan's moments."""
    since, until = (datetime.fromtimestamp(moment, timezone.utc).isoformat(timespec="milliseconds").removesuffix("+00:00")
                    for moment in (plan.since, plan.until))
    return subprocess.run([stage.lab, "verify", session or stage.platform.recordings[0], EXAMPLES / f"{name}.js",
                           "--symbol", symbol, "--timeframe", "1m", "--from", since, "--to", until, *options],
                          capture_output=True, text=True, check=False)


def follow_the_experts(stage, plan):
    """Each has done what its script does in the lab. `plan` tells what it was, since when and until when."""
    seats = ((experts.AVERAGES, plan.rising), (experts.AVERAGES, plan.falling), (experts.RSI, plan.reversing))
    for name, symbol in seats:
        told = verify(stage, plan, name, symbol)
        print(told.stdout, told.stderr, sep="", end="", flush=True)
        commands = re.search(r"(\d+) orders? and (\d+) closings? as recorded, 0 of them refused", told.stdout)
        stage.seen("verified", told.returncode == 0 and "\nNo divergence\n" in told.stdout and commands
                   and sum(map(int, commands.groups())) > 0,
                   f"the lab comes to what {name} did with {symbol}: {commands and commands[0]}")
        if symbol == plan.rising:
            see_the_latency(stage, symbol, told.stdout)
    find_what_differs(stage, plan)


def see_the_latency(stage, symbol, told):
    """The orders were held up, and the price went on meanwhile."""
    points = 10 ** 5  # in a price of 1
    moved = [(float(decided), float(filled), int(by) * (1 if way == "worse" else -1), int(after))
             for decided, filled, by, way, after in MOVED.findall(told)]
    entries = {float(trade["entryPrice"]) for trade in experts.trades_of(stage, symbol)}
    stage.seen("verified-latency", moved and all(
        round((filled - decided) * points) == by and filled in entries and after >= experts.DELAY * 1000
        for decided, filled, by, after in moved),
        f"and tells by how much an order's way of {experts.DELAY} s has moved its price: {moved}")


def find_what_differs(stage, plan):
    """Another input than the expert's, and a recording that lacks an order."""
    other = verify(stage, plan, experts.AVERAGES, plan.rising, "--set", "Fast=3")
    stage.seen("verified-input", other.returncode == 1 and "Divergence at" in other.stdout,
               f"with another input it finds a divergence: {other.stdout.splitlines()[-4:]}")
    whole = stage.platform.recordings[0]
    lines = whole.read_text(encoding="utf-8").splitlines(keepends=True)
    order = next(line for line in lines if line.startswith("place\t") and line.split("\t")[3] == plan.rising)
    lines.remove(order)
    cut = whole.with_name("session-without-an-order")
    cut.write_text("".join(lines), encoding="utf-8")
    missing = verify(stage, plan, experts.AVERAGES, plan.rising, session=cut)
    stage.seen("verified-missing", missing.returncode == 1 and "Divergence at" in missing.stdout,
               f"and so it does where an order is missing: {missing.stdout.splitlines()[-4:]}")
