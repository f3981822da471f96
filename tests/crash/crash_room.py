"""Full disks: the practice platform and the lab with room for so many bytes and no more. What is told to be done is
there afterwards, what is refused is not, and with room everything goes on."""

import itertools
import mmap
import shutil
import sqlite3
import struct

import crash_lab
import crash_practice
import crash_sweep

PLENTY = (1 << 63) - 1
ORDER_SPAN = 100_000  # bytes; three or four changes of an order
ORDER_STEP = 64
STEPS = 400  # of the other spans
ROOMS_A_RUN = 100


class Room:
    """The room on a disk, which can change while a program writes there."""

    def __init__(self, ground):
        self.place = ground.folder()
        self.place.write_bytes(bytes(8))
        with self.place.open("r+b") as file:
            self._number = mmap.mmap(file.fileno(), 8)
        self.left = PLENTY

    @property
    def left(self):
        return struct.unpack("=q", self._number[:])[0]

    @left.setter
    def left(self, count):
        self._number[:] = struct.pack("=q", count)

    def environment(self, ground, folder, names=False, growth=False):
        """With `names`, new names take room as well; with `growth`, bytes take none that are written over others."""
        return ground.environment(folder, ROOM=self.place, ROOM_NAMES=int(names), ROOM_GROWTH=int(growth))

    def used_by(self, act):
        """The bytes that fit in meanwhile."""
        self.left = PLENTY - 1
        act()
        return PLENTY - 1 - self.left


def spread(most, count):
    """So many sizes from none to all of it, and one byte less than that."""
    return sorted({most * turn // max(1, count) for turn in range(count)} | {max(0, most - 1), most})


def one_line_about(text, place):
    """Whether it is one line, which names the place or one below it and says that there is no room."""
    return text.count("\n") == 1 and str(place) in text and ("No space left" in text or "is full" in text)


def differences(known, shown, stored):
    """Between the orders that were acknowledged and the ids that are shown, and what the database has of them."""
    live = {comment: each[0] for comment, each in known.items() if each[1] in ("OPEN", "PENDING")}
    differing = sorted(set(shown.items()) ^ set(live.items()))
    told = [f"shown and acknowledged differ in {differing[:4]}"] if differing else []
    return told + [f"\"{comment}\" is {stored.get(comment)}, acknowledged {known.get(comment)}"
                   for comment in sorted(set(stored) | set(known)) if stored.get(comment) != known.get(comment)]


class Orders:
    """Orders in all their ways, and what the platform has acknowledged of each."""

    def __init__(self):
        self.known = {}  # comment: [id, status, price that it waits for]
        self._next = self._steps()
        self._waiting = None
        self.acknowledged = 0

    def _steps(self):
        for turn in itertools.count():
            now, later = f"{turn} now", f"{turn} later"
            yield "POST", "place", now, {"orderKind": "MARKET", "type": "BUY"}, ["OPEN", 0.0]
            yield "POST", "place", later, {"orderKind": "BUY_LIMIT", "pendingPrice": 0.5}, ["PENDING", 0.5]
            yield "PUT", "modify", later, {"pendingPrice": 0.4}, ["PENDING", 0.4]
            if turn % 40:  # a few stay
                yield "POST", "cancel", later, {}, ["CANCELLED", 0.4]
                yield "POST", "close", now, {}, ["CLOSED", 0.0]

    def step(self, platform, account):
        """Asks for the next change, or again for the one that was refused; the status of the answer and its text."""
        step = self._waiting or next(self._next)
        verb, what, comment, body, then = step
        if what == "place":
            body = body | {"accountId": account, "symbol": "EURUSD", "lotSize": 0.01, "comment": comment}
            status, answer = platform.answer(verb, "/api/trades/place", body)
        else:
            status, answer = platform.answer(verb, f"/api/trades/{what}/{self.known[comment][0]}", body)
        self._waiting = None if status == 200 else step
        if status == 200:
            self.acknowledged += 1
            self.known[comment] = [answer["id"], *then]
        return status, answer

    def check(self, ground, folder, where):
        """A start with room, and what it then has: exactly what was acknowledged."""
        try:
            platform = crash_practice.Platform(ground, folder / "practice.db")
        except crash_practice.NotStarted as error:
            ground.fault(f"{where}: {error}")
            return
        try:
            platform.sign_in()
            shown = {row["comment"]: row["id"] for kind, row in platform.trades() if kind != "history"}
        except RuntimeError as error:
            ground.fault(f"{where}: {error}")
            return
        finally:
            platform.end()
        database = folder / "practice.db"
        connection = sqlite3.connect(database)
        stored = {comment: each for comment, *each in
                  connection.execute("SELECT comment, id, status, pending_price FROM trades")}
        connection.close()
        for difference in differences(self.known, shown, stored):
            ground.fault(f"{where}: {difference}")
        crash_practice.check_integrity(ground, database, where)


def try_room(ground, platform, account, orders, room, size, where):
    """Changes until one is refused, or ten; then with room. The number of those refused."""
    refused = 0
    room.left = size
    for _ in range(10):
        status, answer = orders.step(platform, account)
        if status == 200:
            continue
        refused += 1
        if status != 503 or "nothing was changed" not in str(answer):
            ground.fault(f"{where}: answered {status} {answer}")
        # Reading needs no room.
        if platform.answer("GET", f"/api/trades/open?accountId={account}")[0] != 200:
            ground.fault(f"{where}: a full disk hides the open positions")
        break
    room.left = PLENTY
    status, answer = orders.step(platform, account)
    if status != 200:
        ground.fault(f"{where}: with room again it answers {status} {answer}")
    return refused


def orders_with_rooms(ground, count):
    """One platform after the other, each for a hundred rooms; it is killed, ended on a full disk, or with room."""
    before = ground.faults
    folder = ground.folder()
    folder.mkdir(mode=0o700)
    orders = Orders()
    refused = 0
    sizes = spread(ORDER_SPAN, count) if count else range(0, ORDER_SPAN + 1, ORDER_STEP)
    for run, first in enumerate(range(0, len(sizes), ROOMS_A_RUN)):
        room = Room(ground)
        growth = run % 4 == 3
        platform = crash_practice.Platform(ground, folder / "practice.db",
                                           room.environment(ground, folder, names=True, growth=growth))
        platform.sign_in()
        account = platform.account()
        for size in sizes[first:first + ROOMS_A_RUN]:
            where = f"platform with room for {size} bytes, run {run}"
            refused += try_room(ground, platform, account, orders, room, size, where)
            if ground.faults - before > 10 or not platform.is_running():
                ground.fault(f"{where}: given up; {platform.errors()[-300:]}")
                platform.end()
                return
        room.left = 0
        status, answer = platform.answer("POST", "/api/auth/login",
                                         {"email": crash_practice.EMAIL, "password": crash_practice.PASSWORD})
        if not growth and status != 503:
            ground.fault(f"platform, run {run}: signs in without room: {status} {answer}")
        said = platform.errors()
        if not growth and str(folder / "practice.db") not in said:
            ground.fault(f"platform, run {run}: does not tell which file has no room: {said[:200]}")
        if run % 3 == 0:
            platform.end()
        else:
            room.left = PLENTY if run % 3 == 1 else 0
            if (status := platform.leave()) != 0:
                ground.fault(f"platform, run {run}: ends with {status}: {platform.errors()[-300:]}")
        orders.check(ground, folder, f"platform, after run {run}")
    ground.must_have(refused, "full disk: orders refused")
    ground.must_have(orders.acknowledged, "full disk: orders acknowledged")
    ground.row(f"full disk, orders at the platform: {len(sizes)} rooms from 0 to {sizes[-1]} bytes, "
               f"{orders.acknowledged} changes acknowledged, {refused} refused, {ground.faults - before} faults")
    return folder, orders


def starts_with_rooms(ground, count, base, orders, what):
    """A start with each room, from what stands in `base`, or from nothing."""
    before = ground.faults
    refused = 0

    def begin(room, names):
        place = ground.folder()
        if base is None:
            place.mkdir(mode=0o700)
        else:
            shutil.copytree(base, place)
        try:
            crash_practice.Platform(ground, place / "practice.db", room.environment(ground, place, names=names)).end()
        except crash_practice.NotStarted as error:
            return place, error
        return place, None

    room = Room(ground)
    sizes = spread(room.used_by(lambda: begin(room, True)), count)
    for turn, size in enumerate(sizes):
        where = f"start of the platform {what}, room for {size} bytes"
        room.left = size
        place, error = begin(room, turn % 2)
        refused += error is not None
        if error and (error.status != 2 or not one_line_about(error.errors, place / "practice.db")):
            ground.fault(f"{where}: {error}")
        orders.check(ground, place, where)
        shutil.rmtree(place)
    ground.must_have(refused, "full disk: starts refused")
    ground.row(f"full disk, starts of the platform {what}: {len(sizes)} rooms from 0 to {sizes[-1]} bytes, {refused} "
               f"starts refused, {ground.faults - before} faults")


def platform_with_rooms(ground, count):
    made = orders_with_rooms(ground, count)
    starts = count // 12 if count else STEPS // 4
    starts_with_rooms(ground, starts, None, Orders(), "for the first time")
    if made:
        starts_with_rooms(ground, starts, made[0], made[1], "with what it had")


def tree(folder):
    """All that stands there, hidden or not; None when there is no such folder."""
    return {str(place.relative_to(folder)): place.read_bytes() for place in folder.rglob("*")
            if place.is_file()} if folder.exists() else None


def runs_with_rooms(ground, count):
    """Into no folder, and over a former result that is another."""
    before = ground.faults
    refused = 0
    for kind in ("new", "over another"):
        lab = crash_lab.Lab(ground)
        out = lab.folder / "out"
        room = Room(ground)

        def run(every, environment=None):
            return lab.run("run", "--set", f"Every={every}", "--out", out, environment=environment)

        sizes = spread(room.used_by(lambda: run(20, room.environment(ground, lab.folder))), count)
        result = {}
        for every in (20, 30):
            run(every)
            result[every] = tree(out)
        for turn, size in enumerate(sizes):
            where = f"lab, {kind}, room for {size} bytes"
            if kind == "new":
                shutil.rmtree(out)
            old = tree(out)
            every = 20 if old == result[30] else 30
            room.left = size
            done = run(every, room.environment(ground, lab.folder, names=turn % 2))
            if done.returncode != 0:
                refused += 1
                if done.returncode != 2 or not one_line_about(done.stderr, out):
                    ground.fault(f"{where}: status {done.returncode}, {done.stderr[:300]!r}")
                if tree(out) != old:
                    ground.fault(f"{where}: left {sorted(tree(out) or {})}")
                done = run(every)
            if done.returncode != 0 or tree(out) != result[every]:
                ground.fault(f"{where}: not right with room: {done.stderr[:200]}")
            if len(list(lab.folder.iterdir())) != 2:
                ground.fault(f"{where}: left beside it {sorted(place.name for place in lab.folder.iterdir())}")
    ground.must_have(refused, "full disk: runs refused")
    ground.row(f"full disk, results of the lab: {len(sizes)} rooms from 0 to {sizes[-1]} bytes, twice, {refused} runs "
               f"refused, {ground.faults - before} faults")


def sweeps_with_rooms(ground, count):
    before = ground.faults
    sweeps = crash_sweep.Sweeps(ground)
    folder = sweeps.lab.folder
    room = Room(ground)

    def sweep(out, environment=None):
        return sweeps.lab.run("sweep", *crash_sweep.SWEEP, "--out", out, environment=environment)

    sizes = spread(room.used_by(lambda: sweep(folder / "measured", room.environment(ground, folder))), count)
    refused = begun = 0
    for turn, size in enumerate(sizes):
        where = f"sweep, room for {size} bytes"
        out = folder / f"out-{turn}"
        room.left = size
        done = sweep(out, room.environment(ground, folder, names=turn % 2))
        if done.returncode != 0:
            refused += 1
            if done.returncode != 2 or not one_line_about(done.stderr, out):
                ground.fault(f"{where}: status {done.returncode}, {done.stderr[:300]!r}")
            # What was kept is gone on with; where nothing was, the same command begins anew.
            if out.exists():
                begun += 1
                if not crash_sweep.sets_in(out / "sweep.sqlite"):
                    ground.fault(f"{where}: left {sorted(place.name for place in out.iterdir())}")
                sweeps.judge(out, where)
            else:
                done = sweep(out)
        if not out.exists() or (out / "sweep.csv").read_bytes() != sweeps.table:
            ground.fault(f"{where}: not right with room: {done.stderr[:200]}")
        shutil.rmtree(out, ignore_errors=True)
    ground.must_have(refused, "full disk: sweeps refused")
    ground.row(f"full disk, sweeps of the lab: {len(sizes)} rooms from 0 to {sizes[-1]} bytes, {refused} sweeps "
               f"refused, {begun} of them with sets to go on from, {ground.faults - before} faults")


def lab_with_rooms(ground, count):
    runs_with_rooms(ground, count // 20 if count else STEPS)
    sweeps_with_rooms(ground, count // 20 if count else STEPS // 4)
