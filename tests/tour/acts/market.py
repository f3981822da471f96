"""Prices, the first chart, and the small windows that show them in other ways."""

from stage import SYMBOL


def is_price(text):
    try:
        return float(text) > 0
    except ValueError:
        return False


def bid(stage, symbol=SYMBOL):
    cells = stage.symbol_row("Market Watch", symbol)
    return float(cells[1].name) if cells and is_price(cells[1].name) else None


def watch_prices(stage):
    first = stage.wait(lambda: bid(stage))
    stage.seen("prices", first, f"Market Watch shows {SYMBOL} at {first}")
    moved = stage.wait(lambda: (now := bid(stage)) != first and now)
    stage.seen("price-moved", moved, f"the price moved to {moved}")


def make_room(stage):
    """On a low screen, drags the upper edge of the Toolbox down: the charts need the height more."""
    if stage.desktop.height >= 800 * stage.desktop.scale:
        return
    area = stage.wait(stage.chart_area)
    edge = area.center[0], area.y + area.height + 2
    stage.desktop.drag(edge, (edge[0], edge[1] + stage.desktop.height // 8))
    stage.desktop.drop()
    grown = stage.wait(lambda: stage.chart_area().again().height > area.height + stage.desktop.height // 20)
    stage.seen("room", grown, "the edge of the Toolbox was dragged down, so that the charts have room")


def open_chart(stage):
    stage.click(stage.symbol_in_view(), times=2)
    stage.seen("chart", stage.has_chart(SYMBOL), "a double-click opened one chart")
    charts = [item.name for item in stage.chart_area().children() if item.role == "frame"]
    stage.seen("one-chart", len(charts) == 1, f"and only one: {charts}")
    loaded = stage.wait(lambda: stage.journal_line("candles loaded"))
    stage.seen("history", loaded, f"the Journal says: {loaded}")
    chart = stage.chart()
    before = stage.wait(lambda: chart.newest() if any(chart.newest()) else None)
    stage.seen("candles", before, "candles are painted")
    grew = stage.wait(lambda: chart.newest() != before, 60)
    stage.seen("candle-grew", grew, "the newest candle grew with a tick")


def toggle_docks(stage):
    stage.open_tab("Journal")
    for key, name in (("ctrl+m", "Market Watch"), ("ctrl+t", "Journal")):
        stage.desktop.key(key)
        stage.seen(f"{key}-hidden", stage.wait(lambda: not stage.list_named(name)), f"{key} hides the pane")
        stage.desktop.key(key)
        stage.seen(f"{key}-shown", stage.wait(lambda: stage.list_named(name)), f"{key} brings it back")


def pop_prices_up(stage):
    def quote():
        popup = stage.window_now(lambda item: item.name == "Popup Prices")
        cells = next((row for row in popup.find("tree").rows() if stage.is_symbol(row)), None)
        return cells[1].name if cells else None

    stage.desktop.key("F10")
    stage.seen("popup", stage.titled("Popup Prices"), "F10 shows the popup prices")
    first = stage.wait(quote)
    stage.seen("popup-moved", stage.wait(lambda: quote() != first), f"which follow the feed from {first} on")
    stage.desktop.key("F10")
    stage.seen("popup-gone", stage.gone("Popup Prices"), "and F10 hides them")


def show_depth(stage):
    def prices():
        window = stage.window_now(lambda item: item.name.startswith("Depth of Market"))
        return [cells[1].name for cells in window.find("tree").rows()]

    stage.desktop.key("alt+b")
    stage.seen("depth", stage.titled(f"Depth of Market — {SYMBOL}"), "Alt+B shows the depth of market")
    before = stage.wait(lambda: (found := prices()) and all(map(is_price, found)) and found)
    stage.seen("depth-rows", len(before) == 16, f"with sixteen rows of prices: {len(before)}")
    stage.seen("depth-live", stage.wait(lambda: prices() != before), "which follow the feed")
    stage.desktop.key("alt+b")
    stage.seen("depth-gone", stage.gone("Depth of Market"), "Alt+B hides it")


def show_specification(stage):
    stage.choose("Charts", "Symbol Specification...")
    window = stage.titled(f"Specification: {SYMBOL}")
    stage.seen("specification", window, "the menu shows the symbol's specification")
    facts = {cells[0].name: cells[1].name for cells in window.find("tree").rows()}
    stage.seen("specification-facts", len(facts) > 5 and is_price(facts.get("Bid", "")), f"with its facts: {facts}")
    stage.desktop.key("Escape")
    stage.seen("specification-gone", stage.gone("Specification"), "Escape closes it")


def show_about(stage):
    stage.choose("Help", "About Tavoran Terminal")
    box = stage.titled("About Tavoran Terminal")
    stage.seen("about", box and box.find("label", accept=lambda item: "version" in item.text()),
               "the about box names the version")
    stage.press_in(box, "Close")
    stage.seen("about-gone", stage.gone("About Tavoran Terminal"), "and closes")
