#!/usr/bin/python3
"""The practice platform, held to the description of the wire: every resource, every refusal that can be
provoked, and the feed. The exit code is 0 only when everything that travelled is described and everything that
is described has travelled.
"""

import argparse
import json
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path[:0] = [str(Path(__file__).parent), str(Path(__file__).parent.parent / "tour")]

from played_market import FALLING, WAVERING, falling, wavering, write_symbol  # noqa: E402
from wire_client import PATIENCE, Feed, ask  # noqa: E402
from wire_schema import WireDescription, parse  # noqa: E402
from wire_tap import WireTap  # noqa: E402

CREDENTIALS = {"email": "trader@practice.local", "password": "practice"}
# A fault of the platform, and hundreds of connections at once: not to be had here.
UNPROVOKED = (500, 503)
SIGN_INS = 20  # far more than the platform lets fail


class Wire:
    """Asks the platform, and keeps every offence against the description."""

    def __init__(self, port, description):
        self.port, self.description = port, description
        self.offences = []
        self.token = ""
        self._feed = None

    # --- requests --------------------------------------------------------------------------------

    def ask(self, expected, method, target, body=None, headers=()):
        text = body if isinstance(body, str) else "" if body is None else json.dumps(body)
        session = {"Authorization": f"Bearer {self.token}"} if self.token else {}
        return self._judge(expected, ask(self.port, method, target, text, {**session, **dict(headers)}))

    def _judge(self, expected, exchange):
        self.offences += self.description.exchange(exchange)
        if exchange.status != expected:
            self.offences.append(f"{exchange}: the answer was to be {expected}: {exchange.body[:200]}")
        try:
            return parse(exchange.body) if exchange.body else None
        except ValueError:
            return None  # an offence already

    # --- the feed --------------------------------------------------------------------------------

    def knock(self, expected, token, headers=()):
        feed = Feed(self.port, f"/ws/terminal?token={token}", headers)
        self._judge(expected, feed.exchange)
        return feed

    def open_feed(self):
        self._feed = self.knock(101, self.token)
        return self.hear(lambda message: True)

    def hear(self, accept):
        """The next message that is accepted; those before it are judged as well."""
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            text = self._feed.receive()
            self.offences += self.description.message("send", text)
            message = parse(text)
            if accept(message):
                return message
        raise TimeoutError("what was to come over the feed did not come")

    def hear_kind(self, kind, **members):
        return self.hear(lambda message: message["type"] == kind
                         and all(message.get(name) == value for name, value in members.items()))

    def say(self, message):
        text = json.dumps(message, separators=(",", ":"))
        self.offences += self.description.message("receive", text)
        self._feed.send(text)

    def bid(self, symbol):
        """The next price of a symbol that moves all the time."""
        return self.hear(lambda message: symbol in message.get("data", ()))["data"][symbol]["bid"]


def sign_in(wire):
    wire.ask(200, "GET", "/api/settings/public")
    wire.ask(400, "POST", "/api/auth/login", {"email": ""})
    wire.ask(401, "POST", "/api/auth/login", {**CREDENTIALS, "password": "Practice"})
    wire.token = wire.ask(200, "POST", "/api/auth/login", CREDENTIALS)["token"]


def trade(wire, hello, account):
    """Everything that happens to positions and orders, with the events that tell of it."""
    bid = hello["prices"][WAVERING]["bid"]
    market = {"symbol": WAVERING, "lotSize": 0.1, "accountId": account, "orderKind": "MARKET", "type": "BUY"}
    levels = {"stopLoss": round(bid - 0.05, 5), "takeProfit": round(bid + 0.05, 5)}
    position = wire.ask(200, "POST", "/api/trades/place", {**market, **levels, "comment": "held to its word"})
    wire.hear_kind("orders_changed", tradeId=position["id"])
    wire.hear_kind("trades_update")
    wire.ask(200, "GET", f"/api/trades/open?accountId={account}")
    wire.ask(200, "PUT", f"/api/trades/modify/{position['id']}", {"stopLoss": 0, "takeProfit": round(bid + 0.06, 5)})

    order = wire.ask(200, "POST", "/api/trades/place", {
        "symbol": WAVERING, "lotSize": 0.1, "accountId": account, "orderKind": "BUY_LIMIT",
        "pendingPrice": round(bid - 0.04, 5), **levels, "comment": "waits"})
    wire.ask(200, "GET", f"/api/trades/pending?accountId={account}")
    wire.ask(200, "PUT", f"/api/trades/modify/{order['id']}", {"pendingPrice": round(bid - 0.03, 5)})
    wire.ask(400, "POST", f"/api/trades/close/{order['id']}", {})
    wire.ask(200, "POST", f"/api/trades/cancel/{order['id']}", {})
    wire.ask(400, "POST", f"/api/trades/cancel/{position['id']}", {})
    wire.ask(200, "POST", f"/api/trades/close/{position['id']}", {})
    wire.hear_kind("orders_changed", tradeId=position["id"], closeReason="MANUAL")

    quick = {"symbol": FALLING, "lotSize": 0.1, "accountId": account}
    stop = wire.ask(200, "POST", "/api/trades/place", {
        **quick, "orderKind": "SELL_STOP", "pendingPrice": round(wire.bid(FALLING) - 0.006, 5)})
    wire.hear_kind("orders_changed", tradeId=stop["id"], filled=True)
    lost = wire.ask(200, "POST", "/api/trades/place", {
        **quick, "orderKind": "MARKET", "type": "BUY", "stopLoss": round(wire.bid(FALLING) - 0.006, 5)})
    wire.hear_kind("orders_changed", tradeId=lost["id"], closeReason="SL")
    wire.ask(200, "GET", f"/api/trades/history?accountId={account}")
    wire.ask(200, "GET", f"/api/trades/history?accountId={account}&limit=1")

    wire.ask(404, "POST", "/api/trades/place", {**market, "accountId": "nobody's"})
    for broken in ({"lotSize": 0}, {"symbol": "NOSUCH"}, {"orderKind": "WISH"}, {"type": None}, {"stopLoss": 5.0}):
        wire.ask(400, "POST", "/api/trades/place", {**market, **broken})
    for action in ("close", "cancel"):
        wire.ask(404, "POST", f"/api/trades/{action}/nothing", {})
    wire.ask(404, "PUT", "/api/trades/modify/nothing", {"stopLoss": 1.0})
    for name in ("open", "pending", "history"):
        wire.ask(400, "GET", f"/api/trades/{name}")
        wire.ask(404, "GET", f"/api/trades/{name}?accountId=nothing")


def fail_a_challenge(wire, account):
    """Five per cent of its equity are gone within a few steps of a price that falls."""
    order = {"symbol": FALLING, "lotSize": 12.0, "accountId": account, "orderKind": "MARKET", "type": "BUY"}
    wire.ask(200, "POST", "/api/trades/place", order)
    wire.hear_kind("account_update", accountId=account, status="FAILED")
    wire.ask(400, "POST", "/api/trades/place", order)


def draw(wire, account):
    points = [{"time": "1772460000000", "price": 1.085}, {"time": "1772463600000", "price": 1.0861}]
    for tool, count in (("hline", 1), ("vline", 1), ("trendline", 2), ("rectangle", 2), ("fibonacci", 2)):
        wire.ask(201, "POST", "/api/drawings", {
            "symbol": WAVERING, "accountId": account, "toolType": tool, "points": points[:count],
            "style": {"color": "#e0e0e0"}})
    alone = wire.ask(201, "POST", "/api/drawings", {
        "symbol": WAVERING, "toolType": "hline", "points": points[:1], "style": {"color": "#ff4a4a"}})
    wire.ask(200, "GET", f"/api/drawings?symbol={WAVERING}")
    wire.ask(200, "GET", f"/api/drawings?symbol={WAVERING}&accountId={account}")
    change = {"points": points[1:], "style": {"color": "#3ba7ff"}}
    wire.ask(200, "PUT", f"/api/drawings/{alone['id']}", change)
    wire.ask(400, "PUT", f"/api/drawings/{alone['id']}", {"points": points})
    wire.ask(200, "DELETE", f"/api/drawings/{alone['id']}")
    wire.ask(404, "PUT", f"/api/drawings/{alone['id']}", change)
    wire.ask(404, "DELETE", f"/api/drawings/{alone['id']}")
    wire.ask(404, "GET", "/api/drawings?symbol=NOSUCH")
    wire.ask(404, "POST", "/api/drawings", {
        "symbol": "NOSUCH", "toolType": "hline", "points": points[:1], "style": {"color": "#ff4a4a"}})
    wire.ask(400, "POST", "/api/drawings", {"symbol": WAVERING, "toolType": "spiral", "points": points})


def look(wire):
    for timeframe in ("1m", "5m", "15m", "1h", "4h", "1d", "1w", "1mn"):
        wire.ask(200, "GET", f"/api/candles?symbol={WAVERING}&timeframe={timeframe}")
    wire.ask(200, "GET", f"/api/candles?symbol={WAVERING}&timeframe=1m&limit=10")
    wire.ask(400, "GET", f"/api/candles?symbol={WAVERING}&timeframe=2m")
    wire.ask(404, "GET", "/api/candles?symbol=NOSUCH&timeframe=1m")
    wire.ask(200, "GET", "/api/news/upcoming")


def be_refused(wire):
    """What every address refuses, whoever asks."""
    addresses = [
        ("GET", "/api/settings/public"), ("POST", "/api/auth/login"), ("GET", "/api/accounts"),
        ("GET", "/api/trades/open"), ("GET", "/api/trades/pending"), ("GET", "/api/trades/history"),
        ("POST", "/api/trades/place"), ("POST", "/api/trades/close/x"), ("POST", "/api/trades/cancel/x"),
        ("PUT", "/api/trades/modify/x"), ("GET", "/api/candles"), ("GET", "/api/drawings"),
        ("POST", "/api/drawings"), ("PUT", "/api/drawings/x"), ("DELETE", "/api/drawings/x"),
        ("GET", "/api/news/upcoming"), ("GET", "/ws/terminal")]
    for method, address in addresses:
        wire.ask(400, method, address + "?broken=%zz")
        wire.ask(403, method, address, headers={"Origin": "http://elsewhere.example"})
        wire.ask(413, method, address, " " * 65 * 1024)
        wire.ask(415, method, address, "{}", {"Content-Type": "text/plain"})
        wire.ask(421, method, address, headers={"Host": "elsewhere.example"})
        wire.ask(431, method, address, headers={"X-Long": "x" * 17 * 1024})
        if method != "GET":
            wire.ask(405, "PATCH", address)
    wire.ask(404, "GET", "/api/nothing")
    wire.knock(401, "wrong").close()
    wire.knock(403, wire.token, {"Origin": "http://elsewhere.example"}).close()
    wire.knock(400, wire.token, {"Sec-WebSocket-Version": "12"}).close()
    wire.token = ""
    for method, address in addresses[2:-1]:
        wire.ask(401, method, address)


def tire(wire):
    """Signs in wrongly until no more tries are taken. The last of all, for it closes the door for a while."""
    for _ in range(SIGN_INS):
        exchange = ask(wire.port, "POST", "/api/auth/login", json.dumps({**CREDENTIALS, "password": "guess"}))
        wire.offences += wire.description.exchange(exchange)
        if exchange.status == 429:
            return
    wire.offences.append("sign-in: it took every wrong password")


def play(wire):
    sign_in(wire)
    hello = wire.open_feed()
    if hello["type"] != "hello":
        wire.offences.append(f"feed: it began with {hello['type']}")
    accounts = wire.ask(200, "GET", "/api/accounts")
    account = next(item["id"] for item in accounts if item["type"] == "DEMO")
    trade(wire, hello, account)
    fail_a_challenge(wire, next(item["id"] for item in accounts if item["type"] == "PLAN" and not item["isFunded"]))
    wire.say({"type": "ping"})
    wire.hear_kind("pong")
    draw(wire, account)
    look(wire)
    be_refused(wire)
    tire(wire)


def play_through(wire):
    """All offences; where the play breaks off, those that led to it."""
    try:
        play(wire)
    except Exception as error:  # an answer without what comes next, or a feed that ended
        return wire.offences + [f"broke off: {error!r}"]
    return wire.offences + [f"never met: {entry}" for entry in wire.description.unmet(UNPROVOKED)]


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--practice", required=True, help="the practice platform")
    arguments.add_argument("--docs", required=True, type=Path, help="the folder of the description")
    options = arguments.parse_args()
    description = WireDescription(options.docs)
    with tempfile.TemporaryDirectory(prefix="tavoran-wire-") as folder:
        record = Path(folder) / "record"
        record.mkdir()
        walk = wavering()
        write_symbol(record, WAVERING, walk)
        write_symbol(record, FALLING, falling(walk))
        platform = subprocess.Popen(
            [options.practice, "--port", "0", "--db", f"{folder}/practice.db", "--seed", "7", "--speed", "20",
             "--replay", str(record), "--quiet"], stdout=subprocess.PIPE, text=True)
        try:
            found = re.search(r"Listening on http://\S+:(\d+)", platform.stdout.readline())
            if not found:
                sys.exit("the practice platform did not start")
            tap = WireTap()
            tap.open(int(found.group(1)))
            offences = play_through(Wire(tap.port, description))
        finally:
            platform.terminate()
            platform.communicate(timeout=15)
    tapped = WireDescription(options.docs)
    offences += [f"tapped: {offence}" for offence in tap.judge(tapped)]
    if tapped.unmet() != description.unmet():
        offences.append("tapped: not everything that travelled was seen on its way")
    for offence in offences:
        print("FAIL", offence)
    print(f"{len(offences)} offences against the description")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
