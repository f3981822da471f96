"""Lies between a terminal and its platform and hands everything on as it comes, with a copy to judge later."""

import http.client
import io
import socket
import struct
import threading

from wire_client import TEXT
from wire_schema import Exchange


class Incomplete(Exception):
    """The connection ended in the middle; nobody has read the rest."""


class Copy:
    """What went one way over a connection, to be read from its beginning."""

    def __init__(self):
        self.data = bytearray()
        self._at = 0

    def rest(self):
        return len(self.data) - self._at

    def take(self, count):
        if self.rest() < count:
            raise Incomplete
        self._at += count
        return bytes(self.data[self._at - count:self._at])

    def head(self):
        """The first line of a request or a reply as three words, and its headers in lower case."""
        end = self.data.find(b"\r\n\r\n", self._at)
        if end < 0:
            raise Incomplete
        line, _, fields = self.take(end + 4 - self._at).partition(b"\r\n")
        headers = http.client.parse_headers(io.BytesIO(fields))
        return line.decode().split(" ", 2), {name.lower(): value for name, value in headers.items()}

    def body(self, headers):
        return self.take(int(headers.get("content-length", 0))).decode()

    def frame(self):
        """A WebSocket frame: its first byte and what it holds."""
        first, second = self.take(2)
        length = second & 0x7F
        if length == 126:
            length = struct.unpack(">H", self.take(2))[0]
        elif length == 127:
            length = struct.unpack(">Q", self.take(8))[0]
        mask = self.take(4) if second & 0x80 else bytes(4)
        return first, bytes(byte ^ mask[i % 4] for i, byte in enumerate(self.take(length))) \
            if second & 0x80 else self.take(length)


class WireTap:
    """A port of its own that stays the same while what lies behind it comes and goes."""

    def __init__(self):
        self.port = 0
        self._listener = None
        self._copies = []  # (sent, received) of every connection

    def open(self, behind):
        """Lets callers through to a port of this machine."""
        self._listener = socket.create_server(("127.0.0.1", self.port))
        self.port = self._listener.getsockname()[1]
        threading.Thread(target=self._accept, args=(self._listener, behind), daemon=True).start()

    def close(self):
        """Nobody gets through any more; those who did see the end when the other side ends."""
        if self._listener:
            self._listener.shutdown(socket.SHUT_RDWR)
            self._listener.close()
            self._listener = None

    def _accept(self, listener, behind):
        while True:
            try:
                caller, _ = listener.accept()
            except OSError:
                return
            try:
                platform = socket.create_connection(("127.0.0.1", behind))
            except OSError:
                caller.close()
                continue
            copies = Copy(), Copy()
            self._copies.append(copies)
            left = threading.Barrier(2)
            for source, target, copy in ((caller, platform, copies[0]), (platform, caller, copies[1])):
                source.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
                threading.Thread(target=self._pass_on, args=(source, target, copy.data, left), daemon=True).start()

    @staticmethod
    def _pass_on(source, target, copy, left):
        try:
            while data := source.recv(65536):
                copy += data
                target.sendall(data)
        except OSError:
            pass  # one side is gone, so the other one hears of its end below
        try:
            target.shutdown(socket.SHUT_WR)
        except OSError:
            pass
        left.wait()
        source.close()

    # --- judging ---------------------------------------------------------------------------------

    def judge(self, description):
        """The offences of everything that went through."""
        offences = []
        for sent, received in self._copies:
            try:
                self._judge(sent, received, description, offences)
            except Incomplete:
                pass
        return offences

    @staticmethod
    def _judge(sent, received, description, offences):
        while sent.rest():
            (method, target, _), asked = sent.head()
            body = sent.body(asked)
            (_, status, _), answered = received.head()
            reply = received.body(answered)
            offences += description.exchange(Exchange(method, target, int(status), body, asked, reply, answered))
            if status == "101":
                WireTap._judge_frames(received, "send", description, offences)
                WireTap._judge_frames(sent, "receive", description, offences)

    @staticmethod
    def _judge_frames(copy, action, description, offences):
        try:
            while copy.rest():
                first, payload = copy.frame()
                if first & 0x80 == 0:
                    offences.append("feed: a part of a frame")
                elif first & 0x0F == TEXT:
                    offences += description.message(action, payload.decode())
        except Incomplete:
            pass
