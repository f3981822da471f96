"""HTTP and WebSocket by hand, as plain as the checks need them; a silent peer ends in TimeoutError."""

import base64
import hashlib
import http.client
import os
import socket
import struct

from wire_schema import Exchange

PATIENCE = 15.0
TEXT, PING, PONG = 1, 9, 10


def ask(port, method, target, body="", headers=()):
    """One request on a connection of its own."""
    sent = {"Content-Type": "application/json", **dict(headers)}
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=PATIENCE)
    try:
        connection.request(method, target, body.encode() or None, sent)
        reply = connection.getresponse()
        return Exchange(
            method, target, reply.status, body, {name.lower(): value for name, value in sent.items()},
            reply.read().decode(), {name.lower(): value for name, value in reply.getheaders()})
    finally:
        connection.close()


class Feed:
    """A handshake and, when it succeeds, the messages behind it."""

    def __init__(self, port, target, headers=()):
        self._socket = socket.create_connection(("127.0.0.1", port), PATIENCE)
        self._stream = self._socket.makefile("rb")
        key = base64.b64encode(os.urandom(16)).decode()
        sent = {"Host": f"127.0.0.1:{port}", "Connection": "Upgrade", "Upgrade": "websocket",
                "Sec-WebSocket-Version": "13", "Sec-WebSocket-Key": key, **dict(headers)}
        lines = [f"GET {target} HTTP/1.1", *(f"{name}: {value}" for name, value in sent.items()), "", ""]
        self._socket.sendall("\r\n".join(lines).encode())
        status = int(self._stream.readline().split()[1])
        answered = http.client.parse_headers(self._stream)
        body = "" if status == 101 else self._stream.read(int(answered["Content-Length"])).decode()
        self.exchange = Exchange(
            "GET", target, status, "", {name.lower(): value for name, value in sent.items()},
            body, {name.lower(): value for name, value in answered.items()})
        digest = hashlib.sha1((key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11").encode()).digest()
        if status == 101 and answered["Sec-WebSocket-Accept"] != base64.b64encode(digest).decode():
            raise ConnectionError("the handshake was answered with a wrong key")

    def close(self):
        self._stream.close()
        self._socket.close()

    def send(self, text, opcode=TEXT):
        payload, mask = text.encode(), os.urandom(4)
        if len(payload) > 125:
            raise ValueError("longer than anything a terminal sends")
        self._socket.sendall(bytes((0x80 | opcode, 0x80 | len(payload))) + mask
                             + bytes(byte ^ mask[i % 4] for i, byte in enumerate(payload)))

    def receive(self):
        """The next text message."""
        while True:
            first, second = self._exactly(2)
            length = second & 0x7F
            if length == 126:
                length = struct.unpack(">H", self._exactly(2))[0]
            elif length == 127:
                length = struct.unpack(">Q", self._exactly(8))[0]
            payload = self._exactly(length).decode()
            if second & 0x80 or not first & 0x80:
                raise ConnectionError("a masked frame, or a part of one")
            if first & 0x0F == TEXT:
                return payload
            if first & 0x0F == PING:
                self.send(payload, PONG)
            elif first & 0x0F != PONG:
                raise ConnectionError(f"a frame of kind {first & 0x0F}")

    def _exactly(self, count):
        data = self._stream.read(count)
        if len(data) < count:
            raise ConnectionError("the feed ended")
        return data
