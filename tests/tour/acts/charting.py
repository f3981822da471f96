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
    """Where no level of a trade, nor its text at the left, comes to lie upon them later."""
    stage.choose("Insert", "Objects", "Horizontal Line")
    place(stage, "horizontal", "hline", (0.5, 0.24))
    stage.press("Vertical Line")
    place(stage, "vertical", "vline", (0.62, 0.5))
    stage.press("Trend Line")
    place(stage, "trend", "trendline", (0.42, 0.80), (0.59, 0.55))
    stage.choose("Insert", "Objects", "Rectangle")
    place(stage, "rectangle", "rectangle", (0.66, 0.35), (0.80, 0.65))
    # The fourth entry of the chart's own menu holds the objects, the fifth of those is this one.
    stage.context_menu(*stage.chart().at(0.5, 0.9), *["Down"] * 4, "Right", *["Down"] * 4, "Return")
    place(stage, "fibonacci", "fibonacci", (0.22, 0.92), (0.41, 0.30))
    stage.desktop.move(5, 5)
    chart = stage.chart()
    painted = stage.wait(lambda: painted_objects(chart))
    stage.seen("five-objects", painted, f"all five stand on the chart: {painted}")


def painted_objects(chart):
    """Where each of the five objects is painted, in pixels; None unless every one is there. The pointer
    must be elsewhere."""
    rows, wanted = chart.rows(), bytes(paint.DRAWING)

    def column(x, width=1):
        return [y for y, row in enumerate(rows)
                if any(row[at * 3:at * 3 + 3] == wanted for at in range(x, x + width))]

    def across(share):
        return int(chart.width * share)

    horizontal = column(across(0.9))
    if len(horizontal) != 1:
        return None
    # A bar that has closed since they were drawn has moved them all to the left by its width.
    vertical = max(range(across(0.60), across(0.63)), key=lambda x: len(column(x)))
    # The dashed line of a trade's level may lie on one of theirs: that shows through the gaps.
    levels, edges = ([y for y in column(across(share), 6) if y not in horizontal] for share in (0.30, 0.73))
    trend = [y for y in column(across(0.54)) if y not in horizontal]
    if len(column(vertical)) < chart.height // 2 or len(levels) != 7 or len(trend) != 1 or len(edges) != 2:
        return None
    beside = rows[(3 * edges[0] + edges[1]) // 4]
    sides = [x for x in range(across(0.64), across(0.86)) if beside[x * 3:x * 3 + 3] == wanted]
    if len(sides) != 2:
        return None
    return {"hline": horizontal, "vline": [vertical], "trendline": trend, "rectangle": sides + edges,
            "fibonacci": levels}


def same_places(before, after):
    """Whether both agree, but for the width of one bar."""
    return bool(after) and all(abs(a - b) <= (3 if kind in ("hline", "fibonacci") else 8)
                               for kind in before for a, b in zip(before[kind], after[kind], strict=True))


def delete_an_object(stage):
    stage.press("Horizontal Line")
    place(stage, "second-horizontal", "hline", (0.5, 0.29))
    chart = stage.chart()
    stage.desktop.move(5, 5)
    both = stage.wait(lambda: len(found := chart.lines(paint.DRAWING, 0.5)) == 2 and found)
    stage.desktop.click(chart.at(0.9, 0)[0], both[1])
    stage.desktop.move(5, 5)
    selected = stage.wait(lambda: len(chart.lines(paint.DRAWING, 0.5)) == 3)
    stage.seen("selected", selected, "a click selects the line, which grows to two pixels")
    stage.desktop.key("Delete")
    deleted = stage.wait(lambda: kept_objects(stage) == FIVE_OBJECTS and chart.lines(paint.DRAWING, 0.5) == both[:1])
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
    stage.seen("type-candles", stage.wait(lambda: chart.count(paint.CANDLES[0]) and is_pressed(stage, "Candlesticks")),
               "its own menu brought the candles back, and the toolbar knows")


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
    stage.wait(lambda: dialog.find("spin button").has("FOCUSED"))
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
    stage.click(stage.entry_in_view("Exponential MA"), times=2)
    answer_period(stage, "fast-average", 20)
    both = stage.wait(lambda: chart.count(paint.FIRST_AVERAGE) > 50 and chart.count(paint.SECOND_AVERAGE) > 50)
    stage.seen("two-averages", both, "two averages, the second by a double-click in the Navigator")
    stage.choose("Insert", "Indicators", "Relative Strength Index")
    stage.seen("rsi", stage.wait(lambda: chart.count(paint.RSI) > 50), "RSI has a pane of its own")
    stage.context_menu(*chart.at(0.5, 0.6), *["Down"] * 3, "Right", "Down", "Down", "Return")
    stage.seen("rsi-removed", stage.wait(lambda: not chart.count(paint.RSI)), "the chart's menu removes it")
    stage.click(stage.entry_in_view("Relative Strength Index"), times=2)
    stage.seen("rsi-again", stage.wait(lambda: chart.count(paint.RSI) > 50),
               "a double-click in the Navigator brings it back")


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
    stage.desktop.key("alt+h")
    stage.wait(lambda: field.again().has("FOCUSED"))
    stage.desktop.key("ctrl+a")
    stage.desktop.type("#{:02x}{:02x}{:02x}".format(*OTHER_BACKGROUND))
    stage.press_in(chooser, "OK")
    stage.gone("Background")
    stage.press_in(dialog, "OK")
    stage.gone("Chart Properties")
    chart = stage.chart()
    stage.seen("background", stage.wait(lambda: chart.corner() == OTHER_BACKGROUND), "the chart has the chosen colour")


def theme_sample(stage):
    """A few pixels of the menu bar, where no menu is."""
    window = stage.main_window()
    return stage.desktop.pixels(window.x + window.width - 40, window.y + 10, 8, 8)


def switch_theme(stage, name):
    """The sample of the new theme."""
    before = theme_sample(stage)
    stage.choose("View", "Theme", name)
    changed = stage.wait(lambda: theme_sample(stage) != before)
    stage.seen(f"theme-{name.lower()}", changed, f"the {name} theme is on")
    return theme_sample(stage)


def is_pressed(stage, button):
    """Whether a button of a toolbar looks pressed."""
    item = stage.tool_button(button)
    return item and item.has("CHECKED")


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
    """Tiles and cascades the chart and one of another symbol that is open."""
    def frames():
        """Both, at rest. One that does not fit into a small area counts as not shown."""
        def now():
            return {item.name.split(",")[0]: (item.x, item.y, item.width, item.height)
                    for item in stage.chart_area().children() if item.role == "frame"}
        before = now()
        return (before[SYMBOL], before[other]) if before == now() else None

    def apart():
        (ax, ay, aw, ah), (bx, by, bw, bh) = frames()
        return ax + aw <= bx or bx + bw <= ax or ay + ah <= by or by + bh <= ay

    def one_over_the_other():
        (ax, ay, aw, ah), (bx, by, *_) = frames()
        return 0 < abs(ax - bx) < aw and 0 < abs(ay - by) < ah

    stage.choose("Window", "Tile")
    stage.seen("tile", stage.wait(apart), f"Tile puts the charts of {SYMBOL} and {other} side by side")
    stage.choose("Window", "Cascade")
    stage.seen("cascade", stage.wait(one_over_the_other), "Cascade puts one over the other")
