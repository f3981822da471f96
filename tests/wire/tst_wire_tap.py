#!/usr/bin/python3
"""The tap hands everything on and judges what went through it, wherever a connection ends."""

import socket
import sys
import threading
import time
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).parent))

from wire_schema import WireDescription  # noqa: E402
from wire_tap import WireTap  # noqa: E402

DOCS = Path(__file__).parent.parent.parent / "docs"
ASK = b"GET /api/accounts HTTP/1.1\r\nAuthorization: Bearer a\r\n\r\n"
KNOCK = b"GET /ws/terminal?token=a HTTP/1.1\r\nUpgrade: websocket\r\n\r\n"
ENTER = b"HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\n\r\n"
MASKED_PING = bytes((0x81, 0x8F, 1, 2, 3, 4)) + bytes(
    byte ^ (i % 4 + 1) for i, byte in enumerate(b'{"type":"ping"}'))


def reply(body):
    return f"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: {len(body)}\r\n\r\n{body}".encode()


def frame(text):
    head = bytes((0x81, len(text))) if len(text) < 126 else bytes((0x81, 126)) + len(text).to_bytes(2, "big")
    return head + text.encode()


class Tap(unittest.TestCase):
    def through(self, sent, answer, delays=()):
        """Sends through a tap to a server that takes it all and answers so; what the judge says of it."""
        server = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(server.close)

        def serve():
            caller, _ = server.accept()
            with caller:
                taken = b""
                while len(taken) < len(sent):
                    taken += caller.recv(4096)
                caller.sendall(answer)
        threading.Thread(target=serve, daemon=True).start()
        tap = WireTap()
        for request, seconds in delays:
            tap.delay(request, seconds)
        tap.open(server.getsockname()[1])
        self.addCleanup(tap.close)
        with socket.create_connection(("127.0.0.1", tap.port), 10) as caller:
            caller.sendall(sent)
            self.assertEqual(caller.makefile("rb").read(), answer)
        self.description = WireDescription(DOCS)
        return tap.judge(self.description)

    def test_requests_behind_each_other_are_judged_one_by_one(self):
        offences = self.through(ASK + ASK + ASK, reply("[]") + reply('[{"id":1}]') + reply("[]"))
        self.assertTrue(offences)
        self.assertTrue(all("$[0]" in offence for offence in offences), offences)

    def test_messages_of_both_sides_are_judged(self):
        self.assertEqual(self.through(KNOCK + MASKED_PING, ENTER + frame('{"type":"pong"}')), [])
        self.assertNotIn("receive ping", self.description.unmet())
        self.assertNotIn("send pong", self.description.unmet())
        self.assertTrue(self.through(KNOCK + MASKED_PING.replace(b"\x81", b"\x01"), ENTER))
        long = '{"type":"hallo","symbols":"' + "x" * 200 + '"}'
        self.assertIn("hallo", self.through(KNOCK, ENTER + frame(long) + frame('{"type":"pong"}'))[0])
        self.assertNotIn("send pong", self.description.unmet())

    def test_what_ends_in_the_middle_is_no_offence(self):
        for answer in (b"", b"HTTP/1.1 200", reply("[1]")[:-1], ENTER + frame('{"type":"pong"}')[:-1]):
            self.assertEqual(self.through(ASK if b"101" not in answer else KNOCK, answer), [])

    def test_a_request_that_is_delayed_comes_late(self):
        delays = (("GET /api/accounts ", 0.3), ("GET /api/trades", 60), ("GET /api/acc", 60), ("GET /api/acc", 0))
        started = time.monotonic()
        self.assertEqual(self.through(ASK, reply("[]"), delays), [])
        self.assertGreaterEqual(time.monotonic() - started, 0.3)

    def test_a_closed_tap_lets_nobody_through_until_it_is_opened_again(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            tap = WireTap()
            tap.open(server.getsockname()[1])
            port = tap.port
            tap.close()
            with self.assertRaises(ConnectionRefusedError):
                socket.create_connection(("127.0.0.1", port), 10)
            tap.open(server.getsockname()[1])
            self.assertEqual(tap.port, port)
            socket.create_connection(("127.0.0.1", port), 10).close()
            tap.close()


if __name__ == "__main__":
    unittest.main()
