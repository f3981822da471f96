#!/usr/bin/python3
"""The judge of the wire finds what it is there to find, and takes what the descriptions allow."""

import copy
import json
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).parent))

from wire_schema import Exchange, WireDescription  # noqa: E402

DOCS = Path(__file__).parent.parent.parent / "docs"
JSON = {"content-type": "application/json"}
SESSION = {"authorization": "Bearer abc"}
ACCOUNT = {"id": "a", "isWallet": False, "type": "DEMO", "Plan": {"name": "", "steps": 1}, "phase": 1,
           "isFunded": False, "status": "ACTIVE", "balance": "1000.00"}
TRADE = {"id": "t", "accountId": "a", "symbol": "EURUSD", "type": "BUY", "orderKind": "MARKET", "status": "OPEN",
         "lotSize": "0.10", "entryPrice": 1.08, "stopLoss": None, "pnl": "-1.20",
         "createdAt": "2026-03-02T14:05:09.250Z", "closedAt": None}
ORDER = {"symbol": "EURUSD", "lotSize": 0.1, "accountId": "a", "orderKind": "MARKET", "type": "BUY"}
HELLO = {"type": "hello", "symbols": [{"name": "EURUSD", "digits": 5}],
         "prices": {"EURUSD": {"bid": 1.08, "ask": "1.09"}}}


def changed(value, path, new):
    """A copy with another value at a path; DROP removes what is there."""
    value = copy.deepcopy(value)
    place = value
    for step in path[:-1]:
        place = place[step]
    if new is DROP:
        del place[path[-1]]
    else:
        place[path[-1]] = new
    return value


DROP = object()


class WireSchema(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.description = WireDescription(DOCS)

    def accounts(self, body, **other):
        fields = {"method": "GET", "target": "/api/accounts", "status": 200, "sent_headers": SESSION,
                  "headers": JSON, "body": body if isinstance(body, str) else json.dumps(body), **other}
        return self.description.exchange(Exchange(**fields))

    def place(self, order, status=200):
        body = TRADE if status == 200 else {"message": "No."}
        return self.description.exchange(Exchange(
            "POST", "/api/trades/place", status, json.dumps(order), SESSION, json.dumps(body), JSON))

    def feed(self, message, action="send"):
        return self.description.message(action, message if isinstance(message, str) else json.dumps(message))

    def offends(self, offences, *parts):
        self.assertTrue(any(all(part in offence for part in parts) for offence in offences), (parts, offences))

    def test_what_is_described_is_no_offence(self):
        self.assertEqual(self.accounts([]), [])
        self.assertEqual(self.accounts([ACCOUNT, changed(ACCOUNT, ["balance"], 1000)]), [])
        self.assertEqual(self.place(ORDER), [])
        self.assertEqual(self.feed(HELLO), [])
        self.assertEqual(self.feed({"type": "trades_update", "data": [TRADE]}), [])
        self.assertEqual(self.feed({"type": "ping"}, "receive"), [])

    def test_a_broken_account_is_named_with_its_place(self):
        for path, new, where in (
                (["id"], DROP, "$[0]"), (["id"], 7, "$[0].id"), (["balance"], "much", "$[0].balance"),
                (["balance"], None, "$[0].balance"), (["balance"], 1e16, "$[0].balance"),
                (["balance"], True, "$[0].balance"),
                (["Plan", "steps"], 0, "$[0].Plan.steps"), (["Plan", "stages"], 2, "$[0].Plan"),
                (["phase"], 1.5, "$[0].phase"), (["nickname"], "Joe", "nickname")):
            self.offends(self.accounts([changed(ACCOUNT, path, new)]), "/api/accounts", where)

    def test_a_broken_trade_is_named_with_its_place(self):
        for path, new in ((["type"], "HOLD"), (["createdAt"], "2026-03-02 14:05"), (["createdAt"], None),
                          (["pnl"], "1,200.00"), (["stopLoss"], []), (["lotSize"], DROP)):
            where = "$.data[0]" if new is DROP else f"$.data[0].{path[0]}"
            self.offends(self.feed({"type": "trades_update", "data": [changed(TRADE, path, new)]}), where)

    def test_a_reply_that_is_no_proper_json_is_an_offence(self):
        for body in ("", "[", "[NaN]", '[{"id":"a","id":"b"}]', "{}"):
            self.assertTrue(self.accounts(body), body)
        self.offends(self.accounts([], headers={"content-type": "text/html"}), "content-type")
        self.offends(self.accounts([], headers={}), "content-type")

    def test_a_failure_without_a_reason_is_an_offence(self):
        self.assertEqual(self.accounts({"message": "Sign in."}, status=401, sent_headers={}), [])
        self.offends(self.accounts({}, status=401), "message")
        self.offends(self.accounts({"message": ""}, status=401), "$.message")
        self.offends(self.accounts({"message": "?"}, status=418), "status")

    def test_an_answer_without_a_session_is_an_offence(self):
        self.offends(self.accounts([], sent_headers={}), "authorization")
        self.assertEqual(self.description.exchange(Exchange(
            "GET", "/api/settings/public", 200, body='{"settings":{}}', headers=JSON)), [])

    def test_an_order_taken_against_the_description_is_an_offence(self):
        pending = {**changed(ORDER, ["type"], DROP), "orderKind": "BUY_LIMIT", "pendingPrice": 1.07}
        self.assertEqual(self.place(pending), [])
        for order in (changed(ORDER, ["type"], DROP), changed(ORDER, ["lotSize"], "0.1"), {**ORDER, "stopLoss": 0},
                      {**ORDER, "pendingPrice": 1.07}, {**pending, "type": "BUY"}, {**ORDER, "comment": ""}):
            self.offends(self.place(order), "request $")
            self.assertEqual(self.place(order, 400), [])

    def test_a_question_is_held_to_its_query(self):
        def ask(query):
            return self.description.exchange(Exchange(
                "GET", "/api/candles?" + query, 200, sent_headers=SESSION, body="[]", headers=JSON))
        self.assertEqual(ask("symbol=EURUSD&timeframe=1mn&limit=10"), [])
        self.offends(ask("symbol=EURUSD"), "query timeframe", "missing")
        self.offends(ask("symbol=EURUSD&timeframe=2m"), "query timeframe")
        self.offends(ask("symbol=EURUSD&timeframe=1m&limit=0"), "query limit")
        self.offends(ask("symbol=EURUSD&timeframe=1m&limit=ten"), "query limit")
        self.offends(ask("symbol=EURUSD&timeframe=1m&from=0"), "query from", "not described")

    def test_what_is_not_described_is_to_be_refused(self):
        refusal = json.dumps({"message": "There is nothing at this address."})

        def ask(method, target, status, headers=JSON):
            return self.description.exchange(Exchange(method, target, status, body=refusal, headers=headers))
        self.assertEqual(ask("GET", "/api/secrets", 404), [])
        self.offends(ask("GET", "/api/secrets", 200), "status")
        self.assertEqual(ask("PATCH", "/api/drawings/x", 405, {**JSON, "allow": "PUT, DELETE"}), [])
        self.offends(ask("PATCH", "/api/drawings/x", 405, {**JSON, "allow": "PUT"}), "allow")
        self.offends(ask("PATCH", "/api/drawings/x", 200), "status")

    def test_a_broken_message_of_the_feed_is_an_offence(self):
        self.offends(self.feed("hello"), "no JSON")
        for message in ([], {}, {"type": 1}, {"type": "goodbye"}, {"type": "ping"}):
            self.offends(self.feed(message), "$.type")
        self.offends(self.feed({"type": "hello"}, "receive"), "$.type")
        self.offends(self.feed({"type": "ping", "at": 1}, "receive"), "at")
        self.offends(self.feed(changed(HELLO, ["prices", "EURUSD", "ask"], DROP)), "$.prices.EURUSD")
        alike = changed(HELLO, ["prices", "USDJPY"], HELLO["prices"]["EURUSD"])
        self.assertEqual(self.feed(alike), [])
        self.offends(self.feed(changed(alike, ["prices", "GOLD"], {"bid": "much"})), "$.prices.GOLD")
        self.offends(self.feed(changed(HELLO, ["symbols", 0, "digits"], 16)), "$.symbols[0].digits")
        self.offends(self.feed({"type": "orders_changed", "accountId": "a", "filled": "yes"}), "$.filled")
        self.offends(self.feed({"type": "account_update", "accountId": "a"}), "status")

    def test_what_never_travelled_is_told(self):
        description = WireDescription(DOCS)
        before = description.unmet()
        for entry in ("GET /api/accounts 200", "send hello", "receive ping"):
            self.assertIn(entry, before)
        self.assertTrue(any(entry.endswith("schemas/Account/properties: leverage") for entry in before))
        self.assertFalse(any(entry.endswith(" 503") for entry in description.unmet([503])))
        description.message("send", json.dumps(changed(HELLO, ["symbols"], 0)))
        self.assertEqual(description.unmet(), before)
        description.message("send", json.dumps(HELLO))
        gone = set(before) - set(description.unmet())
        self.assertIn("send hello", gone)
        self.assertIn("asyncapi.yaml components/schemas/Symbol/properties: digits", gone)
        self.assertNotIn("asyncapi.yaml components/schemas/Symbol/properties: swapLong", gone)


if __name__ == "__main__":
    unittest.main()
