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

import likeness
import price_to_pixel
import prices
import process_tree
import programs
import table
from channel import Channel
from price_to_pixel import PriceToPixel
from watch import Watch

FEW, USUAL, MANY = 1_000, 2_000, 100_000
TICKS = 1_000
FIRST, LEAST, WARM, MOST = 6, 8, 20, 40  # frames at once
ENOUGH_SECONDS = 0.6  # of the processor: many times what the system counts in
PATIENCE_SECONDS = 6.0
SETTLE_SECONDS, REST_SECONDS = 1.0, 1.2
ROUNDS, BUDGET_SECONDS = 3, 720  # on a busy machine there are fewer rounds
PAGES = {"lightweight": "lightweight-charts", "klinecharts": "klinecharts"}
KINDS, WIDTHS = ("tick", "pointer", "pan"), (7, 1)


class Bench:
    def __init__(self, binaries, pages, out):
        self.binaries, self.pages, self.out = Path(binaries), Path(pages), Path(out)
        self.found, self.failed, self.rounds = [], False, 0
        self.shown = {"as loaded": [], "after a price": []}
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

    def all_frames(self, watch):
        def work(program, process, line, answer):
            self.shown["as loaded"].append(answer["values"])
            line.ask({"do": "frames", "kind": "tick", "count": 1})
            self.shown["after a price"].append(line.ask({"do": "shown"})["values"])
            for kind in KINDS:
                PriceToPixel(watch, line).check_frames(kind, FIRST)
            for width in WIDTHS:
                if width != WIDTHS[0]:
                    answer = self.load(line, USUAL, width)
                self.note(program, f"bars_{width}", answer["bars"])
                for kind in KINDS:
                    self.frames(program, process, line, kind, f"{kind}_{width}")
        return work

    def bare_frames(self, program, process, line, answer):
        self.memory("memory_bare", 2)(program, process, line, answer)
        self.frames(program, process, line, "tick", "frame_bare")

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
            samples = PriceToPixel(watch, line).samples(self.ticks, self.draw)
            for figure, value in price_to_pixel.figures(samples):
                self.note(program, figure, value)
            missed = samples.count(None)
            if missed > len(samples) // 2:
                raise RuntimeError(f"{missed} prices of {len(samples)} were not seen")
        return work

    def attempt(self, program, display, count, work):
        """What fails leaves its figures out, and the others are taken all the same."""
        try:
            self.session(program, display, count, work)
        except (OSError, RuntimeError, subprocess.SubprocessError) as error:
            say(f"{program} could not be measured: {error}")
            self.failed = True

    def run(self):
        columns = self.columns()
        with tempfile.TemporaryDirectory(prefix="tavoran-peers-", dir="/dev/shm") as folder, \
                programs.screen(folder) as display, \
                Watch(str(self.binaries / "tavoran-pixel-watch"), Path(folder) / "Xvfb_screen0") as watch:
            say("Processors are kept from sleeping" if watch.awake else "Processors may go to sleep between two frames")
            first = [program for program, _ in columns]  # in another round somebody else is first
            took, began = 0.0, time.monotonic()
            for number in range(ROUNDS):
                if time.monotonic() - began + took > BUDGET_SECONDS:
                    break
                say(f"Round {number + 1} of {ROUNDS}")
                began_round = time.monotonic()
                self.round(first[number:] + first[:number], display, watch)
                took = max(took, time.monotonic() - began_round)
                self.rounds += 1
        return columns

    def round(self, order, display, watch):
        bare = ("bare", "page") if any(program in PAGES for program in order) else ("bare",)
        for program in bare:
            self.attempt(program, display, FEW, self.bare_frames)
        for count, work in ((FEW, self.memory("memory_1000", 2)), (MANY, self.memory_and_ticks),
                            (USUAL, self.all_frames(watch)), (USUAL, self.price_to_pixel(watch))):
            for program in order:
                self.attempt(program, display, count, work)

    def report(self, columns):
        values = table.medians(self.found)
        for program, _ in columns:
            late = [value for name, figure, value in self.found if (name, figure) == (program, "pixel")]
            if late:
                values[program, "pixel_median"] = statistics.median(late)
                values[program, "pixel_late"] = table.percentile(late, 0.95)
            missed = [value for name, figure, value in self.found if (name, figure) == (program, "pixel_missed")]
            if missed:
                values[program, "pixel_missed"], values[program, "pixel_sent"] = sum(missed), len(missed)
            for figure in ("memory_bare", "frame_bare_cpu", "frame_bare_wall"):
                bare = ("page" if program in PAGES else "bare", figure)
                if bare in values:
                    values[program, figure] = values[bare]
        text = table.table(values, columns)
        (self.out / "table.md").write_text(text + "\n")
        print(text)
        print(f"Medians of {self.rounds} rounds; of memory the least of some samples in each.")
        print("Frames: ms of processor time, of all processes of a program / ms on the clock.")
        for text, alike in likeness.findings(self.shown, values, columns, WIDTHS):
            print(text)
            self.failed = self.failed or not alike


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
