"""Where the tour plays: the two programs on a virtual desktop, and ways to look at them and to act."""

from gi.repository import GLib

from chart_picture import ChartPicture
from desktop import Desktop, wait_until
from programs import Platform, Terminal
from reader import Reader

SYMBOL = "EURUSD"


class StepFailed(Exception):
    pass


class Stage:
    def __init__(self, binaries, out, profile, replay):
        self.out = out
        self.desktop = Desktop()
        self.desktop.start_tray()
        self.reader = Reader()
        self.platform = Platform(str(binaries / "tavoran-practice"), profile, options=["--replay", str(replay)])
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
        picture = self.out / f"{self._count:03d}-{name}.png"
        self.desktop.screenshot(picture)
        print(f"{'ok  ' if outcome else 'FAIL'} {self._count:3d}  {what}", flush=True)
        if not outcome:
            raise StepFailed(f"{what} was not seen; look at {picture}")
        return outcome

    def portrait(self, name):
        """A picture of the main window alone, for the README."""
        window = self.main_window()
        self.desktop.screenshot(self.out / name, (window.x, window.y, window.width, window.height))

    # --- finding things --------------------------------------------------------------------------

    @staticmethod
    def wait(probe, seconds=15.0):
        """The first truthy answer of `probe`, or its last one. Where a part is not there yet, or vanished
        while it was read, the probe may stumble over it: that counts as "not yet"."""
        def safely():
            try:
                return probe()
            except (GLib.Error, AttributeError, TypeError, IndexError):
                return None
        return wait_until(safely, seconds)

    def window_now(self, accept):
        return self.reader.window(self.terminal.pid, lambda item: item.shown and accept(item))

    def window(self, accept, seconds=15):
        return self.wait(lambda: self.window_now(accept), seconds)

    def titled(self, title, seconds=15):
        """A window whose title starts like this."""
        return self.window(lambda item: item.name.startswith(title), seconds)

    def gone(self, title):
        return self.wait(lambda: not self.window_now(lambda item: item.name.startswith(title)))

    def main_window(self, seconds=15):
        return self.window(lambda item: item.find("menu bar"), seconds)

    def part(self, role=None, name=None, accept=None):
        """Something in the main window, as it is now."""
        window = self.window_now(lambda item: item.find("menu bar"))
        return window.find(role, name, accept=accept) if window else None

    def list_named(self, name):
        return self.part("tree", name)

    def row(self, list_name, accept):
        """The cells of the first row that `accept` likes (given all its cells), or None."""
        view = self.list_named(list_name)
        return next((cells for cells in view.rows() if accept(cells)), None) if view else None

    def symbol_row(self, list_name, symbol=SYMBOL):
        return self.row(list_name, lambda cells: cells[0].name == symbol)

    def texts(self, list_name):
        """All rows of a list as texts."""
        view = self.list_named(list_name)
        return [[cell.name for cell in cells] for cells in view.rows()] if view else []

    def label(self, accept):
        return self.part("label", accept=lambda item: accept(item.text()))

    def has_chart(self, symbol, timeframe=""):
        """The chart whose title starts like this, once it has come to rest where it is shown."""
        last = []

        def at_rest():
            item = self.part(accept=lambda part: part.name.startswith(f"Chart {symbol},{timeframe}"))
            place = item and (item.x, item.y, item.width, item.height)
            last.append(place)
            return item if place and last[-2:] == [place, place] else None
        return self.wait(at_rest)

    def chart(self, symbol=SYMBOL, timeframe=""):
        """The same, as a picture to look at."""
        item = self.has_chart(symbol, timeframe)
        return ChartPicture(self.desktop, item) if item else None

    # --- acting ----------------------------------------------------------------------------------

    def click(self, item, times=1, button=1):
        self.desktop.click(*item.center, times=times, button=button)

    def open_tab(self, name):
        """Brings a page of the Toolbox to the front; each holds a list of the same name."""
        if not self.wait(lambda: self.list_named(name), 0):
            self.click(self.wait(lambda: self.part("page tab", name)))
            self.wait(lambda: self.list_named(name))

    def choose(self, menu, *entries):
        """Chooses from the menu bar with the mouse."""
        self.click(self.wait(lambda: self.part("menu bar").find("menu item", menu)))
        for entry in entries:
            item = self.wait(lambda wanted=entry: self.part("menu bar").find(name=wanted))
            if not item:
                raise StepFailed(f"{menu} > {' > '.join(entries)}: there is no {entry}")
            self.click(item)

    def press(self, button):
        """Presses a button of a toolbar."""
        self.click(self.wait(lambda: self.part("tool bar", accept=lambda bar: bar.find(name=button)).find(name=button)))

    def press_in(self, window, button):
        """Presses a button of a dialog as soon as it can be pressed."""
        found = self.wait(lambda: window.find(
            name=button, accept=lambda item: item.role in ("push button", "check box") and item.has("ENABLED")))
        if not found:
            raise StepFailed(f"{window.name} has no button {button} that can be pressed")
        self.click(found)

    def context_menu(self, x, y, *keys):
        """Opens a context menu and chooses with the keyboard: screen readers do not see such menus."""
        beside = (x + 8, y + 8, 60, 60)
        before = self.desktop.pixels(*beside)
        self.desktop.click(x, y, button=3)
        if not self.wait(lambda: self.desktop.pixels(*beside) != before, 10):
            raise StepFailed(f"no context menu opened at {x}, {y}")
        self.desktop.key(*keys)

    def journal_lines(self, part):
        self.open_tab("Journal")
        view = self.list_named("Journal")
        return [row[2].name for row in view.rows() if part in row[2].name] if view else []

    def journal_line(self, part):
        """The newest line of the Journal that holds this text."""
        return next(iter(reversed(self.journal_lines(part))), None)
