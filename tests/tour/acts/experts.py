"""The two example experts: attached to charts, held back by the switch, let loose, and detached."""

import time

from acts import trading
from played_market import CROSSING, REVERSING
from stage import SYMBOL

NOTE = "Note: Algo Trading is OFF — the EA runs but cannot trade. Enable it from the toolbar."
AVERAGES, STRENGTH = "MA_Cross", "RSI_Reversal"


def crossed_up(closes):
    def average(period, end):
        return sum(closes[end - period:end]) / period

    end = len(closes)
    return average(10, end - 1) <= average(30, end - 1) and average(10, end) > average(30, end)


def left_oversold(closes):
    def strength(end):
        moves = [b - a for a, b in zip(closes[end - 15:end - 1], closes[end - 14:end])]
        gains = sum(max(0.0, move) for move in moves)
        return 100 * gains / sum(map(abs, moves))

    end = len(closes)
    return strength(end - 1) <= 30 < strength(end)


def about_to(stage, symbols, signal):
    """The symbol of a family where the signal comes with the next minute that is not too close. Each
    signal comes back every third minute, so the closed bars tell."""
    into = time.time() % 60
    back = 3 if into < 35 else 2
    for symbol in symbols:
        bars = stage.platform.get(f"/api/candles?symbol={symbol}&timeframe=1m&limit=60")
        bars = bars["candles"] if isinstance(bars, dict) else bars
        if signal([float(bar["close"]) for bar in bars][:-back]):
            return symbol
    return None


def lines(stage, source, part):
    stage.open_tab("Experts")
    return [row[2] for row in stage.texts("Experts") if row[1] == source and part in row[2]]


def told(stage, source, part, seconds=15):
    return stage.wait(lambda: lines(stage, source, part), seconds)


def show_chart(stage, symbol):
    stage.click(stage.wait(lambda: stage.symbol_row("Market Watch", symbol))[0], times=2)
    stage.seen("expert-chart", stage.has_chart(symbol), f"a chart of {symbol} is open")
    stage.press("M1")
    stage.seen("expert-minutes", stage.has_chart(symbol, "M1"), "with bars of a minute")


def attach(stage, name, symbol):
    navigator = stage.list_named("Navigator")
    stage.desktop.click(*navigator.center, times=20, button=5)  # the wheel: the scripts stand at the end
    stage.click(stage.wait(lambda: stage.list_named("Navigator").find(name=name)), times=2)
    stage.seen("attached", told(stage, name, f"Attached to {symbol} M1"), f"a double-click attached {name} to {symbol}")
    stage.seen("attached-started", told(stage, name, f"{name} started on {symbol}"), "its OnInit ran")
    stage.seen("attached-note", told(stage, name, NOTE), f"the Experts tab says: {NOTE}")
    titled = stage.wait(lambda: stage.part(accept=lambda item: item.name.startswith(f"Chart {symbol},M1")
                                           and item.name.endswith(name)))
    stage.seen("attached-title", titled, "and the chart bears the expert's name")


def detach(stage, name, symbol):
    """Closes the chart of the expert, which must be the active one."""
    stage.seen("detach-front", stage.has_chart(symbol, "M1"), f"the chart of {symbol} is in front")
    stage.choose("Window", "Close")
    stage.seen("detached", told(stage, name, f"{name} stopped"), f"closing the chart of {symbol} ran {name}'s OnDeinit")


def bring_second_forward(stage):
    """Clicks the second of two tabs. Screen readers do not see the tabs, which lie in a row under the chart;
    this one begins after the short first title and is longer."""
    first = stage.has_chart(SYMBOL)
    stage.seen("detach-other", first, f"the chart of {SYMBOL} came to the front")
    stage.desktop.click(first.x + 230, first.y + first.height + 14)


def bought(stage, name, symbol, why):
    said = told(stage, name, why, 110)
    stage.seen("signal", said, f"{name} says: {said}")
    executed = told(stage, "Expert", f"BUY 0.10 {symbol} executed")
    stage.seen("expert-order", executed, f"the Experts tab says: {executed}")
    records = [trade for trade in stage.platform.trades("open") if trade["symbol"] == symbol]
    stage.seen("expert-record", records and all(
        (trade["type"], float(trade["lotSize"])) == ("BUY", 0.10) and trade["stopLoss"] and trade["takeProfit"]
        for trade in records), f"the platform has it, with its levels: {[trade['id'][:8] for trade in records]}")
    row = trading.trade_row(stage, lambda cells: cells[0].name == symbol)
    stage.seen("expert-row", row, "and so has the Trade tab")
    return records


def let_scripts_trade(stage):
    """Both experts buy, each on its chart; the tickets of what they traded."""
    crossing = about_to(stage, CROSSING, crossed_up)
    reversing = about_to(stage, REVERSING, left_oversold)
    stage.seen("signals-ahead", crossing and reversing, f"{crossing} and {reversing} are about to give signals")
    show_chart(stage, reversing)
    attach(stage, STRENGTH, reversing)
    show_chart(stage, crossing)
    attach(stage, AVERAGES, crossing)
    stage.press("Algo Trading")
    stage.seen("algo-on", told(stage, "Expert", "Algo Trading enabled"), "the switch in the toolbar is on")
    stage.portrait("terminal-experts.png")
    held = bought(stage, AVERAGES, crossing, "Fast crossed above slow → BUY")
    bought(stage, STRENGTH, reversing, "RSI left oversold (")
    closing = told(stage, "Expert", f"position(s) on {crossing}", 110)
    stage.seen("expert-close", closing, f"a minute later the averages cross back; the Experts tab says: {closing}")
    tickets = {trade["id"] for trade in held}
    gone = stage.wait(lambda: not tickets & {trade["id"] for trade in stage.platform.trades("open")})
    stage.seen("expert-closed", gone, "and the platform has closed it")
    detach(stage, AVERAGES, crossing)
    bring_second_forward(stage)
    detach(stage, STRENGTH, reversing)
    # Both signals come back every third minute: an expert may have bought once more before it was detached.
    left = [trade["id"][:8] for trade in stage.platform.trades("open") if trade["symbol"] in (crossing, reversing)]
    for ticket in left:
        trading.close(stage, ticket)
    return agree(stage, (crossing, reversing))


def agree(stage, symbols):
    """The account's history beside the Experts tab: one trade for each order that the tab tells of."""
    account = stage.platform.demo_account()
    history = [trade for trade in stage.platform.get("/api/trades/history?accountId=" + account["id"])
               if trade["symbol"] in symbols]
    for symbol in symbols:
        orders = len(lines(stage, "Expert", f"BUY 0.10 {symbol} executed"))
        trades = [trade for trade in history if trade["symbol"] == symbol and trade["exitPrice"]]
        stage.seen("experts-agree", orders == len(trades) > 0,
                   f"{orders} order(s) on {symbol} in the Experts tab, {len(trades)} trade(s) in the account's history")
    return [trade["id"][:8] for trade in history]
