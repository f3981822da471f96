"""Copies of what went over one connection, read again from their beginning and judged."""

import http.client
import io
import re
import struct
from dataclasses import dataclass, field

from wire_client import TEXT
from wire_schema import Exchange

REQUEST_LINE = re.compile(r"([A-Z]+) (\S+) HTTP/1\.[01]")
FIELD = re.compile(r"[!-9;-~]+:[^\r\n]*")
LENGTH = re.compile(r"\d{1,18}")


class Incomplete(Exception):
    """The connection ended in the middle; nobody has read the rest."""


class Copy:
    """What went one way over a connection."""

    def __init__(self, data=b""):
        self.data = bytearray(data)
        self._at = 0

    def rest(self):
        return len(self.data) - self._at

    def take(self, count):
        if self.rest() < count:
            raise Incomplete
        self._at += count
        return bytes(self.data[self._at - count:self._at])

    def take_until(self, mark):
        end = self.data.find(mark, self._at)
        if end < 0:
            raise Incomplete
        return self.take(end + len(mark) - self._at)

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


@dataclass
class Request:
    """Method and target are empty where what was sent is no HTTP."""
    method: str = ""
    target: str = ""
    headers: dict = field(default_factory=dict)
    body: str = ""
    whole: bool = False


def fields(text):
    return {name.lower(): value for name, value in http.client.parse_headers(io.BytesIO(text)).items()}


def read_request(sent):
    """The next request as far as it was sent. Nothing that follows one that is not whole can be read."""
    request = Request()
    try:
        line, _, rest = sent.take_until(b"\r\n\r\n").partition(b"\r\n")
        words = REQUEST_LINE.fullmatch(line.decode("latin-1"))
        lines = rest.decode("latin-1").split("\r\n")[:-2]
        headers = fields(rest)
        if not words or not all(map(FIELD.fullmatch, lines)) \
                or not LENGTH.fullmatch(headers.get("content-length", "0")):
            return request
        request.method, request.target, request.headers = words[1], words[2], headers
        request.body = read_body(sent, headers)
        request.whole = True
    except Incomplete:
        pass
    return request


def read_body(copy, headers):
    if headers.get("transfer-encoding") != "chunked":
        return copy.take(int(headers.get("content-length", 0))).decode(errors="replace")
    body = b""
    while size := int(copy.take_until(b"\r\n"), 16):
        body += copy.take(size)
        copy.take_until(b"\r\n")
    copy.take_until(b"\r\n")
    return body.decode(errors="replace")


def read_reply(received, method):
    """Status, headers and body of the next reply that is one, not a leave to go on."""
    while True:
        line, _, rest = received.take_until(b"\r\n\r\n").partition(b"\r\n")
        status = int(line.split(b" ", 2)[1])
        if status != 100:
            headers = fields(rest)
            return status, headers, "" if method == "HEAD" else read_body(received, headers)


def judge_connection(sent, received, description, asked=True):
    """The offences of one connection against the description; what nobody has read to its end is none. What was
    asked is judged unless it is a check's, which may try more than a terminal asks for.
    """
    offences = []
    while sent.rest():
        request = read_request(sent)
        try:
            status, headers, body = read_reply(received, request.method)
        except Incomplete:
            break
        exchange = Exchange(
            request.method, request.target, status, request.body, request.headers, body, headers)
        if request.method == "HEAD":
            continue  # nothing that a terminal sends
        if not request.method:
            offences += description.refusal(exchange)
        elif not request.whole and status < 400:
            offences.append(f"{exchange}: half a request was answered")
        else:
            offences += description.exchange(exchange, asked)
        if status == 101:
            offences += judge_frames(received, "send", description)
            offences += judge_frames(sent, "receive", description) if asked else []
        if not request.whole:
            break
    return offences


def judge_frames(copy, action, description):
    offences = []
    try:
        while copy.rest():
            first, payload = copy.frame()
            if first & 0x80 == 0:
                offences.append("feed: a part of a frame")
            elif first & 0x0F == TEXT:
                offences += description.message(action, payload.decode())
    except Incomplete:
        pass
    return offences
