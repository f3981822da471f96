#!/usr/bin/python3
"""Start-up on a virtual desktop, against a server that takes its time to answer the first question.

While the terminal waits, its splash screen is painted; what is typed or clicked meanwhile reaches
nothing, neither at once nor later in the sign-in dialog. Then once more for a German. The exit code is 0 only when all was seen.
"""

import argparse
import http.server
import json
import shutil
import sys
import tempfile
import threading
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))

from desktop import Desktop, wait_until  # noqa: E402
from programs import EMAIL, Terminal  # noqa: E402
from reader import Reader  # noqa: E402

SPLASH_BACKGROUND = bytes((0x0B, 0x12, 0x20))
SPLASH_BORDER = bytes((0x45, 0x45, 0x45))
SPLASH_SIZE = (480, 280)
ATTEMPTS = 8


class SlowServer:
    """Keeps the public settings back until it is told to answer; refuses everything else."""

    def __init__(self):
        self.asked = threading.Event()
        self.answer = threading.Event()
        owner = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                owner.asked.set()
                owner.answer.wait(30)
                self._reply(200, b'{"settings":{}}')

            def do_POST(self):
                length = int(self.headers["Content-Length"])
                owner.sign_ins.append(json.loads(self.rfile.read(length)))
                self._reply(503, b'{"message":"Closed for today"}')

            def _reply(self, status, body):
                try:
                    self.send_response(status)
                    self.send_header("Content-Length", str(len(body)))
                    self.end_headers()
                    self.wfile.write(body)
                except BrokenPipeError:
                    pass  # the terminal waits no longer

            def log_message(self, *_):
                pass

        self.sign_ins = []
        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self._server.server_port}"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def close(self):
        self.answer.set()
        self._server.shutdown()
        self._server.server_close()


class StartUp:
    # The terminal gives the server three seconds; what is done meanwhile must be done in good time.
    IN_GOOD_TIME = 2.4
    EARLY, LATE = "early", "now"

    def __init__(self, binary, out, folder):
        self.out, self.folder = out, folder
        self.binary = str(binary)
        self.desktop = Desktop()
        self.reader = Reader()
        self.failures = 0

    def close(self):
        self.desktop.close()

    def seen(self, outcome, what):
        print(f"{'ok  ' if outcome else 'FAIL'} {what}", flush=True)
        if not outcome:
            self.failures += 1
        return outcome

    def splash_is_painted(self):
        """Whether the middle of the screen shows the splash screen's border, ground and version line."""
        width, height = SPLASH_SIZE
        data = self.desktop.pixels(
            (self.desktop.width - width) // 2, (self.desktop.height - height) // 2, width, height)

        def pixel(x, y):
            return data[(y * width + x) * 3:(y * width + x) * 3 + 3]

        border = all(pixel(x, y) == SPLASH_BORDER for x, y in ((0, 0), (width - 1, 0), (width - 1, height - 1)))
        ground = all(pixel(x, y) == SPLASH_BACKGROUND for x, y in ((2, 2), (width - 3, height - 3), (240, 20)))
        version_line = any(pixel(x, y) != SPLASH_BACKGROUND for y in range(236, 252) for x in range(150, 330))
        return border and ground and version_line

    def sign_in_dialog(self, process_id, button="Login"):
        return wait_until(lambda: self.reader.window(
            process_id, lambda item: item.shown and item.find("push button", button)))

    def run(self):
        for attempt in range(ATTEMPTS):
            profile = self.folder / str(attempt)
            server = SlowServer()
            terminal = Terminal(self.binary, profile, server.address)
            try:
                if self.attempt(server, terminal):
                    self.speak_german()
                    return self.failures == 0
                print("     the splash screen was not seen in good time, or the machine was too slow to act; once more", flush=True)
            finally:
                terminal.stop()
                server.close()
        print(f"FAIL nothing could be done while the terminal waited, {ATTEMPTS} times", flush=True)
        return False

    def speak_german(self):
        server = SlowServer()
        server.answer.set()
        terminal = Terminal(self.binary, self.folder / "de", server.address, language="de_AT:en")
        try:
            terminal.start()
            dialog = self.sign_in_dialog(terminal.pid, "Anmelden")
            self.desktop.screenshot(self.out / "dialog-german.png")
            self.seen(dialog and dialog.find("push button", "Abbrechen"), "a German is asked in German")
        finally:
            terminal.stop()
            server.close()

    def attempt(self, server, terminal):
        """One start. False when the terminal stopped waiting before everything was done."""
        terminal.start()
        if not self.seen(server.asked.wait(30), "the terminal asks for the public settings"):
            return True
        asked = time.monotonic()
        painted = wait_until(self.splash_is_painted, self.IN_GOOD_TIME)
        self.desktop.key(*self.EARLY, "Escape", "Return", "space")
        self.desktop.click(self.desktop.width // 2, self.desktop.height // 2, times=2)
        # The next picture of a splash screen that hides itself on a click would show it gone.
        still_painted = not wait_until(lambda: not self.splash_is_painted(), 0.4)
        self.desktop.screenshot(self.out / "splash.png")
        if time.monotonic() - asked > self.IN_GOOD_TIME:
            return False

        self.seen(painted, "the splash screen is painted while the server keeps its answer back")
        self.seen(still_painted, "keys and clicks leave it standing")
        server.answer.set()
        dialog = self.sign_in_dialog(terminal.pid)
        if not self.seen(dialog, "the answer brings the sign-in dialog"):
            return True
        gone = wait_until(lambda: not self.splash_is_painted())
        self.seen(gone, "and the splash screen goes")
        # Keys arrive in order: once the later ones are there, nothing of the early ones is to come.
        self.desktop.type(self.LATE)
        self.desktop.key("Return")
        refused = wait_until(lambda: (now := self.sign_in_dialog(terminal.pid)) and now.find(
            "notification", "Closed for today"))
        self.desktop.screenshot(self.out / "dialog.png")
        self.seen(refused, "which signs in on the later Return")
        self.seen(server.sign_ins == [{"email": EMAIL, "password": self.LATE}],
                  f"once, with the stored address and with nothing of the early keys: {server.sign_ins}")
        self.desktop.key("Escape")
        self.seen(terminal.exit_code() == 0, "Escape in the dialog ends the terminal, exit code 0")
        return True


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--bin", type=Path, required=True, help="folder of the program")
    arguments.add_argument("--out", type=Path, required=True, help="folder for the screenshots")
    options = arguments.parse_args()
    options.out.mkdir(parents=True, exist_ok=True)
    folder = Path(tempfile.mkdtemp(prefix="tavoran-start-up-"))
    start_up = StartUp(options.bin.resolve() / "tavoran-terminal", options.out, folder)
    try:
        passed = start_up.run()
    finally:
        start_up.close()
        shutil.rmtree(folder)
    return 0 if passed else 1


if __name__ == "__main__":
    sys.exit(main())
