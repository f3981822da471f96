"""Starts a virtual screen and, on it, the programs of the comparison; ends them again."""

import os
import shutil
import subprocess
import tempfile
from contextlib import contextmanager

SCREEN_WIDTH, SCREEN_HEIGHT = 1602, 902  # a kiosk window of Chromium leaves one pixel free at each side
CHROMIUM = "/usr/bin/chromium"
# Drawn in software, without a graphics processor or its emulation; frames as fast as they are made; nothing that
# runs beside the page; no way out to the network.
CHROMIUM_FLAGS = [
    "--disable-gpu", "--disable-frame-rate-limit", "--disable-gpu-vsync",
    "--no-first-run", "--no-default-browser-check", "--disable-extensions", "--disable-sync", "--disable-breakpad",
    "--disable-background-networking", "--disable-component-update", "--disable-default-apps",
    "--disable-features=Translate,MediaRouter,OptimizationHints", "--password-store=basic",
    "--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1",
    "--js-flags=--expose-gc", "--force-device-scale-factor=1", "--hide-scrollbars",
    "--kiosk", "--window-position=0,0", f"--window-size={SCREEN_WIDTH},{SCREEN_HEIGHT}",
]


def end(process):
    process.terminate()
    try:
        process.wait(10)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


@contextmanager
def screen(folder):
    """A virtual screen with room for the canvas, its pixels in a file of that folder; its DISPLAY."""
    reading, writing = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{SCREEN_WIDTH}x{SCREEN_HEIGHT}x24", "-nolisten", "tcp",
         "-noreset", "-fbdir", str(folder)],
        pass_fds=[writing], stderr=subprocess.DEVNULL)
    os.close(writing)
    try:
        with os.fdopen(reading) as told:
            number = told.readline().strip()
        if not number:
            raise RuntimeError("Xvfb has not started")
        yield f":{number}"
    finally:
        end(server)


def page_command(chart, port, profile):
    root = ["--no-sandbox"] if os.geteuid() == 0 else []
    return [CHROMIUM, *CHROMIUM_FLAGS, *root, f"--user-data-dir={profile}",
            f"http://127.0.0.1:{port}/page.html?chart={chart}"]


@contextmanager
def running(command_for, display):
    """Runs what command_for(a private folder) says on a display; the process."""
    folder = tempfile.mkdtemp(prefix="tavoran-peers-")
    environment = {**os.environ, "DISPLAY": display, "HOME": folder, "XDG_CONFIG_HOME": folder,
                   "XDG_CACHE_HOME": folder, "QT_QPA_PLATFORM": "xcb", "LC_ALL": "C.UTF-8", "LANGUAGE": "en"}
    with open(os.path.join(folder, "output"), "wb") as output:
        process = subprocess.Popen(command_for(folder), env=environment, stdout=output, stderr=output)
    try:
        yield process
    except Exception:
        with open(os.path.join(folder, "output"), errors="replace") as output:
            print(*output.readlines()[-5:], sep="", end="")
        raise
    finally:
        end(process)
        shutil.rmtree(folder, ignore_errors=True)
