"""The chart by mouse, keyboard, menu, toolbar and context menu."""

import chart_picture as paint
from stage import SYMBOL

FIVE_OBJECTS = ["fibonacci", "hline", "rectangle", "trendline", "vline"]
OTHER_BACKGROUND = (0x0A, 0x14, 0x20)


def kept_objects(stage):
    return stage.platform.drawings(SYMBOL, stage.platform.demo_account()["id"])


def place(stage, name, kind, *places):
    """Clicks at the places, then waits until the platform keeps one more object of this kind."""
    before = kept_objects(stage).count(kind)
    chart = stage.chart()
    for spot in places:
        stage.desktop.click(*chart.at(*spot))
    kept = stage.wait(lambda: kept_objects(stage).count(kind) == before + 1)
    stage.seen(f"draw-{name}", kept, f"a {kind} was drawn, and the platform keeps it")


def draw_the_five_objects(stage):
    stage.choose("Insert", "Objects", "Horizontal Line")
    place(stage, "horizontal", "hline", (0.5, 0.30))
    stage.press("Vertical Line")
    place(stage, "vertical", "vline", (0.30, 0.5))
    stage.press("Trend Line")
    place(stage, "trend", "trendline", (0.35, 0.80), (0.60, 0.55))
    stage.choose("Insert", "Objects", "Rectangle")
    place(stage, "rectangle", "rectangle", (0.66, 0.35), (0.80, 0.65))
    # The fourth entry of the chart's own menu holds the objects, the fifth of those is this one.
    stage.context_menu(*stage.chart().at(0.5, 0.9), *["Down"] * 4, "Right", *["Down"] * 4, "Return")
    place(stage, "fibonacci", "fibonacci", (0.04, 0.85), (0.22, 0.25))


def delete_an_object(stage):
    stage.press("Horizontal Line")
    place(stage, "second-horizontal", "hline", (0.5, 0.15))
    chart = stage.chart()
    stage.desktop.move(5, 5)
    lines = stage.wait(lambda: chart.lines(paint.DRAWING, 0.8))
    stage.desktop.click(chart.at(0.9, 0)[0], lines[0])
    stage.desktop.move(5, 5)
    selected = stage.wait(lambda: len(chart.lines(paint.DRAWING, 0.8)) == 3)
    stage.seen("selected", selected, "a click selects the line, which grows to two pixels")
    stage.desktop.key("Delete")
    deleted = stage.wait(lambda: kept_objects(stage) == FIVE_OBJECTS)
    stage.seen("deleted", deleted, "Delete removes it, here and on the platform; the five others stay")


def change_the_type(stage):
    chart = stage.chart()
    stage.press("Line")
    line = stage.wait(lambda: chart.count(paint.LINE) > 50 and not chart.count(paint.CANDLES[0]))
    stage.seen("type-line", line, "the toolbar made it a line chart")
    stage.choose("Charts", "Chart Type", "Bars")
    bars = stage.wait(lambda: chart.count(paint.CANDLES[0]) and not chart.count(paint.LINE))
    stage.seen("type-bars", bars, "the menu made it a bar chart")
    stage.context_menu(*chart.at(0.5, 0.9), *["Down"] * 5, "Right", "Return")
    bar_button = stage.wait(lambda: stage.part("tool bar", accept=lambda bar: bar.find(name="Bars"))
                            .find(name="Candlesticks", accept=lambda button: button.has("CHECKED")))
    stage.seen("type-candles", bar_button, "its own menu brought the candles back, and the toolbar knows")


def change_the_timeframe(stage):
    stage.press("H1")
    stage.seen("timeframe-toolbar", stage.has_chart(SYMBOL, "H1"), "the toolbar changed the timeframe to H1")
    stage.choose("Charts", "Timeframe", "M5")
    stage.seen("timeframe-menu", stage.has_chart(SYMBOL, "M5"), "the menu to M5")
    loaded = stage.wait(lambda: stage.journal_line(f"{SYMBOL},M5: "))
    stage.seen("timeframe-loaded", loaded, f"the Journal says: {loaded}")
    stage.press("M15")
    stage.seen("timeframe-back", stage.has_chart(SYMBOL, "M15") and stage.chart(SYMBOL, "M15"), "and back to M15")
    chart = stage.chart()
    stage.seen("timeframe-candles", stage.wait(lambda: any(chart.newest())), "with its candles")


def answer_period(stage, name, period):
    dialog = stage.titled("Moving Average")
    stage.seen(f"{name}-dialog", dialog, "the period is asked for")
    stage.desktop.key("ctrl+a")
    stage.desktop.type(str(period))
    stage.desktop.key("Return")
    stage.gone("Moving Average")


def add_indicators(stage):
    chart = stage.chart()
    stage.choose("Insert", "Indicators", "Moving Average (SMA)")
    answer_period(stage, "first-average", 10)
    stage.seen("average-added", stage.wait(lambda: chart.count(paint.FIRST_AVERAGE) > 50), "an average is painted")
    # The last of the four entries under the third one.
    stage.context_menu(*chart.at(0.5, 0.9), *["Down"] * 3, "Right", "Up", "Return")
    stage.seen("averages-removed", stage.wait(lambda: not chart.count(paint.FIRST_AVERAGE)),
               "Remove All Moving Averages took it away")

    stage.choose("Insert", "Indicators", "Moving Average (SMA)")
    answer_period(stage, "slow-average", 50)
    entry = stage.wait(lambda: stage.list_named("Navigator").find(name="Exponential MA"))
    stage.click(entry, times=2)
    answer_period(stage, "fast-average", 20)
    both = stage.wait(lambda: chart.count(paint.FIRST_AVERAGE) > 50 and chart.count(paint.SECOND_AVERAGE) > 50)
    stage.seen("two-averages", both, "two averages, the second by a double-click in the Navigator")
    stage.choose("Insert", "Indicators", "Relative Strength Index")
    stage.seen("strength", stage.wait(lambda: chart.count(paint.STRENGTH) > 50), "RSI has a pane of its own")


def open_properties(stage):
    stage.desktop.key("F8")
    dialog = stage.titled(f"Chart Properties — {SYMBOL}")
    stage.seen("properties", dialog, "F8 shows the chart's properties")
    return dialog


def choose_preset(stage, preset, background):
    dialog = open_properties(stage)
    stage.press_in(dialog, preset)
    stage.press_in(dialog, "OK")
    stage.gone("Chart Properties")
    chart = stage.chart()
    stage.seen("preset", stage.wait(lambda: chart.corner() == background), f"the preset {preset} is on")


def choose_background(stage):
    """Types a colour into the chooser behind the first swatch."""
    dialog = open_properties(stage)
    stage.press_in(dialog, "Background")
    chooser = stage.titled("Background")
    stage.seen("chooser", chooser, "a swatch opens a colour chooser")
    field = stage.wait(lambda: chooser.find("text", accept=lambda item: item.text().startswith("#")))
    stage.click(field, times=2)
    stage.desktop.key("ctrl+a")
    stage.desktop.type("#{:02x}{:02x}{:02x}".format(*OTHER_BACKGROUND))
    stage.press_in(chooser, "OK")
    stage.gone("Background")
    stage.press_in(dialog, "OK")
    stage.gone("Chart Properties")
    chart = stage.chart()
    stage.seen("background", stage.wait(lambda: chart.corner() == OTHER_BACKGROUND), "the chart has the chosen colour")


def switch_theme(stage, name):
    window = stage.main_window()
    corner = (window.x + window.width - 40, window.y + 10, 8, 8)
    before = stage.desktop.pixels(*corner)
    stage.choose("View", "Theme", name)
    changed = stage.wait(lambda: stage.desktop.pixels(*corner) != before)
    stage.seen(f"theme-{name.lower()}", changed, f"the {name} theme is on")


def point_and_measure(stage):
    chart = stage.chart()
    stage.desktop.move(*chart.at(0.45, 0.3))
    crossed = stage.wait(lambda: chart.lines(paint.CROSSHAIR))
    stage.seen("crosshair", crossed, "the crosshair follows the pointer")
    stage.desktop.move(*chart.at(0.62, 0.45))
    moved = stage.wait(lambda: (now := chart.lines(paint.CROSSHAIR)) and now[0] > crossed[0] + 5)
    stage.seen("crosshair-moved", moved, "at its next place, too")
    stage.press("Crosshair")
    stage.desktop.drag(chart.at(0.40, 0.50), chart.at(0.62, 0.20))
    stage.desktop.drop()
    stage.seen("ruler", stage.wait(lambda: chart.count(paint.RULER) > 50), "the ruler measures between two points")
    stage.press("Cursor")
    stage.seen("ruler-gone", stage.wait(lambda: not chart.count(paint.RULER)), "and goes with the plain cursor")
    stage.desktop.move(5, 5)
    before = stage.wait(lambda: chart.lines(paint.BID))
    ticked = stage.wait(lambda: (now := chart.lines(paint.BID)) and now != before, 60)
    stage.seen("tick", ticked, "a tick moved the line of the bid")


def show_data_window(stage):
    stage.desktop.key("ctrl+d")
    stage.seen("data-window", stage.titled("Data Window"), "Ctrl+D shows the data window")
    stage.desktop.move(*stage.chart().at(0.5, 0.2))
    told = stage.wait(lambda: stage.window_now(lambda item: item.name == "Data Window").find(
        "label", accept=lambda item: "Open:" in item.text() and "Volume:" in item.text()))
    stage.seen("data-window-bar", told, "which tells of the bar under the pointer")
    window = stage.titled("Data Window")
    stage.click(window.find("label"))
    stage.desktop.key("alt+F4")
    stage.seen("data-window-gone", stage.gone("Data Window"), "and closes")


def arrange_charts(stage, other):
    """Opens a second chart, tiles and cascades both, closes it, and maximises the first again."""
    stage.click(stage.symbol_row("Market Watch", other)[0], times=2)
    stage.seen("second-chart", stage.has_chart(other), f"a chart of {other} beside it")
    stage.choose("Window", "Tile")
    tiled = stage.wait(lambda: (a := stage.chart(SYMBOL)) and (b := stage.chart(other))
                       and (a.x + a.width <= b.x or b.x + b.width <= a.x or a.y + a.height <= b.y
                            or b.y + b.height <= a.y))
    stage.seen("tile", tiled, "Tile puts both side by side")
    stage.choose("Window", "Cascade")
    cascaded = stage.wait(lambda: (a := stage.chart(SYMBOL)) and (b := stage.chart(other))
                          and 0 < abs(a.x - b.x) < a.width and 0 < abs(a.y - b.y) < a.height)
    stage.seen("cascade", cascaded, "Cascade puts one over the other")
