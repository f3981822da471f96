"""The main job by keyboard alone: the pointer stays where it is."""

from acts.charting import is_pressed
from acts.market import bid
from acts.sign_in import sign_in
from acts.trading import order_dialog, record

SYMBOL = "USDJPY"
PRICE = "{:.3f}"


TOOLBOX = ("Trade", "History", "Experts", "Journal", "Calendar", "Alerts")


def go_to_list(stage, *names):
    """F6 until one of the lists of these names has the keyboard."""
    def there():
        return next((name for name in names if (found := stage.list_named(name)) and found.again().has("FOCUSED")), None)

    for _ in range(12):
        if name := stage.wait(there, 0.3):
            return stage.seen(f"keyboard-{name.split()[0].lower()}", True, f"F6 goes to the list {name}")
        stage.desktop.key("F6")
    return stage.seen("keyboard-lost", False, f"F6 goes to a list of {', '.join(names)}")


def go_to_trades(stage):
    """The Toolbox opens with the tab that was in front last."""
    if not stage.list_named("Trade"):
        go_to_list(stage, *TOOLBOX)
        stage.desktop.key("F6", "shift+Tab", *["Left"] * len(TOOLBOX))
        stage.seen("keyboard-tab", stage.wait(lambda: stage.list_named("Trade")), "arrow keys bring the tab Trade forward")
    go_to_list(stage, "Trade")


def chart_has_the_keyboard(stage):
    chart = stage.has_chart(SYMBOL)
    return chart and stage.wait(lambda: chart.again().has("FOCUSED"))


def open_a_chart(stage):
    if not stage.list_named("Market Watch"):
        stage.desktop.key("ctrl+m")
        stage.seen("keyboard-shown", stage.wait(lambda: stage.list_named("Market Watch")), "Ctrl+M shows the prices")
    go_to_list(stage, "Market Watch")
    stage.desktop.type(SYMBOL.lower())
    stage.desktop.key("Return")
    stage.seen("keyboard-chart", chart_has_the_keyboard(stage),
               f"{SYMBOL} typed and Enter opened its chart, which has the keyboard")


def draw(stage):
    def kept():
        account = stage.platform.demo_account()["id"]
        return stage.platform.drawings(SYMBOL, account)

    before = kept()
    stage.desktop.key("alt+i", "Down", "Right", "Return")
    stage.seen("keyboard-tool", stage.wait(lambda: is_pressed(stage, "Horizontal Line")),
               "Insert > Objects > Horizontal Line is chosen")
    stage.desktop.key(*["Left"] * 5, *["Up"] * 3, "Return")
    stage.seen("keyboard-drawn", stage.wait(lambda: kept() == [*before, "hline"]),
               "arrow keys and Enter place it, and the platform keeps it")


def buy(stage):
    """Buys in the order window; the ticket."""
    dialog = order_dialog(stage)
    stage.seen("keyboard-order", SYMBOL in dialog.name, "for the symbol of the chart")
    stage.desktop.type("0.03")
    stage.tab_to(dialog.find("push button", "Buy by Market"))
    stage.desktop.key("space")
    stage.seen("keyboard-placed", stage.gone("Order: "), "Tab goes to Buy by Market, which Space presses")
    trades = stage.wait(lambda: [trade for trade in stage.platform.trades("open") if trade["symbol"] == SYMBOL])
    bought = [(trade["type"], float(trade["lotSize"])) for trade in trades]
    stage.seen("keyboard-bought", bought == [("BUY", 0.03)], f"the platform has it: {bought}")
    return trades[0]["id"][:8]


def set_a_stop_loss(stage, ticket):
    price = PRICE.format(bid(stage, SYMBOL) - 0.5)
    go_to_trades(stage)
    stage.desktop.type(SYMBOL.lower())
    stage.desktop.key("Return")
    dialog = stage.titled("Modify Order")
    stage.seen("keyboard-modify", dialog, "Enter on the row opens the modify dialog")
    stage.desktop.type(price)
    stage.desktop.key("Return")
    stage.gone("Modify Order")
    stage.seen("keyboard-stop-loss", stage.wait(lambda: record(stage, ticket)["stopLoss"] == price),
               f"its stop loss is {price} on the platform")


def close(stage, ticket):
    go_to_trades(stage)
    stage.desktop.type(SYMBOL.lower())
    stage.desktop.key("shift+F10", "Down", "Return")
    stage.seen("keyboard-question", stage.titled("Close Position"), "the row's menu by Shift+F10 asks before it closes")
    stage.desktop.key("alt+y")
    stage.seen("keyboard-closed", stage.wait(lambda: not record(stage, ticket)), "Alt+Y closes it")
    stage.desktop.key("Escape")
    stage.seen("keyboard-back", chart_has_the_keyboard(stage), "Escape goes back to the chart")


def trade(stage):
    sign_in(stage, "keyboard")
    open_a_chart(stage)
    draw(stage)
    ticket = buy(stage)
    set_a_stop_loss(stage, ticket)
    close(stage, ticket)
    stage.desktop.key("ctrl+q")
    stage.seen("keyboard-left", stage.terminal.exit_code() == 0, "Ctrl+Q ends the terminal")
