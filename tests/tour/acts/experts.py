"""The two example experts: attached to charts, held back by the switch, let loose, and detached. Their
signals come with the end of a minute: the tour does other things meanwhile."""

import time
from collections import namedtuple

from acts import trading
from played_market import CROSSING, REVERSING
from stage import SYMBOL

NOTE = "Note: Algo Trading is OFF — the EA runs but cannot trade. Enable it from the toolbar."
AVERAGES, RSI = "MA_Cross", "RSI_Reversal"
# A signal that comes later leaves the time to attach three experts.
PREPARATION = 20
# When the machine was too slow for that, the signal comes once more three minutes later.
SIGNAL = 230
# So long an order is on its way to the platform: the price has gone on when it is there.
DELAY = 0.6

# `since` and `until`: when the experts were let loose, and when they were still.
Plan = namedtuple("Plan", "rising falling reversing held since until", defaults=[None])


def averages(closes):
    """By how much the average of ten closes is above that of thirty: one minute ago, and now."""
    return [sum(closes[end - 10:end]) / 10 - sum(closes[end - 30:end]) / 30 for end in (len(closes) - 1, len(closes))]


def crossed_up(closes):
    before, now = averages(closes)
    return before <= 0 < now


def crossed_down(closes):
    before, now = averages(closes)
    return before >= 0 > now


def left_oversold(closes):
    def rsi(end):
        moves = [b - a for a, b in zip(closes[end - 15:end - 1], closes[end - 14:end])]
        gains = sum(max(0.0, move) for move in moves)
        return 100 * gains / sum(map(abs, moves))

    end = len(closes)
    return rsi(end - 1) <= 30 < rsi(end)


def signal_after(now):
    """When the next signals come for which there is time to prepare."""
    return (now + PREPARATION) // 60 * 60 + 60


def wait_for_silence(due):
    """A signal lasts a minute. Who lets the experts loose in it would not know what they knew at their first order."""
    if time.time() > due - 3:
        time.sleep(max(0, due + 61 - time.time()))


def about_to(stage, due, symbols, signal):
    """The symbol of a family where the signal comes when it is due, within the minute or the next. Each
    signal comes back every third minute, so the closed bars tell."""
    back = 3 if due - time.time() <= 60 else 2
    for symbol in symbols:
        bars = stage.platform.get(f"/api/candles?symbol={symbol}&timeframe=1m&limit=60")
        bars = bars["candles"] if isinstance(bars, dict) else bars
        if signal([float(bar["close"]) for bar in bars][:-back]):
            return symbol
    return None


def lines(stage, source, part):
    stage.open_tab("Experts")
    return [row[2].name for row in stage.rows("Experts") if part in row[2].name and row[1].name == source]


def told(stage, source, part, seconds=15):
    return stage.wait(lambda: lines(stage, source, part), seconds)


def show_chart(stage, symbol):
    stage.click(stage.symbol_in_view(symbol), times=2)
    stage.seen("expert-chart", stage.has_chart(symbol), f"a chart of {symbol} is open")
    stage.press("M1")
    stage.seen("expert-minutes", stage.has_chart(symbol, "M1"), "with bars of a minute")


def attach(stage, name, symbol):
    stage.click(stage.entry_in_view(name), times=2)
    attached = told(stage, name, f"Attached to {symbol} M1")
    stage.seen("attached", attached, f"a double-click attached {name} to {symbol}")
    stage.seen("attached-started", told(stage, name, f"{name} started on {symbol}"), "its OnInit ran")
    noted = stage.wait(lambda: len(lines(stage, name, NOTE)) == len(lines(stage, name, "Attached to ")))
    stage.seen("attached-note", noted, f"the Experts tab says: {NOTE}")
    titled = stage.wait(lambda: [chart.name for chart in stage.charts()] == [f"Chart {symbol},M1  •  {name}"])
    stage.seen("attached-title", titled, "and the chart bears the expert's name")


def bring_forward(stage, second=False):
    """Goes to the first or the second tab with the wheel, since not all may have room in the row under the
    charts, which screen readers do not see."""
    area = stage.wait(stage.chart_area)
    tabs = area.center[0], area.y + area.height - round(14 * stage.desktop.scale)
    stage.desktop.wheel_up(*tabs, 9)
    if second:
        stage.desktop.wheel_down(*tabs, 1)


def let_loose(stage):
    """Attaches three experts, each where its signal is ahead: two of them will buy, and the third will close
    what is bought by hand. The plan for looking at what they did."""
    due = signal_after(time.time())
    rising, falling = about_to(stage, due, CROSSING, crossed_up), about_to(stage, due, CROSSING, crossed_down)
    reversing = about_to(stage, due, REVERSING, left_oversold)
    stage.seen("signals-ahead", rising and falling and reversing,
               f"the averages of {rising} will cross, those of {falling} cross back, RSI of {reversing} rise")
    show_chart(stage, reversing)
    attach(stage, RSI, reversing)
    show_chart(stage, falling)
    held = trading.buy_with_one_click(stage, falling, "0.20")
    attach(stage, AVERAGES, falling)
    show_chart(stage, rising)
    attach(stage, AVERAGES, rising)
    wait_for_silence(due)
    stage.platform.delay_orders(DELAY)
    stage.press("Algo Trading")
    stage.seen("algo-on", told(stage, "Expert", "Algo Trading enabled"), "the switch in the toolbar is on")
    since = time.time()
    stage.portrait("terminal-experts.png")
    bring_forward(stage)
    stage.seen("first-chart", stage.has_chart(SYMBOL), f"the wheel over the tabs brings the chart of {SYMBOL} back")
    return Plan(rising, falling, reversing, held, since)


def trades_of(stage, symbol):
    """What the platform has of a symbol, open or closed."""
    return [trade for kind in ("open", "history") for trade in stage.platform.trades(kind)
            if trade["symbol"] == symbol]


def bought(stage, name, symbol, why):
    said = told(stage, name, why, SIGNAL)
    stage.seen("signal", said, f"{name} says: {said}")
    executed = told(stage, "Expert", f"BUY 0.10 {symbol} executed")
    stage.seen("expert-order", executed, f"the Experts tab says: {executed}")
    records = trades_of(stage, symbol)
    stage.seen("expert-record", records and all(
        (trade["type"], float(trade["lotSize"])) == ("BUY", 0.10) and trade["stopLoss"] and trade["takeProfit"]
        for trade in records), f"the platform has it, with its levels: {[trade['id'][:8] for trade in records]}")
    ticket = records[0]["id"][:8]
    is_open = any(trade["id"].startswith(ticket) for trade in stage.platform.trades("open"))
    stage.open_tab("Trade" if is_open else "History")
    row = stage.wait(lambda: stage.row("Trade", lambda cells: cells[1].name == ticket)
                     or stage.row("History", lambda cells: cells[1].name == ticket))
    stage.seen("expert-row", row, "and so has the terminal")


def see_them_trade(stage, plan):
    """Sees what each expert did, and detaches them. The plan with its end, and the tickets of what they traded."""
    bought(stage, AVERAGES, plan.rising, "Fast crossed above slow → BUY")
    bought(stage, RSI, plan.reversing, "RSI left oversold (")
    closing = told(stage, "Expert", f"position(s) on {plan.falling}", SIGNAL)
    stage.seen("expert-close", closing, f"where the averages crossed back, the Experts tab says: {closing}")
    gone = stage.wait(lambda: not trading.record(stage, plan.held))
    stage.seen("expert-closed", gone, "and the platform has closed what was bought by hand")
    stage.platform.delay_orders(0)
    plan = plan._replace(until=time.time())
    for name, symbol in ((RSI, plan.reversing), (AVERAGES, plan.falling), (AVERAGES, plan.rising)):
        bring_forward(stage, second=True)
        detach(stage, name, symbol)
    stage.seen("detached-all", stage.has_chart(SYMBOL), f"the chart of {SYMBOL} is left")
    # A signal comes back every third minute: an expert may have bought once more before it was detached.
    symbols = (plan.rising, plan.falling, plan.reversing)
    left = [trade["id"][:8] for trade in stage.platform.trades("open") if trade["symbol"] in symbols]
    for ticket in left:
        trading.close(stage, ticket)
    return plan, agree(stage, plan, left)


def detach(stage, name, symbol):
    """Closes the chart of the expert, which must be the active one."""
    before = len(lines(stage, name, f"{name} stopped"))
    stage.seen("detach-front", stage.has_chart(symbol, "M1"), f"the wheel over the tabs brings {symbol} forward")
    stage.choose("Window", "Close")
    stopped = stage.wait(lambda: len(lines(stage, name, f"{name} stopped")) == before + 1)
    stage.seen("detached", stopped, f"closing it ran {name}'s OnDeinit")


def agree(stage, plan, by_hand):
    """The account's history beside the Experts tab: one trade for each order that the tab tells of, and what
    the tour did not close itself was closed by an expert that said so."""
    account = stage.platform.demo_account()
    history = [trade for trade in stage.platform.get("/api/trades/history?accountId=" + account["id"])
               if trade["exitPrice"]]
    tickets = []
    for symbol in (plan.rising, plan.falling, plan.reversing):
        orders = len(lines(stage, "Expert", f"BUY 0.10 {symbol} executed"))
        closings = len(lines(stage, "Expert", f"position(s) on {symbol}"))
        traded = [trade["id"][:8] for trade in history if trade["symbol"] == symbol]
        closed = [ticket for ticket in traded if ticket not in by_hand]
        stage.seen("experts-agree", len(traded) == orders + (symbol == plan.falling) > 0 and len(closed) <= closings
                   and (symbol != plan.falling or plan.held in closed),
                   f"{symbol}: {orders} order(s) and {closings} closing(s) in the Experts tab, "
                   f"{len(traded)} trade(s) in the account's history, {len(closed)} of them closed by an expert")
        tickets += traded
    return tickets
