#!/usr/bin/python3
"""Feeds our chart and others the same prices and prints what each takes. bench/run --peers prepares everything.

measure.py BIN PAGES OUT: the folder of our programs, that of the pages, one for the results."""

import json
import os
import random
import signal
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import prices
import process_tree
import programs
import table
from channel import Channel
from watch import Watch

FEW, USUAL, MANY = 1_000, 2_000, 100_000
TICKS = 1_000
FIRST, LEAST, WARM, MOST = 6, 8, 20, 40  # frames at once
ENOUGH_SECONDS = 0.6  # of the processor: many times what the system counts in
PATIENCE_SECONDS = 6.0
SETTLE_SECONDS, REST_SECONDS = 1.0, 1.2
PRICES = 25
ROUNDS, BUDGET_SECONDS = 3, 390  # on a busy machine there are fewer rounds
PAGES = {"lightweight": "lightweight-charts", "klinecharts": "klinecharts"}
# Where newest candle and price label are, in all of them; the rest of the screen need not be watched.
RIGHT_EDGE = "1450 0 150 900"


class Bench:
    def __init__(self, binaries, pages, out):
        self.binaries, self.pages, self.out = Path(binaries), Path(pages), Path(out)
        self.found, self.shown, self.failed = [], [], False
        prices.write(self.out / "prices.csv", MANY, TICKS)
        self.candles, self.ticks = prices.read(self.out / "prices.csv")
        self.draw = random.Random(prices.SEED)

    def note(self, program, figure, value):
        self.found.append((program, figure, value))
        with (self.out / "figures.jsonl").open("a") as file:
            file.write(json.dumps([program, figure, value]) + "\n")

    def columns(self):
        """Those that are here; a line for each that is not."""
        found = [("chart", "Tavoran")]
        if (self.binaries / "tavoran-plot-host").exists():
            found.append(("plot", "QCustomPlot " + package_version("libqcustomplot-dev")))
        else:
            say("QCustomPlot is not here; its figures will be missing")
        for program, package in PAGES.items():
            installed = self.pages / "node_modules" / package / "package.json"
            if not os.path.exists(programs.CHROMIUM):
                say(f"Chromium is not here; the figures of {package} will be missing")
            elif not installed.exists():
                say(f"{package} is not installed; its figures will be missing")
            else:
                found.append((program, f"{package} {json.loads(installed.read_text())['version']}"))
        return found

    def command(self, program, port):
        host = self.binaries / f"tavoran-{program}-host"
        if host.exists():
            return lambda _: [str(host), str(port)]
        page = "bare" if program == "page" else program
        return lambda folder: programs.page_command(page, port, folder)

    def session(self, program, display, count, work):
        """Starts a program, opens a chart of the newest candles in it and does something with it."""
        channel = Channel(self.pages)
        try:
            with programs.running(self.command(program, channel.port), display) as process:
                line = channel.line()
                try:
                    answer = self.load(line, count, 7)
                    work(program, process.pid, line, answer)
                finally:
                    line.close()
        finally:
            channel.close()

    def load(self, line, count, width):
        line.give(self.candles[-count:])
        line.give(self.ticks)
        answer = line.ask({"do": "load", "width": width})
        if min(answer.get("size", [1600, 900])) < 900 or answer.get("size", [1600])[0] < 1600:
            raise RuntimeError(f"the page is too small: {answer['size']}")
        return answer

    def memory(self, figure, samples):
        """The least of some samples: a browser gives back what loading took only by and by."""
        def work(program, process, line, _):
            taken = []
            for _ in range(samples):
                line.ask({"do": "rest"})
                time.sleep(REST_SECONDS)
                taken.append(process_tree.megabytes(process))
            self.note(program, figure, min(taken))
        return work

    def memory_and_ticks(self, program, process, line, answer):
        self.memory("memory_100000", 5)(program, process, line, answer)
        self.frames(program, process, line, "tick", "tick_loaded")

    def all_frames(self, program, process, line, answer):
        self.shown.append(answer["values"])
        for width in (7, 1):
            if width != 7:
                answer = self.load(line, USUAL, width)
            self.note(program, f"bars_{width}", answer["bars"])
            for kind in ("tick", "pointer", "pan"):
                self.frames(program, process, line, kind, f"{kind}_{width}")

    def frames(self, program, process, line, kind, figure):
        """Processor time a frame, of all processes of the program, and the median of the time on the clock."""
        warm = line.ask({"do": "frames", "kind": kind, "count": FIRST})["took"]
        batch = max(LEAST, min(MOST, round(1000 / statistics.median(warm))))
        line.ask({"do": "frames", "kind": kind, "count": min(batch, WARM)})
        time.sleep(0.2)
        took, used, began = [], 0.0, time.monotonic()
        before = process_tree.seconds(process)
        while used < ENOUGH_SECONDS and time.monotonic() - began < PATIENCE_SECONDS:
            took += line.ask({"do": "frames", "kind": kind, "count": batch})["took"]
            used = process_tree.seconds(process) - before
        time.sleep(0.3)  # what other processes have still to do for the last frames
        used = process_tree.seconds(process) - before
        self.note(program, f"{figure}_cpu", used / len(took) * 1000)
        self.note(program, f"{figure}_wall", statistics.median(took))

    def price_to_pixel(self, watch):
        def work(program, _process, line, _answer):
            time.sleep(SETTLE_SECONDS)
            part = self.moving_part(watch, line)
            late = [ms for ms in (self.one_price(watch, line, part) for _ in range(PRICES)) if ms is not None]
            if len(late) < PRICES // 2:
                raise RuntimeError(f"only {len(late)} prices of {PRICES} were seen")
            for ms in late:
                self.note(program, "pixel", ms)
        return work

    def moving_part(self, watch, line):
        """The part of the screen that prices change."""
        for _ in range(3):  # on a busy machine the first ones may come too late
            watch.begin(f"moving {RIGHT_EDGE} 2000")
            for bid, ask in self.ticks[:10]:
                line.tell({"bid": bid, "ask": ask})
                time.sleep(0.1)
            part = watch.moved()
            if part:
                return part
        raise RuntimeError("no price has reached the screen")

    def one_price(self, watch, line, part):
        """Milliseconds from a price's way into the socket to its first pixel."""
        bid, ask = next(self.live)
        # At no fixed beat, and when the last price has been drawn for long.
        time.sleep(0.1 + self.draw.random() * 0.05)
        watch.begin(f"change {part} 2000")
        sent = line.tell({"bid": bid, "ask": ask})
        seen = watch.seen()
        return None if seen is None else (seen - sent) / 1e6

    def attempt(self, program, display, count, work):
        """What fails leaves its figures out, and the others are taken all the same."""
        try:
            self.live = iter(self.ticks[10:])
            self.session(program, display, count, work)
        except (OSError, RuntimeError, subprocess.SubprocessError) as error:
            say(f"{program} could not be measured: {error}")
            self.failed = True

    def run(self):
        columns = self.columns()
        with tempfile.TemporaryDirectory(prefix="tavoran-peers-", dir="/dev/shm") as folder, \
                programs.screen(folder) as display, \
                Watch(str(self.binaries / "tavoran-pixel-watch"), Path(folder) / "Xvfb_screen0") as watch:
            first = [program for program, _ in columns]  # in another round somebody else is first
            took, began = 0.0, time.monotonic()
            for number in range(ROUNDS):
                if time.monotonic() - began + took > BUDGET_SECONDS:
                    break
                say(f"Round {number + 1} of {ROUNDS}")
                began_round = time.monotonic()
                self.round(first[number:] + first[:number], display, watch)
                took = max(took, time.monotonic() - began_round)
        return columns

    def round(self, order, display, watch):
        bare = ("bare", "page") if any(program in PAGES for program in order) else ("bare",)
        for program in bare:
            self.attempt(program, display, FEW, self.memory("memory_bare", 2))
        for count, work in ((FEW, self.memory("memory_1000", 2)), (MANY, self.memory_and_ticks),
                            (USUAL, self.all_frames), (USUAL, self.price_to_pixel(watch))):
            for program in order:
                self.attempt(program, display, count, work)

    def report(self, columns):
        values = table.medians(self.found)
        for program, _ in columns:
            late = [value for name, figure, value in self.found if (name, figure) == (program, "pixel")]
            if late:
                values[program, "pixel_median"] = statistics.median(late)
                values[program, "pixel_late"] = table.percentile(late, 0.95)
            bare = ("page" if program in PAGES else "bare", "memory_bare")
            if bare in values:
                values[program, "memory_bare"] = values[bare]
        text = table.table(values, columns)
        (self.out / "table.md").write_text(text + "\n")
        print(text)
        print("Frames: ms of processor time, of all processes of a program / ms on the clock.")
        differ = table.disagreement(self.shown)
        if differ is not None:
            print(f"Averages and RSI of the newest candle differ by {differ:.1e} at most.")
            self.failed = self.failed or differ > 1e-6


def say(text):
    print(f"== {text}", flush=True)


def package_version(package):
    told = subprocess.run(["dpkg-query", "-W", "-f=${Version}", package], capture_output=True, text=True)
    return told.stdout.split("+")[0] if told.returncode == 0 else ""


def machine():
    models = [line.partition(":")[2].strip() for line in Path("/proc/cpuinfo").read_text().splitlines()
              if line.startswith("model name")]
    return f"{len(models)} x {models[0] if models else 'unknown'}, load {os.getloadavg()[0]:.1f} at the start"


def main():
    binaries, pages, out = sys.argv[1:]
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # not without ending what was started
    print(time.strftime("%Y-%m-%d", time.gmtime()), machine(), sep=", ")
    bench = Bench(binaries, pages, out)
    bench.report(bench.run())
    sys.exit(1 if bench.failed else 0)


if __name__ == "__main__":
    main()
