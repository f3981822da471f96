"""Looks at the lab's pages in a browser: report_picture.py SAMPLE_PAGES [FOLDER]

SAMPLE_PAGES is the program that writes them. Every page has to be well-formed; then Chromium shows each of them, light
and dark, wide and narrow: every chart has to have drawn, nothing may be wider than the window, and the console has to
be silent. FOLDER gets pictures to look at. Without Chromium the second half is skipped (exit status 77).
"""

import html
import json
import re
import shutil
import subprocess
import sys
import tempfile
from html.parser import HTMLParser
from pathlib import Path

SKIPPED = 77
VOID = {"meta", "br", "img", "hr", "input", "link", "col", "line", "circle"}
CHARTS = {
    "year": {"equity", "drawdown", "candles"},
    "small": {"equity", "drawdown", "candles"},
    "sweep": {"equity", "drawdown", "candles"},
    "walk": {"equity", "drawdown", "candles"},
    "compare": {"runs"},
    "nothing": set(),
}
PROBE = """<script nonce="lab">
addEventListener("load", () => setTimeout(() => {
  const drawn = {};
  const look = () => {
    for (const canvas of document.querySelectorAll("canvas")) {
      const copy = document.createElement("canvas");
      copy.width = canvas.width;
      copy.height = canvas.height;
      const context = copy.getContext("2d", { willReadFrequently: true });
      context.drawImage(canvas, 0, 0);
      const pixels = context.getImageData(0, 0, copy.width, copy.height).data;
      const colours = new Set();
      let count = 0, sum = 0;
      for (let at = 0; at < pixels.length; at += 4) {
        if (pixels[at + 3] > 200) {
          ++count;
          colours.add(pixels[at] << 16 | pixels[at + 1] << 8 | pixels[at + 2]);
          sum = (sum * 31 + at) % 1000003;
        }
      }
      drawn[canvas.closest(".chart").id] = { count, colours: colours.size, sum };
    }
    return JSON.parse(JSON.stringify(drawn));
  };
  const first = look();
  const row = document.querySelector(".row");
  if (row)
    row.click();
  setTimeout(() => {
    const probe = { first, falls: (written.get("drawdown") || []).filter(text => text.endsWith("%")), second: look(), rows: Boolean(row), page: getComputedStyle(document.body).backgroundColor,
      cut: [...document.querySelectorAll(".wide")].filter(part => part.scrollWidth > part.clientWidth)
        .map(part => part.closest("section").id),
      inner: document.documentElement.clientWidth, width: document.documentElement.scrollWidth };
    document.documentElement.setAttribute("data-probe", JSON.stringify(probe));
    parent.postMessage(JSON.stringify(probe), "*");
  }, 200);
}, 200));
</script>"""

# What the charts write, so that the labels of their axes can be read.
LISTENER = """<script nonce="lab">
const written = new Map();
const fillText = CanvasRenderingContext2D.prototype.fillText;
CanvasRenderingContext2D.prototype.fillText = function (text, ...place) {
  const place_ = this.canvas.closest(".chart");
  if (place_)
    written.set(place_.id, (written.get(place_.id) || []).concat(text));
  return fillText.call(this, text, ...place);
};
</script>"""

# A window has at least 500 pixels; a frame in it has as few as it is told.
NARROW = """<!DOCTYPE html><iframe src="PAGE" style="width:400px;height:5000px;border:0"></iframe><script>
addEventListener("message", event => document.documentElement.setAttribute("data-probe", event.data));
</script>"""


class Balance(HTMLParser):
    """Every element that opens is closed, in order, and no identifier is there twice."""

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.ids, self.faults = [], set(), []

    def handle_starttag(self, tag, attrs):
        name = dict(attrs).get("id")
        if name in self.ids:
            self.faults.append(f"the identifier {name} is there twice")
        if name:
            self.ids.add(name)
        if tag not in VOID:
            self.open.append(tag)

    def handle_startendtag(self, tag, attrs):
        pass

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.faults.append(f"line {self.getpos()[0]}: </{tag}> closes something else")


def faults_of_markup(page):
    balance = Balance()
    balance.feed(page.read_text(encoding="utf-8"))
    return balance.faults + [f"<{tag}> is not closed" for tag in balance.open]


def browse(browser, page, is_dark, width, *extra):
    with tempfile.TemporaryDirectory() as profile:
        return subprocess.run(
            [browser, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
             "--disable-background-networking", "--disable-component-update", "--disable-sync",
             f"--user-data-dir={profile}", "--hide-scrollbars", "--enable-logging=stderr",
             f"--blink-settings=preferredColorScheme={0 if is_dark else 1}", f"--window-size={width},5000",
             "--virtual-time-budget=5000", *extra, page.as_uri()],
            capture_output=True, text=True, errors="replace", timeout=120, check=False)


def faults_of_look(browser, page, is_dark, width):
    """What is wrong with a page as the browser shows it; the page has the probe in it."""
    shown_page = page
    if width < 500:
        shown_page = page.with_name("frame-" + page.name)
        shown_page.write_text(NARROW.replace("PAGE", page.name), encoding="utf-8")
    shown = browse(browser, shown_page, is_dark, max(width, 500), "--dump-dom")
    for line in shown.stderr.splitlines():
        if "CONSOLE" in line:
            yield line
    found = re.search(r'data-probe="([^"]*)"', shown.stdout)
    if not found:
        yield "the page's script has not run to its end"
        return
    probe = json.loads(html.unescape(found.group(1)))
    expected = CHARTS[page.stem]
    if set(probe["first"]) != expected:
        yield f"charts {sorted(probe['first'])} instead of {sorted(expected)}"
    for name, drawn in probe["first"].items():
        if drawn["count"] < 1000 or drawn["colours"] < 3:
            yield f"{name} is empty: {drawn}"
    if page.stem == "year" and probe["first"].get("candles") == probe["second"].get("candles"):
        yield "a ticket in the list does not move the chart"
    falls = [float(text.replace("\u2212", "-").removesuffix(" %")) for text in probe["falls"]]
    if page.stem == "small" and (len(set(falls)) < 3 or len(set(falls)) != len(falls) or max(falls) > 0):
        yield f"the falls beside their chart are {probe['falls']}"
    if probe["inner"] != width:
        yield f"the window is {probe['inner']} pixels wide"
    if width >= 1200 and probe["cut"]:
        yield f"tables that do not fit: {probe['cut']}"
    if probe["width"] > probe["inner"]:
        yield f"{probe['width']} pixels wide in a window of {probe['inner']}"
    brightness = sum(int(part) for part in re.findall(r"\d+", probe["page"])[:3])
    if (brightness < 384) != is_dark:
        yield f"{probe['page']} behind a {'dark' if is_dark else 'light'} page"


def main(program, pictures=None):
    faults = []
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([program, folder], check=True)
        pages = sorted(Path(folder).glob("*.html"))
        if {page.stem for page in pages} != set(CHARTS):
            faults.append(f"the pages are {[page.name for page in pages]}")
        for page in pages:
            faults += [f"{page.name}: {fault}" for fault in faults_of_markup(page)]
        browser = shutil.which("chromium")
        for page in pages if browser else []:
            for is_dark in (False, True):
                look = "dark" if is_dark else "light"
                if pictures:
                    target = Path(pictures).resolve() / f"{page.stem}-{look}.png"
                    browse(browser, page, is_dark, 1200, f"--screenshot={target}")
            text = page.read_text(encoding="utf-8")
            page.write_text(text.replace("<head>", "<head>" + LISTENER).replace("</body>", PROBE + "</body>"), encoding="utf-8")
            for is_dark, width in ((True, 1200), (False, 400)):
                faults += [f"{page.name}, {'dark' if is_dark else 'light'}, {width}: {fault}"
                           for fault in faults_of_look(browser, page, is_dark, width)]
    for fault in faults:
        print(fault)
    if faults:
        sys.exit(1)
    if not browser:
        print("skipped: chromium is not installed, so no page was looked at")
        sys.exit(SKIPPED)


main(*sys.argv[1:])
