"""What a disk may hold after the power went, worked out from the journal that disk/DiskJournal.h keeps.

The disk here is a hard but honest one:
- Names (made, renamed, linked, removed) reach it in the order in which they changed, as on ext4, XFS and Btrfs. Of
  those since a folder was last synced, any number from the beginning may have, none included.
- The bytes of a file are on it once the file was synced. Of what was written since, or cut off, there may be
  nothing, a beginning that ends anywhere, any pages of 4096 bytes without the others, or the full length with
  zeros for bytes. A new name may thus lead to an empty file.
"""

import os
import random
from pathlib import Path

PAGE = 4096


class File:
    """The bytes that are safe, and what was done to them since."""

    def __init__(self, safe=b""):
        self.safe = safe
        self.since = []

    def sync(self):
        self.safe = self.whole(self.since)
        self.since = []

    def whole(self, changes):
        content = bytearray(self.safe)
        for place, bytes_written in changes:
            if bytes_written is None:
                if place < len(content):
                    del content[place:]
                else:
                    content.extend(bytes(place - len(content)))
                continue
            if len(content) < place:
                content.extend(bytes(place - len(content)))
            content[place:place + len(bytes_written)] = bytes_written
        return bytes(content)

    def after_loss(self, chance):
        if not self.since:
            return self.safe
        way = chance.choice(("nothing", "all", "beginning", "pages", "zeros"))
        if way == "nothing":
            return self.safe
        if way == "all":
            return self.whole(self.since)
        if way == "beginning":
            count = chance.randrange(len(self.since) + 1)
            changes = self.since[:count]
            if changes and changes[-1][1]:
                place, last = changes[-1]
                changes[-1] = (place, last[:chance.randrange(len(last) + 1)])
            return self.whole(changes)
        pages = []
        for place, written in self.since:
            if written is None:
                pages.append((place, written))
                continue
            if way == "zeros":
                pages.append((place, bytes(len(written))))
                continue
            at = 0
            while at < len(written):
                end = min(len(written), at + PAGE - (place + at) % PAGE)
                if chance.random() < 0.5:
                    pages.append((place + at, written[at:end]))
                at = end
        return self.whole(pages)


class Disk:
    """What was done, operation after operation."""

    def __init__(self, folder, before=None):
        self.folder = str(folder)
        self.safe_names = {}
        self.name_changes = []
        self.names = {}
        self.open = {}
        self.sizes = {}
        if before is not None:
            for place in sorted(Path(before).rglob("*")):
                name = str(place.relative_to(before))
                self.safe_names[name] = None if place.is_dir() else File(place.read_bytes())
        self.names = dict(self.safe_names)

    def inside(self, path):
        return os.path.relpath(path, self.folder)

    def change_names(self, change):
        change(self.names)
        self.name_changes.append(change)

    def do(self, operation):
        letter, first, second, one, two = operation
        name = self.inside(one.decode()) if letter in "ORLUXMN" else None
        if letter == "O":
            if second == 3:
                self.open[first] = None
                return
            if second == 4:
                self.open[first] = File()
                return
            if name not in self.names:
                made = File()
                self.change_names(lambda names: names.__setitem__(name, made))
            elif second == 2:
                self.names[name].since.append((0, None))
            self.open[first] = self.names[name]
        elif letter == "C":
            self.open.pop(first, None)
        elif letter == "W":
            self.open[first].since.append((second, one))
        elif letter == "T":
            self.open[first].since.append((second, None))
        elif letter == "S":
            if self.open[first] is not None:
                self.open[first].sync()
            else:
                self.safe_names = dict(self.names)
                self.name_changes = []
        elif letter == "M":
            self.change_names(lambda names: names.__setitem__(name, None))
        elif letter == "N":
            nameless = self.open[int(two)]
            self.change_names(lambda names: names.__setitem__(name, nameless))
        elif letter in "UX":
            self.change_names(lambda names: names.pop(name, None))
        elif letter in "RL":
            other = self.inside(two.decode())

            def move(names):
                # A second name of the same file: the rename does nothing.
                if name not in names or (letter == "R" and names.get(other, 0) is names[name]):
                    return
                names[other] = names.pop(name) if letter == "R" else names[name]
                if names[other] is None:
                    for below in [each for each in names if each.startswith(name + "/")]:
                        names[other + below[len(name):]] = names.pop(below)

            self.change_names(move)
        else:
            raise ValueError(letter)

    def lose_power(self, place, chance):
        """Leaves in the folder `place`, which is made, what is there when the power is back."""
        names = dict(self.safe_names)
        for change in self.name_changes[:chance.randrange(len(self.name_changes) + 1)]:
            change(names)
        place = Path(place)
        place.mkdir(mode=0o700, parents=True)
        written = {}
        for name, file in sorted(names.items()):
            if file is None:
                (place / name).mkdir(mode=0o700, parents=True, exist_ok=True)
                continue
            (place / name).parent.mkdir(mode=0o700, parents=True, exist_ok=True)
            if id(file) not in written:
                written[id(file)] = file.after_loss(chance)
            (place / name).write_bytes(written[id(file)])
            (place / name).chmod(0o600)


def read_journal(path):
    """The operations, each with the size that the journal had after it. A last one that is not whole is left out."""
    content = Path(path).read_bytes()
    operations = []
    at = 0
    while (end := content.find(b"\n", at)) >= 0:
        letter, first, second, one, two = content[at:end].split()
        middle = end + 1 + int(one)
        after = middle + int(two)
        if after > len(content):
            break
        operations.append(
            (after, (letter.decode(), int(first), int(second), content[end + 1:middle], content[middle:after])))
        at = after
    return operations


def losses(folder, journal, count, seed, before=None, ends=0):
    """Yields `count` times, in the order of the operations: the journal's size when the power goes, and a function
    that leaves at a place what is then on the disk. The last `ends` times all was done."""
    chance = random.Random(seed)
    operations = read_journal(journal)
    moments = sorted(chance.randrange(len(operations) + 1) for _ in range(count - ends)) + [len(operations)] * ends
    disk = Disk(folder, before)
    done = 0
    for moment in moments:
        while done < moment:
            disk.do(operations[done][1])
            done += 1
        size = operations[done - 1][0] if done else 0
        yield size, lambda place: disk.lose_power(place, chance)
