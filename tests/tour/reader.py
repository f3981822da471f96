"""Reads the terminal's windows the way a screen reader does: roles, names, values and places."""

from collections.abc import Sequence
from functools import cached_property

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


# What newer versions of the accessibility bus call by another name than older ones.
OLDER_NAMES = {"button": "push button"}


class Item:
    """One thing on the screen. Each property is read once, when it is first asked for. Places are in pixels."""

    scale = 1  # pixels for each point; Qt 6 tells places in points

    def __init__(self, node):
        self._node = node

    @cached_property
    def role(self):
        name = self._node.get_role_name()
        return OLDER_NAMES.get(name, name)

    @cached_property
    def name(self):
        return self._node.get_name() or ""

    @property
    def description(self):
        """What is read below its name, as it is now."""
        self._node.clear_cache()
        return self._node.get_description() or ""

    @cached_property
    def _place(self):
        place = self._node.get_extents(Atspi.CoordType.SCREEN)
        return [round(length * self.scale) for length in (place.x, place.y, place.width, place.height)]

    x = property(lambda self: self._place[0])
    y = property(lambda self: self._place[1])
    width = property(lambda self: self._place[2])
    height = property(lambda self: self._place[3])

    @property
    def center(self):
        return self.x + self.width // 2, self.y + self.height // 2

    def has(self, state):
        return self._node.get_state_set().contains(getattr(Atspi.StateType, state))

    @property
    def shown(self):
        return self.has("SHOWING") and self.width > 0 and self.height > 0

    def children(self):
        for index in range(self._node.get_child_count()):
            child = self._node.get_child_at_index(index)
            if child is not None:
                yield Item(child)

    def again(self):
        """The same thing as it is now, or None when it is gone."""
        try:
            self._node.clear_cache()
            item = Item(self._node)
            return item if (item.role, item.name) == (self.role, self.name) else None
        except GLib.Error:
            return None

    def everything(self, shown):
        """This item and all below it, but not what is in lists below it: their cells are many and slow to
        read. With `shown`, hidden branches are left out."""
        if shown and not self.has("SHOWING"):
            return
        yield self
        for child in self.children():
            if child.role != "tree":
                yield from child.everything(shown)
            elif not shown or child.has("SHOWING"):
                yield child

    def find(self, role=None, name=None, shown=True, accept=None):
        """The first match at or below this item, or None. `name` is exact; `accept` is a further condition."""
        return next(self.find_all(role, name, shown, accept), None)

    def find_all(self, role=None, name=None, shown=True, accept=None):
        for item in self.everything(shown):
            if (role is None or item.role == role) and (name is None or item.name == name) \
                    and (not shown or item.shown) and (accept is None or accept(item)):
                yield item

    def text(self):
        """The content of an edit field or a label."""
        interface = self._node.get_text_iface()
        return self.name if interface is None else Atspi.Text.get_text(self._node, 0, -1)

    def rows(self):
        """The rows of a list from the top."""
        columns = Atspi.Table.get_n_columns(self._node)
        return [Row(self._node, row, columns) for row in range(Atspi.Table.get_n_rows(self._node))]


class Row(Sequence):
    """The cells of one row of a list from the left. Each is asked for when it is needed: asking takes time."""

    def __init__(self, node, row, columns):
        self._node, self._row, self._cells = node, row, [None] * columns

    def __len__(self):
        return len(self._cells)

    def __getitem__(self, column):
        if isinstance(column, slice):
            return [self[index] for index in range(*column.indices(len(self)))]
        if self._cells[column] is None:
            self._cells[column] = Item(Atspi.Table.get_accessible_at(self._node, self._row, column % len(self)))
        return self._cells[column]

    @property
    def texts(self):
        return [cell.name for cell in self]


class Ears:
    """Hears what programs tell of their own accord, from now on."""

    class Heard:
        def __init__(self, event):
            self.kind, self.on = event.type, bool(event.detail1)
            source = Item(event.source)
            self.role, self.name = source.role, source.name

    def __init__(self, *kinds):
        self._heard = []
        self._listener = Atspi.EventListener.new(self._hear)
        self._kinds = kinds
        for kind in kinds:
            self._listener.register(kind)

    def _hear(self, event, *_):
        try:
            self._heard.append(self.Heard(event))
        except GLib.Error:
            pass  # what it is about has gone already

    def heard(self, role=None):
        """All so far, or those about things of one role."""
        context = GLib.MainContext.default()
        while context.pending():
            context.iteration(False)
        return [each for each in self._heard if role in (None, each.role)]

    def close(self):
        for kind in self._kinds:
            self._listener.deregister(kind)


class Reader:
    """Finds the windows of one process."""

    def __init__(self, scale=1):
        Atspi.init()
        Item.scale = scale

    def application(self, process_id):
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            try:
                if child is not None and child.get_process_id() == process_id:
                    child.clear_cache()
                    return Item(child)
            except GLib.Error:
                continue  # an application that is just going away
        return None

    def window(self, process_id, accept):
        """The first top-level window that `accept` likes, or None."""
        try:
            application = self.application(process_id)
            if application is None:
                return None
            return next((item for item in application.children() if accept(item)), None)
        except GLib.Error:
            return None  # the window changed while it was read; the caller asks again
