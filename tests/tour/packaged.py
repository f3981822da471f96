#!/usr/bin/python3
"""The shortest way to a trade and back, with programs that come from a package: sign in, watch, buy, close, leave;
then once more for a German. As in the tour, every outcome is seen, or the exit code is not 0."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))

from acts import market, sign_in, trading  # noqa: E402
from tour import perform  # noqa: E402


def take(stage):
    sign_in.sign_in(stage, "start")
    market.watch_prices(stage)
    market.open_chart(stage)
    trading.close(stage, trading.buy(stage))
    stage.portrait("packaged.png")
    stage.desktop.key("ctrl+q")
    stage.seen("closed", stage.terminal.exit_code() == 0, "Ctrl+Q closed the terminal")

    stage.terminal.language = "de_DE"
    stage.terminal.start()
    asked = stage.window(lambda item: item.find("push button", "Anmelden"))
    stage.seen("german", asked, "a German is asked in German")
    stage.desktop.key("Escape")
    stage.seen("german-cancelled", stage.terminal.exit_code() == 0, "Escape ends the terminal, exit code 0")


if __name__ == "__main__":
    sys.exit(perform(take, __doc__, long=False))
