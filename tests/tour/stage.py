"""Where the tour plays: the two programs on a virtual desktop, and ways to look at them and to act."""

from gi.repository import GLib

from chart_picture import ChartPicture
from desktop import wait_until
from programs import Platform, Terminal
from reader import Reader

SYMBOL = "EURUSD"


class StepFailed(Exception):
    pass


class Stage:
    def __init__(self, desktop, binaries, out, profile, replay):
        self.out = out
        self.lab = binaries / "tavoran-lab"
        self.desktop = desktop
        self.desktop.start_tray()
        self.reader = Reader(desktop.scale)
        self.platform = Platform(str(binaries / "tavoran-practice"), profile, options=["--replay", str(replay)])
        self.platform.start()
        self.terminal = Terminal(str(binaries / "tavoran-terminal"), profile, self.platform.address)
        self._count = 0
        self._known = {}

    def close(self):
        self.terminal.stop()
        self.platform.stop()
        self.desktop.close()

    # --- telling what happened -------------------------------------------------------------------

    def seen(self, name, outcome, what):
        """Ends a step: a screenshot and a line; an outcome that is false or nothing ends the tour."""
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
        return self.wait(self.main_window_now, seconds)

    def main_window_now(self):
        window = self._known.get("window")
        window = window and window.again()
        if not window:
            self._known.clear()
            window = self._known["window"] = self.window_now(
                lambda item: any(child.role == "menu bar" for child in item.children()))
        return window if window and window.shown else None

    def known(self, kind, name, search):
        """What `search` finds in the main window; from the second time on it is where it was. None when it is
        hidden now."""
        if not self.main_window_now():
            return None
        item = self._known.get((kind, name))
        item = item and item.again()
        if not item:
            item = self._known[kind, name] = search()
        return item if item and item.shown else None

    def parts(self, *roles):
        """The main window's own parts of these roles."""
        window = self.main_window_now()
        return [item for item in window.children() if item.role in roles] if window else []

    def part(self, role=None, name=None, shown=True, accept=None):
        """Something in a pane of the main window or in its status bar, as it is now."""
        return next((found for pane in self.parts("frame", "status bar")
                     if (found := pane.find(role, name, shown, accept))), None)

    def list_named(self, name):
        return self.known("tree", name, lambda: self.part("tree", name, shown=False))

    def tool_button(self, name):
        return self.known("button", name, lambda: next(
            (found for bar in self.parts("tool bar") if (found := bar.find(name=name))), None))

    def rows(self, list_name):
        view = self.list_named(list_name)
        return view.rows() if view else []

    def row(self, list_name, accept):
        """The first row that `accept` likes, or None."""
        return next((row for row in self.rows(list_name) if accept(row)), None)

    def symbol_row(self, list_name, symbol=SYMBOL):
        return self.row(list_name, lambda cells: self.is_symbol(cells, symbol))

    @staticmethod
    def is_symbol(cells, symbol=SYMBOL):
        """Whether it is the row of this symbol. Its triangle is told after the name: \"EURUSD, rising\"."""
        return cells[0].name.split(",")[0] == symbol

    def texts(self, list_name):
        """All rows of a list as texts."""
        return [row.texts for row in self.rows(list_name)]

    def label(self, accept):
        return self.part("label", accept=lambda item: accept(item.text()))

    def charts(self):
        """The charts that can be seen: the one in front, or all while none is maximised."""
        area = self.chart_area()
        frames = [item for item in area.children() if item.role == "frame" and item.shown] if area else []
        # One that lies behind a maximised one counts as shown, but keeps a smaller size.
        return [chart for frame in ([frame for frame in frames if frame.width == area.width] or frames)
                if (chart := frame.find(accept=lambda item: item.name.startswith("Chart ")))]

    def chart_area(self):
        return self.known("layered pane", "", lambda: next(iter(self.parts("layered pane")), None))

    def has_chart(self, symbol, timeframe=""):
        """The visible chart of a symbol, with any timeframe or this one, once it has come to rest."""
        last, title = [], f"Chart {symbol},{timeframe}"

        def is_it(item):
            return item.name.startswith(title) and (not timeframe or item.name[len(title):len(title) + 1] in ("", " "))

        def at_rest():
            item = next(filter(is_it, self.charts()), None)
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

    def in_view(self, list_name, find, headed=True):
        """What `find` finds in a list, once it is in view: the wheel brings it there, or an arrow key where the
        list is so low that the wheel jumps over it. A list that is `headed` has column titles."""
        moves = []

        def seen():
            view, item = self.list_named(list_name), find()
            if not view or not item:
                return None
            too_high = item.y < view.y + (item.height if headed else 0)
            if not too_high and item.y + item.height <= view.y + view.height:
                return item
            if moves and moves[-1] != too_high:
                self.desktop.click(*view.center)
            moves.append(too_high)
            if len(set(moves)) > 1:
                self.desktop.key("Up" if too_high else "Down")
            else:
                (self.desktop.wheel_up if too_high else self.desktop.wheel_down)(*view.center, 1)
            return None
        return self.wait(seen)

    def cell_in_view(self, list_name, accept):
        """The first cell of the first row that `accept` likes, brought into view."""
        return self.in_view(list_name, lambda: self.row(list_name, accept)[0])

    def symbol_in_view(self, symbol=SYMBOL):
        return self.cell_in_view("Market Watch", lambda cells: self.is_symbol(cells, symbol))

    def entry_in_view(self, name):
        """The Navigator's entry that starts like this, brought into view."""
        return self.in_view("Navigator", headed=False, find=lambda: self.list_named("Navigator").find(
            accept=lambda item: item.name.startswith(name), shown=False))

    def tab_to(self, field):
        """Goes to a field by Tab alone, which selects what it holds."""
        for _ in range(60):
            if self.wait(lambda: field.again().has("FOCUSED"), 0.3):
                return
            self.desktop.key("Tab")
        raise StepFailed(f"Tab never came to {field.role} {field.name}")

    def open_tab(self, name):
        """Brings a page of the Toolbox to the front; each holds a list of the same name."""
        if not self.wait(lambda: self.list_named(name), 0):
            self.click(self.wait(lambda: self.known("page tab", name, lambda: self.part("page tab", name))))
            self.wait(lambda: self.list_named(name))

    def choose(self, menu, *entries):
        """Chooses from the menu bar with the mouse."""
        item = self.wait(lambda: self.parts("menu bar")[0])
        for wanted in (menu, *entries):
            item = self.wait(lambda above=item, name=wanted: above.again().find(name=name, accept=self._is_choice))
            if not item:
                raise StepFailed(f"{menu} > {' > '.join(entries)}: there is no {wanted}")
            self.click(item)

    @staticmethod
    def _is_choice(item):
        return item.role.endswith("menu item")

    def press(self, button):
        """Presses a button of a toolbar, which may not have the room to show it."""
        found = self.wait(lambda: self.tool_button(button), 0.5)
        if not found:
            self.unfold(button)
            found = self.wait(lambda: self.tool_button(button))
        self.click(found)

    def unfold(self, button):
        """Presses the arrow of the toolbar that has this button."""
        bar = next(bar for bar in self.parts("tool bar") if bar.find(name=button, shown=False))
        self.click(bar.find(name="More buttons"))

    def press_in(self, window, button):
        """Presses a button of a dialog as soon as it can be pressed."""
        found = self.wait(lambda: window.find(
            name=button, accept=lambda item: item.role in ("push button", "check box") and item.has("ENABLED")))
        if not found:
            raise StepFailed(f"{window.name} has no button {button} that can be pressed")
        self.click(found)

    def context_menu(self, x, y, *keys):
        """Opens a context menu and chooses with the keyboard: screen readers do not see such menus."""
        def around():
            """A menu without the room below opens above."""
            return [self.desktop.pixels(x + 8, y + down, 60, 60) for down in (8, -68)]

        before = around()
        self.desktop.click(x, y, button=3)
        if not self.wait(lambda: any(now != then for now, then in zip(around(), before, strict=True)), 10):
            raise StepFailed(f"no context menu opened at {x}, {y}")
        self.desktop.key(*keys)

    def journal_line(self, part):
        """The newest line of the Journal that holds this text."""
        self.open_tab("Journal")
        return next((row[2].name for row in reversed(self.rows("Journal")) if part in row[2].name), None)
