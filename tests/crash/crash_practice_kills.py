#!/usr/bin/env python3
"""The practice platform killed while five clients place, close and cancel: every acknowledged order is there, none
twice, and what was closed stays so.

  crash_practice_kills.py --bin FOLDER COUNT   so many kills, and a line "NAME VALUE" for each figure
"""

import argparse
import collections
import http.client
import random
import sys
import tempfile
import threading
import time

from crash_ground import Ground
from crash_practice import Client, NotStarted, Platform, check_integrity

CLIENTS = 5
LONGEST = 0.3  # seconds from the start to the kill
KILLED = -9


class Acknowledged:
    """What the platform has said yes to between two kills."""

    def __init__(self):
        self.placed = {}  # comment: (id, whether it is a position at once)
        self.asked = set()  # the ids for whose close or cancellation it was asked
        self.gone = set()  # those for which it said yes
        self.refusals = []
        self.lock = threading.Lock()


def trade(port, token, account, prefix, known):
    """Places, closes and cancels until the connection ends."""
    client = Client(port, token)
    try:
        for number in range(1000000):
            market = number % 2 == 0
            comment = f"{prefix}.{number}"
            order = {"accountId": account, "symbol": "EURUSD", "lotSize": 0.01, "comment": comment}
            order |= {"orderKind": "MARKET", "type": "BUY"} if market else {"orderKind": "BUY_LIMIT", "pendingPrice": 0.5}
            status, answer = client.answer("POST", "/api/trades/place", order)
            # An account takes so many only; enough for one round then.
            if status == 400 and "are the most" in str(answer):
                return
            if status != 200:
                known.refusals.append(f"{status} {str(answer)[:200]}")
                return
            identity = answer["id"]
            with known.lock:
                known.placed[comment] = (identity, market)
                if number % 4 < 2:
                    known.asked.add(identity)
            if number % 4 > 1:
                continue
            if client.answer("POST", f"/api/trades/{'close' if market else 'cancel'}/{identity}", {})[0] == 200:
                with known.lock:
                    known.gone.add(identity)
    except (OSError, http.client.HTTPException, ValueError):
        pass  # it ended in mid-flight
    finally:
        client.hang_up()


def lost_and_twice(known, rows):
    """What of it is missing, or stands in a wrong list, and the comments that are there more than once."""
    lists = {row["id"]: kind for kind, row in rows}
    lost = []
    for comment, (identity, market) in known.placed.items():
        right = {"open" if market else "pending"}
        if identity in known.asked:
            right.add("history" if market else "no list")  # where a cancelled order stands
        if identity in known.gone:
            right.remove("open" if market else "pending")
        if lists.get(identity, "no list") not in right:
            lost.append(f"{comment} is in {lists.get(identity, 'no list')}, not in {' or '.join(sorted(right))}")
    times = collections.Counter(row["comment"] for _, row in rows)
    return lost, sorted(comment for comment, count in times.items() if count > 1)


class Trial:
    """One database, killed again and again."""

    def __init__(self, ground):
        self._ground = ground
        self._database = ground.folder() / "practice.db"
        self._database.parent.mkdir(mode=0o700)
        self._known = Acknowledged()
        self._token = self._account = None
        self.acknowledged = self.lost = self.twice = 0

    def start(self, where):
        """A platform, after a look at what it has; nothing when it does not start."""
        try:
            platform = Platform(self._ground, self._database)
        except NotStarted as error:
            self._ground.fault(f"{where}: {error}")
            return None
        if not self._token:
            platform.sign_in()
            self._token = platform.token
            self._account = platform.account()
        platform.token = self._token
        self._look(platform, where)
        self._known = Acknowledged()
        return platform

    def _look(self, platform, where):
        """Then closes and cancels what is left."""
        rows = [(kind, row) for kind in ("open", "pending", "history") for row in
                platform.ask("GET", f"/api/trades/{kind}?accountId={self._account}"
                             + ("&limit=500" if kind == "history" else ""))]
        lost, twice = lost_and_twice(self._known, rows)
        for wrong in lost:
            self._ground.fault(f"{where}: {wrong}")
        for comment in twice:
            self._ground.fault(f"{where}: {comment} is there twice")
        for refusal in self._known.refusals:
            self._ground.fault(f"{where}: before it an order was refused: {refusal}")
        self.acknowledged += len(self._known.placed)
        self.lost += len(lost)
        self.twice += len(twice)
        for kind, row in rows:
            if kind != "history":
                platform.ask("POST", f"/api/trades/{'close' if kind == 'open' else 'cancel'}/{row['id']}", {})

    def kill(self, where, seconds):
        platform = self.start(where)
        if not platform:
            return False
        clients = [threading.Thread(target=trade, args=(platform.port, self._token, self._account, f"{where}.{number}",
                                                        self._known)) for number in range(CLIENTS)]
        for client in clients:
            client.start()
        time.sleep(seconds)
        platform.kill()
        for client in clients:
            client.join()
        if (status := platform.end()) != KILLED:
            self._ground.fault(f"{where}: the platform ended with {status}")
        return True

    def last_look(self):
        if platform := self.start("after the last kill"):
            platform.end()
        check_integrity(self._ground, self._database, "after all kills")


def kills(ground, count):
    """The figures, by their names."""
    chance = random.Random(ground.seed)
    before = ground.faults
    trial = Trial(ground)
    done = 0
    while done < count and trial.kill(f"kill {done + 1} of the platform", chance.random() * LONGEST):
        done += 1
    trial.last_look()
    ground.must_have(trial.acknowledged, "kills of the platform: acknowledged orders")
    ground.row(f"the platform killed while {CLIENTS} clients trade: {done} kills, {trial.acknowledged} acknowledged orders "
               f"looked for, {trial.lost} lost, {trial.twice} there twice, {ground.faults - before} faults")
    return {"kills": done, "acknowledged": trial.acknowledged, "lost": trial.lost, "twice": trial.twice}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", required=True, help="folder of the programs")
    parser.add_argument("count", type=int)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="tavoran-crash-") as place:
        ground = Ground(arguments.bin, arguments.bin, place, seed=20240229)
        figures = kills(ground, arguments.count)
    for name, value in figures.items():
        print(name, value)
    sys.exit(1 if ground.faults else 0)


if __name__ == "__main__":
    main()
