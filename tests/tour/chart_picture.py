"""A chart as it looks on the screen: where its plot is, and what is painted there in which colour."""

PRICE_AXIS, TIME_AXIS = 68, 22

BACKGROUND = (0x00, 0x00, 0x00)
CANDLES = ((0x00, 0xE6, 0x00), (0xFF, 0xFF, 0xFF))
LINE = (0x4F, 0xC3, 0xF7)
DRAWING = (0xE0, 0xE0, 0xE0)
CROSSHAIR = (0x77, 0x77, 0x77)
RULER = (0xFF, 0xB3, 0x00)
BID, ASK = (0x3B, 0xA7, 0xFF), (0xFF, 0x4A, 0x4A)
STOP_LOSS, TAKE_PROFIT, PENDING = (0xFF, 0x4A, 0x4A), (0x00, 0xE6, 0x76), (0xFF, 0xA7, 0x26)
FIRST_AVERAGE, SECOND_AVERAGE = (0xFF, 0xD5, 0x4F), (0x4F, 0xC3, 0xF7)
RSI = (0xC7, 0x92, 0xEA)


class ChartPicture:
    def __init__(self, desktop, item):
        self._desktop = desktop
        self.x, self.y = item.x, item.y
        self.width = item.width - round(PRICE_AXIS * desktop.scale)
        self.height = item.height - round(TIME_AXIS * desktop.scale)

    def at(self, across, down):
        """A place in the plot (and the pane under it), both from 0 to 1, on the screen."""
        return self.x + int(self.width * across), self.y + int(self.height * down)

    def rows(self):
        """The RGB bytes of the plot and the pane under it, row by row."""
        data = self._desktop.pixels(self.x, self.y, self.width, self.height)
        stride = self.width * 3
        return [data[start:start + stride] for start in range(0, len(data), stride)]

    @staticmethod
    def _hits(row, colour):
        """How many pixels of a row of RGB bytes have this colour."""
        wanted, count, place = bytes(colour), 0, row.find(bytes(colour))
        while place >= 0:
            if place % 3 == 0:
                count += 1
            place = row.find(wanted, place + 1)
        return count

    def count(self, *colours):
        """How many pixels have one of the colours."""
        return sum(self._hits(row, colour) for row in self.rows() for colour in colours)

    def lines(self, colour, share=0.3):
        """The screen rows where this colour takes at least this share of the width, from the top."""
        return [self.y + number for number, row in enumerate(self.rows())
                if self._hits(row, colour) >= self.width * share]

    def newest(self):
        """The picture of the newest few bars, the pointer being elsewhere."""
        self._desktop.move(5, 5)
        data = self._desktop.pixels(self.x + self.width - 30, self.y, 30, self.height)
        return bytes(int(tuple(data[i:i + 3]) in CANDLES) for i in range(0, len(data), 3))

    def corner(self):
        """The colour in the corner of the plot that nothing is painted in, within the ring of the keyboard."""
        inset = round(4 * self._desktop.scale)
        return tuple(self._desktop.pixels(self.x + inset, self.y + inset, 1, 1))
