"""The two programs of the tour: the practice platform and the terminal, as real processes."""

import json
import os
import re
import signal
import subprocess
import sys
import time
import urllib.error
import urllib.request
from pathlib import Path

sys.path.append(str(Path(__file__).parent.parent / "wire"))

from wire_schema import WireDescription  # noqa: E402
from wire_tap import WireTap  # noqa: E402

EMAIL = "trader@practice.local"
PASSWORD = "practice"
DOCS = Path(__file__).parent.parent.parent / "docs"


class Platform:
    """The practice platform, and a plain client of our own that asks it for its records. All that goes to it
    and comes from it passes a tap; what it records is in `recordings`, a file for each of its starts."""

    def __init__(self, binary, folder, options=()):
        self._binary, self._folder = binary, folder
        self._options = list(options)
        self._process = None
        self._token = None
        self._tap = WireTap()
        self.recordings = []
        self.address = None

    @property
    def database(self):
        return self._folder / "practice.db"

    def start(self):
        log = self._folder / "platform.log"
        self.recordings.append(self._folder / f"session-{len(self.recordings) + 1}")
        with open(log, "w", encoding="utf-8") as output:
            self._process = subprocess.Popen(
                [self._binary, "--port", "0", "--db", str(self.database), "--seed", "7",
                 "--record", str(self.recordings[-1]), *self._options],
                stdout=output, stderr=subprocess.STDOUT)
        deadline = time.monotonic() + 15
        while time.monotonic() < deadline and self._process.poll() is None:
            found = re.search(r"Listening on http://\S+:(\d+)", log.read_text(encoding="utf-8"))
            if found:
                self._tap.open(int(found.group(1)))
                self.address = f"http://127.0.0.1:{self._tap.port}"
                return
            time.sleep(0.05)
        raise RuntimeError(f"the practice platform did not start: {log.read_text(encoding='utf-8')}")

    def kill(self):
        """Ends it the hard way, as a power cut would."""
        self._tap.close()
        self._process.send_signal(signal.SIGKILL)
        self._process.wait()

    def stop(self):
        if self._process and self._process.poll() is None:
            self._tap.close()
            self._process.terminate()
            self._process.wait(10)

    def delay_orders(self, seconds):
        """From now on each order takes so long until it is there."""
        self._tap.delay("POST /api/trades/place", seconds)

    def offences(self, long):
        """What of all that has passed is not as the wire is described. A `long` run has met every kind of message."""
        description = WireDescription(DOCS)
        offences = self._tap.judge(description)
        unmet = description.unmet() if long else ()
        return offences + [f"nothing has passed of {entry}" for entry in (
            "send hello", "receive ping", "POST /api/auth/login 200", "POST /api/trades/place 200") if entry in unmet]

    def get(self, path):
        if self._token is None:
            self._token = self._ask("/api/auth/login", {"email": EMAIL, "password": PASSWORD})["token"]
        return self._ask(path)

    def _ask(self, path, body=None):
        request = urllib.request.Request(self.address + path, data=json.dumps(body).encode() if body else None)
        request.add_header("Content-Type", "application/json")
        if self._token:
            request.add_header("Authorization", "Bearer " + self._token)
        with urllib.request.urlopen(request, timeout=10) as reply:
            return json.load(reply)

    def post(self, path, body):
        self.get("/api/accounts")
        return self._ask(path, body)

    def account(self, accept):
        return next(account for account in self.get("/api/accounts") if accept(account))

    def demo_account(self):
        return self.account(lambda account: account["type"] == "DEMO")

    def trades(self, kind):
        """The trades of every account that are "open", "pending" or "history"."""
        return [trade for account in self.get("/api/accounts")
                for trade in self.get(f"/api/trades/{kind}?accountId=" + account["id"])]

    def drawings(self, symbol, account_id):
        """The kinds of the objects that are kept for a chart, sorted."""
        records = self.get(f"/api/drawings?symbol={symbol}&accountId={account_id}")
        return sorted(record["toolType"] for record in records)


class Terminal:
    """The terminal, with a profile of its own that lasts from run to run. Its texts are in `language`."""

    def __init__(self, binary, profile, address, language="en"):
        self._binary, self._profile, self.language = binary, profile, language
        self._process = None
        for name in ("config", "data", "cache", "home", "tmp"):
            (profile / name).mkdir(parents=True, exist_ok=True)
        settings = profile / "config/Tavoran/Terminal.conf"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.touch(mode=0o600)
        settings.write_text(f"[auth]\nserverUrl={address}\nemail={EMAIL}\n\n[ui]\ntheme=dark\n", encoding="utf-8")

    @property
    def log(self):
        return (self._profile / "tmp/tavoran-terminal.log").read_text(encoding="utf-8")

    @property
    def settings(self):
        return (self._profile / "config/Tavoran/Terminal.conf").read_text(encoding="utf-8")

    @property
    def pid(self):
        return self._process.pid

    def start(self):
        environment = dict(os.environ)
        environment.update(
            HOME=str(self._profile / "home"), XDG_CONFIG_HOME=str(self._profile / "config"),
            XDG_DATA_HOME=str(self._profile / "data"), XDG_CACHE_HOME=str(self._profile / "cache"),
            TMPDIR=str(self._profile / "tmp"), LANGUAGE=self.language)
        output = open(self._profile / "terminal.out", "ab")
        self._process = subprocess.Popen([self._binary], env=environment, stdout=output, stderr=output)
        output.close()

    def running(self):
        return self._process is not None and self._process.poll() is None

    def exit_code(self, seconds=10):
        try:
            return self._process.wait(seconds)
        except subprocess.TimeoutExpired:
            return None

    def stop(self):
        if self.running():
            self._process.kill()
            self._process.wait()
