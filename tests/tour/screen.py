"""Pictures of an X screen, taken in this process: starting a program for each would take longer than the steps."""

import ctypes
import struct
import zlib
from collections import deque
from concurrent.futures import ThreadPoolExecutor

ALL_PLANES, Z_PIXMAP = 0xFFFFFFFF, 2
UNWRITTEN = 8  # pictures that may wait to be written


class _Image(ctypes.Structure):
    """The beginning of Xlib's XImage, as far as it is read here."""

    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int), ("format", ctypes.c_int),
                ("data", ctypes.c_void_p), ("byte_order", ctypes.c_int), ("bitmap_unit", ctypes.c_int),
                ("bitmap_bit_order", ctypes.c_int), ("bitmap_pad", ctypes.c_int), ("depth", ctypes.c_int),
                ("bytes_per_line", ctypes.c_int), ("bits_per_pixel", ctypes.c_int)]


class Screen:
    """The root window of a display, as RGB bytes."""

    def __init__(self, display):
        self._x = ctypes.CDLL("libX11.so.6")
        self._x.XOpenDisplay.restype = ctypes.c_void_p
        self._x.XDefaultRootWindow.restype = ctypes.c_ulong
        self._x.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
        self._x.XGetImage.restype = ctypes.POINTER(_Image)
        self._x.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                                      ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
        self._x.XDestroyImage.argtypes = [ctypes.POINTER(_Image)]
        self._x.XCloseDisplay.argtypes = [ctypes.c_void_p]
        self._display = self._x.XOpenDisplay(display.encode())
        if not self._display:
            raise RuntimeError(f"cannot look at the screen of {display}")
        self._root = self._x.XDefaultRootWindow(self._display)
        self._writer, self._unwritten = ThreadPoolExecutor(1), deque()

    def close(self):
        """Returns when every picture is on the disk."""
        self._x.XCloseDisplay(self._display)
        while self._unwritten:
            self._unwritten.popleft().result()
        self._writer.shutdown()

    def pixels(self, x, y, width, height):
        """The RGB bytes of one rectangle, which must lie inside the screen, row by row."""
        return _without_padding(self._padded(x, y, width, height))

    def _padded(self, x, y, width, height):
        image = self._x.XGetImage(self._display, self._root, x, y, width, height, ALL_PLANES, Z_PIXMAP)
        try:
            facts = image.contents
            if facts.bits_per_pixel != 32 or facts.byte_order != 0 or facts.bytes_per_line != width * 4:
                raise RuntimeError("the screen does not keep its pixels as expected")
            return ctypes.string_at(facts.data, width * height * 4)
        finally:
            self._x.XDestroyImage(image)

    def save(self, path, x, y, width, height):
        """Keeps one rectangle as it is now; it is written as a PNG while the caller goes on."""
        if len(self._unwritten) >= UNWRITTEN:
            self._unwritten.popleft().result()
        self._unwritten.append(self._writer.submit(_write_png, path, self._padded(x, y, width, height), width, height))


def _without_padding(raw):
    rgb = bytearray(len(raw) // 4 * 3)
    rgb[0::3], rgb[1::3], rgb[2::3] = raw[2::4], raw[1::4], raw[0::4]
    return bytes(rgb)


def _write_png(path, raw, width, height):
    rgb = _without_padding(raw)
    rows = b"".join(b"\0" + rgb[start:start + width * 3] for start in range(0, len(rgb), width * 3))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 3))
                     + chunk(b"IEND", b""))
