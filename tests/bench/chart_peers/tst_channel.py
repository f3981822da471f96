#!/usr/bin/python3
"""That a program on the other end of the line hears what it is told, and is understood."""

import base64
import io
import json
import os
import socket
import struct
import sys
import tempfile
import threading
import unittest
import urllib.request
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "bench/chart_peers"))
import channel  # noqa: E402


def client_frame(first, payload):
    """As a client sends it: masked."""
    size, mask = len(payload), os.urandom(4)
    head = bytes((first, 0x80 | size)) if size < 126 else struct.pack(">BBH", first, 0x80 | 126, size)
    return head + mask + bytes(byte ^ mask[i % 4] for i, byte in enumerate(payload))


class Program:
    """One that has opened a line."""

    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), 10)
        key = base64.b64encode(bytes(16)).decode()
        self.socket.sendall(f"GET /socket HTTP/1.1\r\nHost: x\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n"
                            f"Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: {key}\r\n\r\n".encode())
        self.stream = self.socket.makefile("rb")
        self.status = self.stream.readline()
        while self.stream.readline().strip():
            continue

    def hear(self):
        first, size = self.stream.read(2)
        if size == 126:
            size, = struct.unpack(">H", self.stream.read(2))
        return first, self.stream.read(size)

    def close(self):
        self.stream.close()
        self.socket.close()


class Channel(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        Path(folder.name, "page.mjs").write_text("export {};")
        self.channel = channel.Channel(folder.name)
        self.addCleanup(self.channel.close)

    def opened(self):
        program = Program(self.channel.port)
        self.addCleanup(program.close)
        line = self.channel.line(10)
        self.addCleanup(line.close)
        return program, line

    def test_files_are_served_with_the_type_that_modules_need(self):
        with urllib.request.urlopen(f"http://127.0.0.1:{self.channel.port}/page.mjs", timeout=10) as reply:
            self.assertEqual("text/javascript", reply.headers.get_content_type())
            self.assertEqual(b"export {};", reply.read())

    def test_a_program_hears_what_it_is_told_and_gets_numbers_in_rows(self):
        program, line = self.opened()
        self.assertIn(b" 101 ", program.status)
        line.tell({"bid": 1.5})
        self.assertEqual((0x81, b'{"bid": 1.5}'), program.hear())
        line.give([(1, 2.5), (3, 4.5)])
        self.assertEqual((0x82, struct.pack("<4d", 1, 2.5, 3, 4.5)), program.hear())

    def test_an_answer_is_found_behind_a_ping_and_in_parts(self):
        program, line = self.opened()
        text = json.dumps({"took": [0.5] * 100}).encode()
        answer = threading.Thread(target=lambda: program.socket.sendall(
            client_frame(0x89, b"hi") + client_frame(0x01, text[:50]) + client_frame(0x80, text[50:])))
        answer.start()
        self.assertEqual({"took": [0.5] * 100}, line.answer(10))
        answer.join()
        self.assertEqual((0x8A, b"hi"), program.hear())

    def test_a_program_that_has_gone_is_an_error_and_no_answer(self):
        program, line = self.opened()
        program.close()
        with self.assertRaises(ConnectionError):
            line.answer(10)

    def test_nobody_on_the_line_is_an_error_in_time(self):
        with self.assertRaises(TimeoutError):
            self.channel.line(0.01)

    def test_long_messages_have_their_length_in_the_head(self):
        self.assertEqual(b"\x81\x7e\x01\x00", channel.frame(channel.TEXT, bytes(256))[:4])
        self.assertEqual(b"\x82\x7f" + (70000).to_bytes(8, "big"), channel.frame(channel.BINARY, bytes(70000))[:10])

    def test_the_handshake_is_answered_as_its_standard_says(self):
        self.assertEqual("s3pPLMBiTxaQ9kYGzzhZRbK+xOo=", channel.accept_key("dGhlIHNhbXBsZSBub25jZQ=="))

    def test_half_a_message_is_an_error(self):
        with self.assertRaises(ConnectionError):
            channel.read_message(io.BytesIO(client_frame(0x81, b"hello")[:-1]))


if __name__ == "__main__":
    unittest.main()
