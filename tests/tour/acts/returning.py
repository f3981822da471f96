"""What lasts: over the loss of the platform, and over an end and a new start of the terminal."""

import chart_picture as paint
from acts import charting
from acts.sign_in import sign_in
from stage import SYMBOL


def lose_the_platform(stage, ticket):
    stage.platform.kill()
    stage.seen("feed-lost", stage.wait(lambda: stage.label(lambda text: "Disconnected" in text)),
               "the platform was killed; the status bar says so")
    stage.platform.start()
    stage.seen("feed-back", stage.wait(lambda: stage.label(lambda text: "Connected" in text), 40),
               "it came back; so did the feed")
    stage.open_tab("Trade")
    stage.seen("nothing-lost", stage.wait(lambda: stage.row("Trade", lambda cells: cells[1].name == ticket)),
               "the position is still there")
    recorded = [trade["id"][:8] for trade in stage.platform.trades("open")]
    stage.seen("nothing-lost-record", recorded == [ticket], "and stands once in the platform's records")


def restart(stage, ticket, theme):
    """Ends the terminal with a chart that is like no new one, and looks for everything that it had.
    `theme` is what the light theme looks like, which must be on."""
    stage.desktop.move(5, 5)
    chart = stage.chart()
    drawn = stage.wait(lambda: charting.painted_objects(chart))
    stage.seen("objects-before", drawn, f"the five objects are painted: {drawn}")
    stage.press("Line")
    stage.press("H1")
    stage.seen("unusual", stage.wait(lambda: stage.has_chart(SYMBOL, "H1") and is_line(chart)),
               "the chart is a line of hours now")
    stage.desktop.key("ctrl+q")
    stage.seen("closed", stage.terminal.exit_code() == 0, "Ctrl+Q closed the terminal")

    sign_in(stage, "restart")
    stage.seen("theme-back", stage.wait(lambda: charting.theme_sample(stage) == theme), "the Light theme is back")
    stage.seen("chart-back", stage.has_chart(SYMBOL, "H1"), "the chart is back, with its timeframe")
    chart = stage.chart()
    stage.seen("type-back", stage.wait(lambda: is_line(chart) and charting.is_pressed(stage, "Line")),
               "as a line, and the toolbar knows")
    stage.seen("colours-back", stage.wait(lambda: chart.corner() == charting.OTHER_BACKGROUND), "its colours")
    stage.seen("rsi-back", stage.wait(lambda: chart.count(paint.RSI) > 50), "its RSI")
    stage.seen("objects-back", stage.wait(lambda: charting.kept_objects(stage) == charting.FIVE_OBJECTS
                                          and chart.lines(paint.DRAWING, 0.5)), "and its objects")
    stage.press("M15")
    stage.press("Candlesticks")
    stage.desktop.move(5, 5)
    stage.seen("candles-back", stage.has_chart(SYMBOL, "M15") and stage.wait(lambda: any(chart.newest())),
               "candles of a quarter of an hour again")
    averages = (paint.FIRST_AVERAGE, paint.SECOND_AVERAGE)
    stage.seen("averages-back", stage.wait(lambda: all(chart.count(colour) > 50 for colour in averages)),
               "with both averages")
    back = stage.wait(lambda: charting.same_places(drawn, found := charting.painted_objects(chart)) and found)
    stage.seen("objects-same", back, f"and each of the five objects in its place: {back}")
    stage.open_tab("Trade")
    row = stage.wait(lambda: stage.row("Trade", lambda cells: cells[1].name == ticket))
    stage.seen("position-back", row, "the position is back, too")
    charting.switch_theme(stage, "Dark")


def is_line(chart):
    """No candle is painted, but the line is; one of the averages has its colour."""
    return chart.count(paint.LINE) > 200 and not chart.count(paint.CANDLES[0])
