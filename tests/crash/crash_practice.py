"""The practice platform without power: every acknowledged order is there, and none twice."""

import http.client
import json
import os
import random
import shutil
import signal
import sqlite3
import subprocess
import tempfile

import power_loss
from line_reader import LineReader, Silent

PATIENCE = 30  # seconds
EMAIL = "trader@practice.local"
PASSWORD = "practice"


class NotStarted(RuntimeError):
    """Why the platform does not start, and the status it ended with."""

    def __init__(self, status, errors):
        super().__init__(f"the platform does not start: status {status}, {errors[:300]}")
        self.status = status
        self.errors = errors


class Client:
    """One connection to the platform."""

    def __init__(self, port, token=None):
        self.port = port
        self.token = token
        self._line = http.client.HTTPConnection("127.0.0.1", port, timeout=PATIENCE)

    def answer(self, method, target, body=None):
        """The status, and what came with it."""
        headers = {"Content-Type": "application/json"}
        if self.token:
            headers["Authorization"] = "Bearer " + self.token
        self._line.request(method, target, None if body is None else json.dumps(body), headers)
        reply = self._line.getresponse()
        content = reply.read()
        return reply.status, json.loads(content) if content else None

    def ask(self, method, target, body=None):
        status, content = self.answer(method, target, body)
        if status != 200:
            raise RuntimeError(f"{target}: {status} {str(content)[:200]}")
        return content

    def sign_in(self):
        answer = self.ask("POST", "/api/auth/login", {"email": EMAIL, "password": PASSWORD})
        self.token = answer["token"]

    def account(self):
        return next(row["id"] for row in self.ask("GET", "/api/accounts") if row["type"] == "DEMO")

    def trades(self):
        """Those of the account: each record with the list that it stands in."""
        account = self.account()
        return [(kind, row) for kind in ("open", "pending", "history")
                for row in self.ask("GET", f"/api/trades/{kind}?accountId={account}")]

    def hang_up(self):
        self._line.close()


class Platform(Client):
    """tavoran-practice on a database and a port of its choice."""

    def __init__(self, ground, database, environment=None):
        self._said = tempfile.TemporaryFile()  # a pipe would be full at some time
        self._process = subprocess.Popen([ground.bin / "tavoran-practice", "--quiet", "--port", "0", "--db", database],
                                         stdout=subprocess.PIPE, stderr=self._said,
                                         env=environment or ground.environment())
        try:
            line = LineReader(self._process.stdout).line(PATIENCE)
        except Silent as silence:
            raise NotStarted(self._over(0), str(silence)) from silence
        if line is None:
            raise NotStarted(self._over(PATIENCE), self.errors())
        super().__init__(int(line.rsplit(":", 1)[1]))

    def errors(self):
        """All that was written to standard error so far."""
        self._said.seek(0)
        return self._said.read().decode()

    def is_running(self):
        return self._process.poll() is None

    def leave(self):
        """Ends as by a person; the status."""
        self._process.send_signal(signal.SIGTERM)
        return self.end(PATIENCE)

    def kill(self):
        self._process.kill()

    def end(self, patience=0):
        """Ends at the latest after so many seconds; the status."""
        self.hang_up()
        return self._over(patience)

    def _over(self, patience):
        try:
            self._process.wait(patience)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        self._process.stdout.close()
        return self._process.returncode


class Told:
    """What the platform has acknowledged, with the size of its journal then."""

    def __init__(self, journal):
        self._journal = journal
        self.placed = {}  # comment: (id, size)
        self.closed = {}  # id: size
        self.signed_in = None  # the token, and the size

    def now(self):
        return os.path.getsize(self._journal)


def trade(platform, told, orders):
    """Some that stay, some that are closed, some that wait."""
    platform.sign_in()
    told.signed_in = (platform.token, told.now())
    account = platform.account()
    for number in range(orders):
        order = {"accountId": account, "symbol": "EURUSD", "lotSize": 0.01, "comment": f"order {number}"}
        market = number % 3 != 0
        order |= {"orderKind": "MARKET", "type": "BUY"} if market else {"orderKind": "BUY_LIMIT", "pendingPrice": 0.5}
        identity = platform.ask("POST", "/api/trades/place", order)["id"]
        told.placed[order["comment"]] = (identity, told.now())
        if number % 3 == 2:
            platform.ask("POST", f"/api/trades/close/{identity}", {})
            told.closed[identity] = told.now()


def unfit_after_loss(told, size, seen):
    """What is wrong with the trades that are there, as {comment: [(id, list)]}, after the power went at this size of the
    journal."""
    wrong = [f"{comment} is there {len(found)} times" for comment, found in seen.items() if len(found) != 1]
    for comment, (identity, then) in told.placed.items():
        found = seen.get(comment, [])
        if then <= size and [each for each, _ in found] != [identity]:
            wrong.append(f"{comment} was acknowledged and is lost")
        elif told.closed.get(identity, size + 1) <= size and found[0][1] != "history":
            wrong.append(f"{comment} was closed and is {found[0][1]}")
    return wrong


def check(ground, place, told, size, where):
    """A start on what the loss left, and what it then has."""
    database = place / "practice.db"
    try:
        platform = Platform(ground, database)
    except RuntimeError as error:
        ground.fault(f"{where}: {error}")
        return
    try:
        token, then = told.signed_in
        platform.token = token
        if then <= size:
            platform.account()  # whoever was signed in still is
        platform.sign_in()
        seen = {}
        for kind, row in platform.trades():
            seen.setdefault(row["comment"], []).append((row["id"], kind))
    except RuntimeError as error:
        ground.fault(f"{where}: {error}")
        return
    finally:
        platform.end()
    for wrong in unfit_after_loss(told, size, seen):
        ground.fault(f"{where}: {wrong}")
    check_integrity(ground, database, where)


def check_integrity(ground, database, where):
    connection = sqlite3.connect(database)
    try:
        answer = connection.execute("PRAGMA integrity_check").fetchall()
    except sqlite3.DatabaseError as error:
        answer = [str(error)]
    connection.close()
    if answer != [("ok",)]:
        ground.fault(f"{where}: integrity_check says {answer[:3]}")


def power_losses(ground, count, orders=60):
    before = ground.faults
    chance = random.Random(ground.seed)
    folder = ground.folder()
    folder.mkdir(mode=0o700)
    journal = ground.place / "journal-practice"
    platform = Platform(ground, folder / "practice.db", ground.environment(folder, JOURNAL=journal))
    told = Told(journal)
    trade(platform, told, orders)
    platform.end()
    acknowledged = 0
    for size, lose in power_loss.losses(folder, journal, count, chance.randrange(1 << 30)):
        place = ground.folder()
        lose(place)
        check(ground, place, told, size, f"platform, power lost after {size} bytes of its journal")
        acknowledged += sum(then <= size for _, then in told.placed.values())
        shutil.rmtree(place)
    ground.must_have(acknowledged, "power lost while trading: orders looked for")
    ground.row(f"power lost while trading on the platform: {count} losses, {acknowledged} acknowledged orders looked "
               f"for, {ground.faults - before} faults")
