#!/usr/bin/python3
"""The main job, end to end: the real terminal and the real practice platform on a virtual desktop.

Every step acts with the mouse or the keyboard, waits until its outcome is seen (in the window, as a
screen reader sees it, or in its pixels, or in the platform's own records), prints a line and keeps a
screenshot. The exit code is 0 only when every outcome was seen.
"""

import argparse
import os
import shutil
import sys
import tempfile
from pathlib import Path
from urllib.error import HTTPError

sys.path.insert(0, str(Path(__file__).parent))

from desktop import Desktop, wait_until  # noqa: E402
from programs import EMAIL, PASSWORD, Platform, Terminal  # noqa: E402
from reader import Reader  # noqa: E402

SYMBOL = "EURUSD"
CANDLE_COLOURS = ((0x00, 0xE6, 0x00), (0xFF, 0xFF, 0xFF))


class StepFailed(Exception):
    pass


def is_price(text):
    try:
        return float(text) > 0
    except ValueError:
        return False


class Tour:
    def __init__(self, binaries, out, profile):
        self.out = out
        self.desktop = Desktop()
        self.desktop.start_tray()
        self.reader = Reader()
        self.platform = Platform(str(binaries / "tavoran-practice"), profile)
        self.platform.start()
        self.terminal = Terminal(str(binaries / "tavoran-terminal"), profile, self.platform.address)
        self._count = 0

    def close(self):
        self.terminal.stop()
        self.platform.stop()
        self.desktop.close()

    # --- telling what happened -------------------------------------------------------------------

    def seen(self, name, outcome, what):
        """Ends a step: a screenshot and a line; a falsy outcome ends the tour."""
        self._count += 1
        picture = self.out / f"{self._count:02d}-{name}.png"
        self.desktop.screenshot(picture)
        print(f"{'ok  ' if outcome else 'FAIL'} {self._count:2d}  {what}", flush=True)
        if not outcome:
            raise StepFailed(f"{what} was not seen; look at {picture}")
        return outcome

    def portrait(self, name):
        """A picture of the main window alone, for the README."""
        window = self.main_window()
        self.desktop.screenshot(self.out / name, (window.x, window.y, window.width, window.height))

    # --- finding things --------------------------------------------------------------------------

    def window(self, accept, seconds=15):
        return wait_until(lambda: self.reader.window(self.terminal.pid, accept), seconds)

    def sign_in_dialog(self):
        return self.window(lambda item: item.shown and item.find("push button", "Login"))

    def main_window(self, seconds=15):
        return self.window(lambda item: item.shown and item.find("menu bar"), seconds)

    def list_with(self, header):
        """The list in the main window that has this column header."""
        window = self.main_window(2)
        if not window:
            return None
        return window.find("tree", accept=lambda item: item.find("table column header", header))

    def row(self, header, first_cell):
        """The texts of the row that starts with `first_cell` in the list with this header, or None."""
        view = self.list_with(header)
        cells = next((row for row in view.rows() if row[0].name == first_cell), None) if view else None
        return cells

    def label(self, accept):
        window = self.main_window(2)
        return window.find("label", accept=lambda item: accept(item.text())) if window else None

    def tab(self, name):
        window = self.main_window(2)
        return window.find("page tab", name) if window else None

    def click(self, item, times=1):
        self.desktop.click(*item.center, times=times)

    # --- the steps -------------------------------------------------------------------------------

    def mistype_the_password(self):
        self.terminal.start()
        self.seen("first-dialog", self.sign_in_dialog(), "the sign-in dialog is up for the first time")
        self.desktop.type("practise")
        self.desktop.key("Return")
        refused = wait_until(lambda: (dialog := self.sign_in_dialog()) and dialog.find(
            "label", accept=lambda item: "password" in item.text() and len(item.text()) > 12))
        self.seen("refused", refused, f"a wrong password is refused: {refused.text() if refused else ''}")
        self.desktop.key("Escape")
        self.seen("cancelled", self.terminal.exit_code() == 0, "Escape ends the terminal, exit code 0")

    def sign_in(self, name):
        self.terminal.start()
        dialog = self.sign_in_dialog()
        self.seen(f"{name}-dialog", dialog, "the sign-in dialog is up")
        email = dialog.find("text", accept=lambda item: EMAIL in item.text())
        self.seen(f"{name}-email", email, "the e-mail address is filled in")
        self.desktop.type(PASSWORD)
        self.desktop.key("Return")
        self.seen(f"{name}-window", self.main_window(), "signed in; the main window is up")

    def watch_prices(self):
        first = wait_until(lambda: (row := self.row("Daily", SYMBOL)) and is_price(row[1].name) and row[1].name)
        self.seen("prices", first, f"Market Watch shows {SYMBOL} at {first}")
        moved = wait_until(lambda: (now := self.row("Daily", SYMBOL)[1].name) != first and is_price(now) and now)
        self.seen("price-moved", moved, f"the price moved to {moved}")

    def open_chart(self):
        self.click(self.row("Daily", SYMBOL)[0], times=2)
        chart = wait_until(lambda: self.chart())
        self.seen("chart", chart, "a double-click opened one chart")
        charts = [item.name for item in self.main_window().find_all(
            shown=False, accept=lambda item: item.name.startswith(f"Chart {SYMBOL}"))]
        self.seen("one-chart", len(charts) == 1, f"and only one: {charts}")
        loaded = wait_until(lambda: self.journal_line("candles loaded"))
        self.seen("history", loaded, f"the Journal says: {loaded}")
        before = wait_until(lambda: self.newest_candles() if any(self.newest_candles()) else None)
        self.seen("candles", before, "candles are painted")
        grew = wait_until(lambda: self.newest_candles() != before, 60, 0.5)
        self.seen("candle-grew", grew, "the newest candle grew")

    def chart(self):
        window = self.main_window(2)
        return window.find(accept=lambda item: item.name.startswith(f"Chart {SYMBOL}")) if window else None

    def newest_candles(self):
        """Which pixels of the newest few bars have a candle's colour."""
        self.desktop.move(5, 5)
        chart = self.chart()
        width = 30
        left = chart.x + chart.width - 68 - width
        data = self.desktop.pixels(left, chart.y, width, chart.height - 22)
        return bytes(int(tuple(data[i:i + 3]) in CANDLE_COLOURS) for i in range(0, len(data), 3))

    def journal_line(self, part):
        tab = self.tab("Journal")
        if tab and not tab.has("SELECTED"):
            self.click(tab)
        view = self.list_with("Message")
        lines = [row[2].name for row in view.rows() if part in row[2].name] if view else []
        return lines[-1] if lines else None

    def buy(self):
        self.desktop.key("F9")
        dialog = self.window(lambda item: item.shown and item.name.startswith("Order: "))
        self.seen("order-dialog", dialog, f"F9 opened the order dialog: {dialog.name if dialog else ''}")
        self.seen("order-symbol", SYMBOL in dialog.name, "for the symbol of the chart")
        quote = wait_until(lambda: self.order_dialog_quote())
        self.seen("order-quote", quote, f"its quote is live: {quote}")
        button = self.window(lambda item: item.name.startswith("Order: ")).find("push button", "Buy by Market")
        self.click(button)
        closed = wait_until(lambda: not self.reader.window(
            self.terminal.pid, lambda item: item.shown and item.name.startswith("Order: ")))
        self.seen("order-placed", closed, "the order was accepted and the dialog closed")
        self.seen("order-journal", wait_until(lambda: self.journal_line("Order placed")),
                  "the Journal says: Order placed")

    def order_dialog_quote(self):
        dialog = self.reader.window(self.terminal.pid, lambda item: item.name.startswith("Order: "))
        label = dialog.find("label", accept=lambda item: " / " in item.text() and item.text()[0].isdigit())
        return label.text() if label else None

    def watch_position(self):
        self.click(self.tab("Trade"))
        cells = wait_until(lambda: self.row("Ticket", SYMBOL))
        self.seen("position", cells, f"the position's row: {[c.name for c in cells] if cells else ''}")
        before = cells[11].name
        profit = wait_until(lambda: (now := self.row("Ticket", SYMBOL)[11].name) != before and now, 60)
        self.seen("profit", profit, f"its profit follows the feed: {before} became {profit}")
        summary = self.label(lambda text: "Equity:" in text)
        self.seen("summary", summary, "the account line stands under it")
        trades = self.platform.open_trades()
        ours = len(trades) == 1 and trades[0]["symbol"] == SYMBOL and trades[0]["type"] == "BUY"
        self.seen("record", ours and trades[0]["id"].startswith(cells[1].name),
                  f"the platform's own record agrees: {cells[1].name}")
        self.ticket = cells[1].name

    def toggle_docks(self):
        for key, header in (("ctrl+m", "Daily"), ("ctrl+t", "Ticket")):
            self.desktop.key(key)
            self.seen(f"{key}-hidden", wait_until(lambda: not self.list_with(header)), f"{key} hides the pane")
            self.desktop.key(key)
            self.seen(f"{key}-shown", wait_until(lambda: self.list_with(header)), f"{key} brings it back")

    def pop_prices_up(self):
        def popup():
            return self.reader.window(self.terminal.pid, lambda item: item.shown and item.name == "Popup Prices")

        def quote():
            cells = next((row for row in popup().rows() if row[0].name == SYMBOL), None)
            return cells[1].name if cells else None

        self.desktop.key("F10")
        self.seen("popup", wait_until(popup), "F10 shows the popup prices")
        first = wait_until(quote)
        self.seen("popup-moved", wait_until(lambda: quote() != first), f"which follow the feed from {first} on")
        self.desktop.key("F10")
        self.seen("popup-gone", wait_until(lambda: not popup()), "and F10 hides them")

    def switch_theme(self, name):
        """Chooses a theme in the menu with the mouse."""
        window = self.main_window()
        corner = (window.x + window.width - 40, window.y + 10)
        before = self.desktop.pixels(*corner, 8, 8)
        self.click(window.find("menu bar").find("menu item", "View", shown=False))
        entry = wait_until(lambda: self.main_window().find("menu item", "Theme"))
        self.click(entry)
        choice = wait_until(lambda: self.main_window().find(name=name))
        self.click(choice)
        changed = wait_until(lambda: self.desktop.pixels(*corner, 8, 8) != before)
        self.seen(f"theme-{name.lower()}", changed, f"the {name} theme is on")

    def lose_the_platform(self):
        self.platform.kill()
        self.seen("feed-lost", wait_until(lambda: self.label(lambda text: "Disconnected" in text)),
                  "the platform was killed; the status bar says so")
        self.platform.start()
        self.seen("feed-back", wait_until(lambda: self.label(lambda text: "Connected" in text), 40),
                  "it came back; so did the feed")
        self.click(self.tab("Trade"))
        still = wait_until(lambda: (row := self.row("Ticket", SYMBOL)) and row[1].name == self.ticket)
        self.seen("nothing-lost", still, "the position is still there")
        recorded = [trade["id"][:8] for trade in self.platform.open_trades()]
        self.seen("nothing-lost-record", recorded == [self.ticket], "and stands once in the platform's records")

    def restart(self):
        self.desktop.key("ctrl+q")
        self.seen("closed", self.terminal.exit_code() == 0, "Ctrl+Q closed the terminal")
        self.sign_in("restart")
        self.seen("chart-back", wait_until(lambda: self.chart()), "the chart is back")
        back = wait_until(lambda: any(self.newest_candles()))
        self.seen("candles-back", back, "with its candles")
        self.click(self.tab("Trade"))
        row = wait_until(lambda: (row := self.row("Ticket", SYMBOL)) and row[1].name == self.ticket)
        self.seen("position-back", row, "and the position with it")

    def use_the_tray(self):
        """Minimises the window, brings it back by the icon and by its menu, and leaves by the menu."""
        icon = wait_until(self.desktop.tray_icon)
        self.seen("tray", icon, "the terminal's icon stands at the system tray")
        window = self.minimise("icon")
        self.desktop.click(*icon)
        self.seen("tray-click", wait_until(lambda: self.is_in_front(window)), "a click on it brings the window back")
        self.minimise("menu")
        self.choose_in_tray_menu("show", "Down")
        self.seen("tray-show", wait_until(lambda: self.is_in_front(window)), "so does Show in its menu")
        self.watch_balloon()
        self.desktop.key("ctrl+m")
        self.seen("tray-layout", wait_until(lambda: not self.list_with("Daily")), "the layout has changed since")
        self.minimise("exit")
        before = self.terminal.settings
        self.choose_in_tray_menu("exit", "Down", "Down")
        self.seen("tray-exit", self.terminal.exit_code() == 0, "Exit in its menu ends the terminal, exit code 0")
        self.seen("tray-saved", self.terminal.settings != before, "and saves its layout on the way")

    def minimise(self, name):
        windows = wait_until(lambda: self.desktop.shown_windows(self.terminal.pid, "Tavoran Terminal"))
        self.desktop.minimise(windows[0])
        gone = wait_until(lambda: not self.desktop.shown_windows(self.terminal.pid, "Tavoran Terminal"))
        self.seen(f"tray-minimised-{name}", gone, "the window is minimised")
        return windows[0]

    def is_in_front(self, window):
        return window in self.desktop.shown_windows(self.terminal.pid, "Tavoran Terminal") \
            and self.desktop.active_window() == window

    def choose_in_tray_menu(self, name, *keys):
        """Opens the icon's menu, which screen readers do not see, and chooses with the keyboard."""
        x, y = self.desktop.tray_icon()
        beside = (x - 60, y - 50, 40, 30)
        before = self.desktop.pixels(*beside)
        self.desktop.click(x, y, button=3)
        opened = wait_until(lambda: self.desktop.pixels(*beside) != before)
        self.seen(f"tray-menu-{name}", opened, "a right click opens its menu")
        self.desktop.key(*keys, "Return")

    def watch_balloon(self):
        """Lets the platform fill a pending order and looks for the balloon that tells of it."""
        account = self.platform.open_trades()[0]["accountId"]
        text = f"A pending order on {account[:8]} was filled."
        self.seen("pending", wait_until(lambda: self.place_stops(account)), "pending orders wait close to the price")
        balloon = self.window(lambda item: item.shown and item.find("label", "Order Filled")
                              and item.find(accept=lambda part: part.text() == text), 90)
        self.seen("balloon", balloon, f"one was filled; a balloon says so: {text}")

    def place_stops(self, account):
        """Places a stop order just above and one just below the quote; None when the quote moved past."""
        cells = self.row("Daily", SYMBOL)
        try:
            for kind, price in (("BUY_STOP", float(cells[2].name) + 2e-5), ("SELL_STOP", float(cells[1].name) - 2e-5)):
                self.platform.post("/api/trades/place", {
                    "symbol": SYMBOL, "lotSize": 0.01, "accountId": account, "orderKind": kind,
                    "pendingPrice": round(price, 5)})
        except HTTPError:
            return None
        return True

    def run(self):
        self.mistype_the_password()
        self.sign_in("start")
        self.watch_prices()
        self.open_chart()
        self.buy()
        self.watch_position()
        self.toggle_docks()
        self.pop_prices_up()
        self.portrait("terminal-dark.png")
        self.switch_theme("Light")
        self.portrait("terminal-light.png")
        self.switch_theme("Dark")
        self.lose_the_platform()
        self.restart()
        self.use_the_tray()


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--bin", type=Path, required=True, help="folder of the two programs")
    arguments.add_argument("--out", type=Path, required=True, help="folder for the screenshots")
    options = arguments.parse_args()
    shutil.rmtree(options.out, ignore_errors=True)
    options.out.mkdir(parents=True)
    profile = Path(tempfile.mkdtemp(prefix="tavoran-tour-"))
    tour = Tour(options.bin.resolve(), options.out, profile)
    try:
        tour.run()
    except StepFailed as failure:
        print(f"The tour ended early: {failure}", file=sys.stderr)
        print(f"What the programs wrote is in {profile}", file=sys.stderr)
        return 1
    finally:
        tour.close()
    shutil.rmtree(profile)
    print(f"Every step was seen; the screenshots are in {options.out}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
