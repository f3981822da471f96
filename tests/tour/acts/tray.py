"""The icon at the system tray: back to the window, balloons, and the way out."""

from urllib.error import HTTPError

from stage import SYMBOL

TITLE = "Tavoran Terminal"


def use_the_tray(stage):
    """Minimises the window, brings it back by the icon and by its menu, and leaves by the menu."""
    icon = stage.wait(stage.desktop.tray_icon)
    stage.seen("tray", icon, "the terminal's icon stands at the system tray")
    window = minimise(stage, "icon")
    stage.desktop.click(*icon)
    stage.seen("tray-click", stage.wait(lambda: is_in_front(stage, window)), "a click on it brings the window back")
    minimise(stage, "menu")
    choose(stage, "show", "Down")
    stage.seen("tray-show", stage.wait(lambda: is_in_front(stage, window)), "so does Show in its menu")
    watch_a_fill(stage)
    stage.desktop.key("ctrl+m")
    stage.seen("tray-layout", stage.wait(lambda: not stage.list_named("Market Watch")), "the layout has changed since")
    minimise(stage, "exit")
    before = stage.terminal.settings
    choose(stage, "exit", "Down", "Down")
    stage.seen("tray-exit", stage.terminal.exit_code() == 0, "Exit in its menu ends the terminal, exit code 0")
    stage.seen("tray-saved", stage.terminal.settings != before, "and saves its layout on the way")


def minimise(stage, name):
    def shown():
        return stage.desktop.shown_windows(stage.terminal.pid, TITLE)
    window = stage.wait(shown)[0]
    stage.desktop.minimise(window)
    # A menu that opens while the focus is still on its way elsewhere is closed by its arrival.
    gone = stage.wait(lambda: not shown() and stage.desktop.active_window() != window)
    stage.seen(f"tray-minimised-{name}", gone, "the window is minimised")
    return window


def is_in_front(stage, window):
    return window in stage.desktop.shown_windows(stage.terminal.pid, TITLE) \
        and stage.desktop.active_window() == window


def choose(stage, name, *keys):
    """Opens the icon's menu, which screen readers do not see, and chooses with the keyboard."""
    x, y = stage.desktop.tray_icon()
    beside = (x - 60, y - 50, 40, 30)
    before = stage.desktop.pixels(*beside)
    for _ in range(2):  # and who sees no menu clicks again
        stage.desktop.click(x, y, button=3)
        opened = stage.wait(lambda: stage.desktop.pixels(*beside) != before, 8)
        if opened:
            break
    stage.seen(f"tray-menu-{name}", opened, "a right click opens its menu")
    stage.desktop.key(*keys, "Return")


def watch_a_fill(stage):
    """Lets the platform fill a pending order and looks for the balloon that tells of it."""
    account = stage.platform.demo_account()["id"]
    text = f"A pending order on {account[:8]} was filled."
    stage.seen("pending", stage.wait(lambda: place_stops(stage, account)), "pending orders wait close to the price")
    balloon = stage.window(lambda item: item.find("label", "Order Filled")
                           and item.find(accept=lambda part: part.text() == text), 90)
    stage.seen("balloon", balloon, f"one was filled; a balloon says so: {text}")


def place_stops(stage, account):
    """Places a stop order just above and one just below the quote; None when the quote moved past."""
    cells = stage.symbol_row("Market Watch", SYMBOL)
    try:
        for kind, price in (("BUY_STOP", float(cells[2].name) + 2e-5), ("SELL_STOP", float(cells[1].name) - 2e-5)):
            stage.platform.post("/api/trades/place", {
                "symbol": SYMBOL, "lotSize": 0.01, "accountId": account, "orderKind": kind,
                "pendingPrice": round(price, 5)})
    except HTTPError:
        return None
    return True
