"""Lies between a terminal and its platform and hands everything on as it comes, with a copy to judge later."""

import socket
import threading
import time

from wire_copy import Copy, judge_connection


class WireTap:
    """A port of its own that stays the same while what lies behind it comes and goes."""

    def __init__(self):
        self.port = 0
        self._listener = None
        self._copies = []  # (sent, received) of every connection
        self._delays = {}  # seconds, by the beginnings of requests

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

    def delay(self, request, seconds):
        """From now on requests that begin like this, \"POST /path\", take so long on their way; 0: as short as ever."""
        self._delays[request.encode()] = seconds

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

    def _pass_on(self, source, target, copy, left):
        try:
            while data := source.recv(65536):
                copy += data
                time.sleep(max((wait for begin, wait in list(self._delays.items()) if data.startswith(begin)), default=0))
                target.sendall(data)
        except OSError:
            pass  # one side is gone, so the other one hears of its end below
        try:
            target.shutdown(socket.SHUT_WR)
        except OSError:
            pass
        left.wait()
        source.close()

    def judge(self, description):
        """The offences of everything that went through."""
        return [offence for sent, received in self._copies
                for offence in judge_connection(sent, received, description)]
