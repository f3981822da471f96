"""A loopback server for one program at a time: the files of a folder, and a WebSocket that tells it what to do."""

import base64
import hashlib
import json
import queue
import socket
import struct
import threading
import time
from functools import partial
from http.server import SimpleHTTPRequestHandler, ThreadingHTTPServer

TEXT, BINARY, CLOSE, PING, PONG = 1, 2, 8, 9, 10


def frame(opcode, payload):
    """A message as a server sends it: one frame without a mask."""
    size = len(payload)
    if size < 126:
        head = struct.pack(">BB", 0x80 | opcode, size)
    elif size < 65536:
        head = struct.pack(">BBH", 0x80 | opcode, 126, size)
    else:
        head = struct.pack(">BBQ", 0x80 | opcode, 127, size)
    return head + payload


def accept_key(key):
    digest = hashlib.sha1((key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11").encode()).digest()
    return base64.b64encode(digest).decode()


def read_message(stream):
    """Opcode and payload of the next whole message of a client."""
    kind, whole = None, b""
    while True:
        first, second = exactly(stream, 2)
        size = second & 0x7F
        if size >= 126:
            size = int.from_bytes(exactly(stream, 2 if size == 126 else 8), "big")
        mask = exactly(stream, 4)
        payload = exactly(stream, size)
        part = bytes(byte ^ mask[i % 4] for i, byte in enumerate(payload))
        opcode = first & 0x0F
        if opcode >= CLOSE:
            return opcode, part
        kind, whole = opcode or kind, whole + part
        if first & 0x80:
            return kind, whole


def exactly(stream, count):
    data = stream.read(count)
    if len(data) < count:
        raise ConnectionError("the program has gone")
    return data


class Line:
    """The socket of one program."""

    def __init__(self, connection):
        self._socket = connection
        self._socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self._stream = connection.makefile("rb")
        self.closed = threading.Event()

    def tell(self, message):
        """Sends a message; when it was handed to the socket, in ns of the monotonic clock."""
        data = frame(TEXT, json.dumps(message).encode())
        moment = time.monotonic_ns()
        self._socket.sendall(data)
        return moment

    def give(self, rows):
        """Sends rows of numbers."""
        numbers = [number for row in rows for number in row]
        self._socket.sendall(frame(BINARY, struct.pack(f"<{len(numbers)}d", *numbers)))

    def ask(self, message, patience=120.0):
        self.tell(message)
        return self.answer(patience)

    def answer(self, patience):
        self._socket.settimeout(patience)
        while True:
            opcode, payload = read_message(self._stream)
            if opcode == TEXT:
                return json.loads(payload)
            if opcode == PING:
                self._socket.sendall(frame(PONG, payload))
            elif opcode == CLOSE:
                raise ConnectionError("the program has closed its line")

    def close(self):
        self.closed.set()


class Channel:
    """Serves a folder on a free loopback port."""

    def __init__(self, folder):
        self._lines = queue.Queue()
        self._server = ThreadingHTTPServer(("127.0.0.1", 0), partial(Handler, self._lines, directory=str(folder)))
        self._server.daemon_threads = True
        self.port = self._server.server_address[1]
        threading.Thread(target=self._server.serve_forever, args=(0.05,), daemon=True).start()

    def line(self, patience=30.0):
        """The line of the next program that has connected."""
        try:
            return self._lines.get(timeout=patience)
        except queue.Empty:
            raise TimeoutError("the program has not connected") from None

    def close(self):
        self._server.shutdown()
        self._server.server_close()


class Handler(SimpleHTTPRequestHandler):
    extensions_map = {**SimpleHTTPRequestHandler.extensions_map, ".mjs": "text/javascript", ".js": "text/javascript"}
    protocol_version = "HTTP/1.1"

    def __init__(self, lines, *arguments, **named):
        self._lines = lines
        super().__init__(*arguments, **named)

    def do_GET(self):
        if self.headers.get("Upgrade", "").lower() != "websocket":
            super().do_GET()
            return
        self.send_response(101)
        for name, value in (("Upgrade", "websocket"), ("Connection", "Upgrade"),
                            ("Sec-WebSocket-Accept", accept_key(self.headers["Sec-WebSocket-Key"]))):
            self.send_header(name, value)
        self.end_headers()
        line = Line(self.connection)
        self._lines.put(line)
        line.closed.wait()
        self.close_connection = True

    def log_message(self, *_):
        pass
