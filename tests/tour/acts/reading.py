"""The chart as a screen reader reads it over the bus: checked against what the platform itself says."""

import re
import time
from datetime import datetime, timezone

import chart_picture as paint
from acts.trading import order_dialog, record
from reader import Ears
from stage import SYMBOL

BAR = r"{} (\d{{4}}\.\d\d\.\d\d \d\d:\d\d): open (\S+), high (\S+), low (\S+), close (\S+), volume (\d+)"
LAST, CROSSHAIR = BAR.format("Last bar"), BAR.format(r"Crosshair at [\d.]+,")
QUOTE = r"\. Bid ([\d.]+)\. Ask ([\d.]+)\.$"
INDICATORS = r", SMA\(50\) ([\d.]+), EMA\(20\) ([\d.]+), RSI\(14\) ([\d.]+)\."


def time_text(candle):
    when = datetime.fromisoformat(candle["timestamp"].replace("Z", "+00:00"))
    return when.astimezone(timezone.utc).strftime("%Y.%m.%d %H:%M")


def candles(stage):
    """The platform's own candles by the time at which they begin."""
    return {time_text(candle): candle for candle in
            stage.platform.get(f"/api/candles?symbol={SYMBOL}&timeframe=15m")}


def sma(closes, period):
    return sum(closes[-period:]) / period


def ema(closes, period):
    value = sma(closes[:period], period)
    for close in closes[period:]:
        value += (close - value) * 2 / (period + 1)
    return value


def rsi(closes, period):
    steps = [after - before for before, after in zip(closes, closes[1:])]
    gain, loss = (sum(max(sign * step, 0) for step in steps[:period]) / period for sign in (1, -1))
    for step in steps[period:]:
        gain, loss = ((mean * (period - 1) + max(sign * step, 0)) / period
                      for mean, sign in ((gain, 1), (loss, -1)))
    return 100 - 100 / (1 + gain / loss) if loss else 100.0


def read_the_last_bar(stage, chart):
    def agrees():
        text = chart.description
        told, quote = re.search(LAST, text), re.search(QUOTE, text)
        time_there, candle = list(candles(stage).items())[-1]
        open_, high, low, close = map(float, told.groups()[1:5])
        bid, ask = map(float, quote.groups())
        same = told[1] == time_there and open_ == round(float(candle["open"]), 5)
        return text if same and low <= close <= high and abs(close - (bid + ask) / 2) < 0.000011 else None

    stage.desktop.move(5, 5)
    text = stage.wait(agrees)
    stage.seen("read-last-bar", text, f"what it reads is the platform's last candle and the quote: {text}")
    row = stage.symbol_row("Market Watch")

    def quoted():
        return re.search(QUOTE, chart.description).groups()

    def is_quoted(side):
        """Whether a cell says what the chart says before or after: the market moves while they are asked."""
        before, cell = quoted(), row[1 + side].again().name
        return cell in (before[side], quoted()[side])

    quote = stage.wait(lambda: is_quoted(0) and is_quoted(1))
    stage.seen("read-quote", quote, "bid and ask are those of the Market Watch")


def read_under_the_pointer(stage, chart):
    """The candle and the indicators under the pointer, worked out from the platform's candles once more."""
    def told_at(across):
        stage.desktop.move(*picture.at(across, 0.3))
        return stage.wait(lambda: re.search(CROSSHAIR + INDICATORS, chart.description))

    picture = stage.chart()
    kept = candles(stage)
    places = []
    for name, across in (("first", 0.45), ("second", 0.62)):
        told = told_at(across)
        place = list(kept).index(told[1]) if told else -1
        closes = [float(candle["close"]) for candle in list(kept.values())[:place + 1]]
        candle = kept[told[1]]
        wanted = [*(f"{float(candle[key]):.5f}" for key in ("open", "high", "low", "close")), str(candle["volume"])]
        averages = f"{sma(closes, 50):.5f}", f"{ema(closes, 20):.5f}"
        right = (list(told.groups()[1:6]) == wanted
                 and all(abs(float(a) - float(b)) < 0.000011 for a, b in zip(told.groups()[6:8], averages))
                 and abs(float(told[9]) - rsi(closes, 14)) < 0.011)
        stage.seen(f"read-{name}-bar", right, f"under the pointer it reads the bar and the indicators of {told[1]}")
        places.append(told[1])
    stage.seen("read-moved", places[0] < places[1], "and another one where the pointer goes")
    stage.desktop.move(5, 5)


def find_the_marks(stage, chart, ticket, order):
    """Levels and drawings, by name, price and place."""
    held, waiting = record(stage, ticket), record(stage, order, "pending")
    lots = f"{float(held['lotSize']):.2f}"
    wanted = {
        f"Entry of buy {lots} #{ticket} at {float(held['entryPrice']):.5f}",
        f"Stop loss of buy {lots} #{ticket} at {float(held['stopLoss']):.5f}",
        f"Take profit of buy {lots} #{ticket} at {float(held['takeProfit']):.5f}",
        f"Pending buy limit {float(waiting['lotSize']):.2f} #{order} at {float(waiting['pendingPrice']):.5f}",
    }
    marks = stage.wait(lambda: wanted <= {(found := item).name for item in chart.children()} and list(chart.children()))
    names = [item.name for item in marks or []]
    stage.seen("marks", marks, f"the levels are on it by name: {sorted(wanted)}")
    kinds = sorted(name.split(" from ")[0].split(" at ")[0] for name in names if name.startswith(
        ("Horizontal", "Vertical", "Trend", "Rectangle", "Fibonacci")))
    stage.seen("drawings", kinds == ["Fibonacci retracement", "Horizontal line", "Rectangle", "Trend line", "Vertical line"],
               f"and so are the drawings: {kinds}")
    level = next(item for item in marks if item.name.startswith("Stop loss"))
    line = stage.wait(lambda: any(abs(level.center[1] - y) <= 2 for y in stage.chart().lines(paint.STOP_LOSS)))
    stage.seen("level-place", line, "the stop loss says that it is where its line is painted")


def hear_the_news(stage, chart):
    """The chart tells of ticks, at most once a second; a dialog's error is heard when it appears."""
    ears = Ears("object:property-change:accessible-description", "object:state-changed:showing")

    def news():
        return sum(1 for each in ears.heard("chart") if each.name == chart.name)

    try:
        stage.wait(news)
        before, began = news(), time.monotonic()
        stage.wait(lambda: news() >= before + 2)
        told, seconds = news() - before, time.monotonic() - began
        stage.seen("news", 2 <= told <= seconds + 1.2, f"it told {told} news in {seconds:.1f} s")
        dialog = order_dialog(stage)
        stage.press_in(dialog, "Limit Order")
        stage.press_in(dialog, "Buy Limit")
        error = "Please enter a valid trigger price."
        heard = stage.wait(lambda: [each for each in ears.heard("notification") if each.on and each.name == error])
        stage.seen("error-heard", heard, f"an error is heard as it appears: {error}")
        stage.desktop.key("Escape")
        stage.gone("Order: ")
    finally:
        ears.close()


def read_the_chart(stage, ticket, order):
    chart = stage.has_chart(SYMBOL)
    stage.seen("chart-role", chart.role == "chart" and chart.name == f"Chart {SYMBOL},M15",
               f"a reader meets a {chart.role} by the name {chart.name}")
    read_the_last_bar(stage, chart)
    read_under_the_pointer(stage, chart)
    find_the_marks(stage, chart, ticket, order)
    hear_the_news(stage, chart)
