"""A virtual desktop of its own: X server, window manager, session bus, mouse, keyboard, screenshots."""

import os
import subprocess
import tempfile
import time
from pathlib import Path

from screen import Screen


class Desktop:
    """Starts Xvfb with a window manager; real key and mouse events go in, pictures come out. Programs paint
    `scale` pixels for each point; width, height and all places are in pixels."""

    def __init__(self, width=1440, height=900, scale=1):
        self.width, self.height, self.scale = width, height, scale
        self._processes = []
        read_end, write_end = os.pipe()
        self._spawn(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[write_end],
        )
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("the virtual X server did not start")
        os.environ["DISPLAY"] = f":{number}"
        self._screen = Screen(f":{number}")
        os.environ.pop("WAYLAND_DISPLAY", None)
        os.environ["QT_QPA_PLATFORM"] = "xcb"
        os.environ["QT_SCALE_FACTOR"] = str(scale)
        os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        self._runtime = tempfile.TemporaryDirectory(prefix="tavoran-tour-")
        os.chmod(self._runtime.name, 0o700)
        os.environ["XDG_RUNTIME_DIR"] = self._runtime.name
        self._spawn(["openbox"])
        address = subprocess.run(
            ["dbus-daemon", "--session", "--fork", "--print-address=1", "--print-pid=1"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=True).stdout.splitlines()
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = address[0]
        self._bus_pid = int(address[1])

    def _spawn(self, command, **options):
        self._processes.append(
            subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options))

    def close(self):
        self._screen.close()
        os.kill(self._bus_pid, 15)
        for process in reversed(self._processes):
            process.terminate()
            process.wait()
        self._runtime.cleanup()

    @staticmethod
    def _xdotool(*words):
        subprocess.run(["xdotool", *map(str, words)], check=True, stdout=subprocess.DEVNULL)

    def start_tray(self):
        """A system tray at the right of the lower edge, for programs started from now on."""
        self._spawn(["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request", "--height", "24",
                     "--SetDockType", "true", "--SetPartialStrut", "true"])
        if not wait_until(lambda: self._windows("--class", "trayer")):
            raise RuntimeError("the system tray did not start")

    def tray_icon(self):
        """The middle of the tray's one icon, or None while the tray is empty."""
        for window in self._windows("--onlyvisible", "--class", "trayer"):
            place = dict(line.split("=") for line in self._answer("getwindowgeometry", "--shell", window).splitlines())
            if int(place["WIDTH"]) >= 16:
                return (int(place["X"]) + int(place["WIDTH"]) // 2, int(place["Y"]) + int(place["HEIGHT"]) // 2)
        return None

    def _windows(self, *conditions):
        return self._answer("search", *conditions).split()

    def shown_windows(self, process_id, title):
        """The windows of a process with exactly this title that are neither hidden nor minimised."""
        return self._windows("--onlyvisible", "--all", "--pid", process_id, "--name", f"^{title}$")

    def minimise(self, window):
        self._xdotool("windowminimize", window)

    def active_window(self):
        return self._answer("getactivewindow").strip()

    @staticmethod
    def _answer(*words):
        return subprocess.run(["xdotool", *map(str, words)], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              text=True, check=False).stdout

    def move(self, x, y):
        self._xdotool("mousemove", x, y)

    def click(self, x, y, times=1, button=1):
        self._xdotool("mousemove", x, y, "click", "--repeat", times, "--delay", 60, button)

    def wheel_up(self, x, y, turns):
        self._xdotool("mousemove", x, y, "click", "--repeat", turns, "--delay", 5, 4)

    def wheel_down(self, x, y, turns):
        self._xdotool("mousemove", x, y, "click", "--repeat", turns, "--delay", 5, 5)

    def drag(self, start, end):
        """Presses at one place, moves in small steps as a hand does, and leaves the button pressed."""
        self._xdotool("mousemove", *start, "mousedown", 1)
        steps = 8
        for step in range(1, steps + 1):
            self._xdotool("mousemove", *(int(a + (b - a) * step / steps) for a, b in zip(start, end)))

    def drop(self):
        self._xdotool("mouseup", 1)

    def key(self, *names):
        self._xdotool("key", *names)

    def type(self, text):
        self._xdotool("type", "--delay", 15, text)

    def screenshot(self, path, area=None):
        """The whole screen, or the rectangle (x, y, width, height) of it, as a PNG."""
        self._screen.save(path, *(area or (0, 0, self.width, self.height)))

    def pixels(self, x, y, width, height):
        """The RGB bytes of one rectangle of the screen, row by row."""
        return self._screen.pixels(x, y, width, height)


def wait_until(probe, seconds=15.0, pause=0.1):
    """The first truthy answer of `probe`, or its last answer when the time is over."""
    deadline = time.monotonic() + seconds
    while True:
        answer = probe()
        if answer or time.monotonic() > deadline:
            return answer
        time.sleep(pause)


def fresh_folder(path):
    path = Path(path)
    path.mkdir(parents=True, exist_ok=True)
    return path
