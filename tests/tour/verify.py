#!/usr/bin/python3
"""A script in the real terminal against the lab: the practice platform records the session, an example expert
trades in it, and `tavoran-lab verify` has to find no divergence; with another input it has to find one."""

import subprocess
import sys
import time
from datetime import datetime, timezone
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))

from acts import experts, sign_in  # noqa: E402
from played_market import CROSSING  # noqa: E402
from tour import perform  # noqa: E402

SCRIPT = Path(__file__).parent.parent.parent / "resources/examples/MA_Cross.js"
# So long after a signal the terminal has been told of all that it led to.
SETTLING = 3


def trade(stage):
    """Lets the expert buy, close and buy again; the chart's symbol and since when it was let."""
    symbol = experts.about_to(stage, CROSSING, experts.crossed_up)
    stage.seen("signal-ahead", symbol, f"the averages of {symbol} will cross")
    experts.show_chart(stage, symbol)
    experts.attach(stage, experts.AVERAGES, symbol)
    stage.press("Algo Trading")
    stage.seen("algo-on", experts.told(stage, "Expert", "Algo Trading enabled"), "the switch in the toolbar is on")
    since = time.time()
    for times in (1, 2):
        bought = stage.wait(lambda wanted=times: len(
            experts.lines(stage, "Expert", f"BUY 0.10 {symbol} executed")) >= wanted, experts.SIGNAL)
        stage.seen("bought", bought, f"the expert bought, time {times}")
        if times == 1:
            closed = experts.told(stage, "Expert", f"position(s) on {symbol}", experts.SIGNAL)
            stage.seen("closed", closed, f"the Experts tab says: {closed}")
    time.sleep(SETTLING)
    return symbol, since


def verify(stage, lab, symbol, since, *options):
    moment = datetime.fromtimestamp(since, timezone.utc).strftime("%Y-%m-%dT%H:%M:%S.000")
    return subprocess.run([lab, "verify", stage.session, SCRIPT, "--symbol", symbol, "--timeframe", "1m", "--from", moment,
                           *options], capture_output=True, text=True, check=False)


def take(stage):
    sign_in.sign_in(stage, "start")
    symbol, since = trade(stage)
    stage.desktop.key("ctrl+q")
    stage.seen("left", stage.terminal.exit_code() == 0, "Ctrl+Q closed the terminal")
    stage.platform.stop()
    lab = stage.binaries / "tavoran-lab"
    same = verify(stage, lab, symbol, since)
    print(same.stdout, same.stderr, sep="", flush=True)
    stage.seen("verified", same.returncode == 0 and "2 orders and" in same.stdout, "the lab finds no divergence")
    other = verify(stage, lab, symbol, since, "--set", "Fast=3")
    print(other.stdout, other.stderr, sep="", flush=True)
    stage.seen("diverges", other.returncode == 1 and "Divergence at" in other.stdout, "with another input it finds one")


if __name__ == "__main__":
    sys.exit(perform(take, __doc__, long=False, recorded=True))
