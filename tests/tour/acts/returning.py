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


def restart(stage, ticket):
    """Ends the terminal and looks for everything that the chart had."""
    stage.desktop.key("ctrl+q")
    stage.seen("closed", stage.terminal.exit_code() == 0, "Ctrl+Q closed the terminal")
    sign_in(stage, "restart")
    stage.seen("chart-back", stage.has_chart(SYMBOL, "M15"), "the chart is back, with its timeframe")
    chart = stage.chart()
    stage.seen("candles-back", stage.wait(lambda: any(chart.newest())), "with its candles")
    stage.seen("colours-back", stage.wait(lambda: chart.corner() == charting.OTHER_BACKGROUND), "its colours")
    indicators = (paint.FIRST_AVERAGE, paint.SECOND_AVERAGE, paint.STRENGTH)
    stage.seen("indicators-back", stage.wait(lambda: all(chart.count(colour) > 50 for colour in indicators)),
               "its averages and RSI")
    kept = charting.kept_objects(stage) == charting.FIVE_OBJECTS
    stage.seen("objects-back", stage.wait(lambda: kept and chart.lines(paint.DRAWING, 0.6)
                                          and chart.count(paint.DRAWING) > 1500),
               "and its five objects, which the platform kept")
    stage.open_tab("Trade")
    back = stage.wait(lambda: stage.row("Trade", lambda cells: cells[1].name == ticket))
    stage.seen("position-back", back, "the position is back, too")
