# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Sees when a window comes to an X server without a window manager, and when it has content."""

import collections
import select
import struct
import time
import zlib

import Xlib.display
import Xlib.error
from Xlib import X
from Xlib.ext import damage

PATIENCE = 30  # Seconds.
GLANCE = 0.5  # Seconds between two looks at whether a process still runs.
LEAST = 100  # Pixels. Smaller windows are not for the user.
ROWS = 12  # Of pixels, in which content is looked for.
COLOURS = 16  # Text and icons alone have more, because their edges are smooth.


class NoWindow(Exception):
    """What was awaited has not come."""


def awaited(source, deadline, process=None):
    """Waits until there is something to read, and returns true; or returns false at the deadline, or
    when the process has ended."""
    while (left := deadline - time.monotonic()) > 0 and (process is None or process.poll() is None):
        if select.select([source], [], [], min(left, GLANCE))[0]:
            return True
    return bool(select.select([source], [], [], 0)[0])


Part = collections.namedtuple("Part", "left top width height")


class Windows:
    """The windows of applications. All times are those of time.monotonic()."""

    def __init__(self, display):
        self._display = Xlib.display.Display(display)
        self._display.damage_query_version()
        self._display.set_error_handler(lambda *_: None)  # Windows go at any time.
        self._damaged = self._display.extension_event.DamageNotify
        self._watched = set()
        self._root = self._display.screen().root
        self._root.change_attributes(event_mask=X.SubstructureNotifyMask)
        for window in self._root.query_tree().children:
            self._watch(window)
        self._display.flush()

    def close(self):
        self._display.close()

    def forget(self):
        """Reads all that has happened so far."""
        self._display.sync()
        for _ in self._events(time.monotonic()):
            pass

    def appearing(self, process):
        """Waits for new windows until one has content, or the process has ended. Returns when the
        first one was mapped, when there was content, and the window that has it."""
        shown = {}  # Windows with the time when they were mapped; some get their size later.
        for when, event in self._events(time.monotonic() + PATIENCE, process):
            if event.type == X.MapNotify:
                shown[event.window] = when
                if len(shown) > 1 or not self._has_content(event.window):
                    continue
                when, window = time.monotonic(), event.window  # Drawn before we watched it.
            elif event.type == self._damaged:
                window = self._window_of(event.drawable, shown)
                if window is None or not self._has_content(window):
                    continue
            else:
                continue
            return min(shown[one] for one in shown if self._is_for_user(one)), when, window
        raise NoWindow("a window without content" if shown else "no window")

    def mapped(self, patience):
        """Waits that many seconds at most for a new window. Returns when it was mapped."""
        for when, event in self._events(time.monotonic() + patience):
            if event.type == X.MapNotify and self._is_for_user(event.window):
                return when
        raise NoWindow("no window")

    def close_window(self, window):
        """Asks the application to close the window, as its button does, and waits for that."""
        protocols = self._display.get_atom("WM_PROTOCOLS")
        delete = self._display.get_atom("WM_DELETE_WINDOW")
        window.send_event(
            Xlib.protocol.event.ClientMessage(
                window=window, client_type=protocols, data=(32, [delete, X.CurrentTime, 0, 0, 0])
            )
        )
        self._display.flush()
        for _, event in self._events(time.monotonic() + PATIENCE):
            if event.type in (X.UnmapNotify, X.DestroyNotify) and event.window == window:
                return
        raise NoWindow("a window that is closed")

    def picture(self, window):
        """Returns the visible part of the window as a PNG file."""
        place = self._visible(window)
        lines = []
        for row in range(place.height):
            line = self._row(window, place, row)
            colours = bytearray(3 * place.width)
            colours[0::3], colours[1::3], colours[2::3] = line[2::4], line[1::4], line[0::4]
            lines.append(b"\0" + bytes(colours))
        return png(place.width, place.height, b"".join(lines))

    def _watch(self, window):
        if window.id not in self._watched:
            self._watched.add(window.id)
            window.damage_create(damage.DamageReportNonEmpty)
            self._display.flush()

    def _events(self, deadline, process=None):
        """Yields the events with the time when they came."""
        while True:
            if not self._display.pending_events() and not awaited(self._display, deadline, process):
                return
            when = time.monotonic()
            for _ in range(self._display.pending_events()):
                event = self._display.next_event()
                if event.type == X.CreateNotify:
                    self._watch(event.window)
                elif event.type == X.DestroyNotify:
                    self._watched.discard(event.window.id)  # The next program has the same numbers.
                elif event.type == self._damaged:
                    self._display.damage_subtract(event.damage, X.NONE, X.NONE)
                    self._display.flush()
                yield when, event

    @staticmethod
    def _window_of(drawable, windows):
        return next((one for one in windows if one.id == drawable.id), None)

    @staticmethod
    def _is_for_user(window):
        try:
            geometry = window.get_geometry()
        except Xlib.error.XError:
            return False
        return geometry.width >= LEAST and geometry.height >= LEAST

    def _has_content(self, window):
        """Returns whether some rows of pixels have more colours than a background and borders."""
        colours = set()
        if not self._is_for_user(window):
            return False
        try:
            place = self._visible(window)
            for i in range(1, ROWS + 1):
                line = self._row(window, place, i * place.height // (ROWS + 1))
                colours.update(zip(line[0::4], line[1::4], line[2::4]))
                if len(colours) >= COLOURS:
                    return True
        except (Xlib.error.XError, AttributeError):
            pass  # The window is gone.
        return False

    def _visible(self, window):
        """Returns the part of a window that is on the screen."""
        place, screen = window.get_geometry(), self._display.screen()
        left, top = max(0, -place.x), max(0, -place.y)
        return Part(
            left,
            top,
            min(place.width, screen.width_in_pixels - place.x) - left,
            min(place.height, screen.height_in_pixels - place.y) - top,
        )

    @staticmethod
    def _row(window, part, row):
        """Returns a row of that part: for each pixel blue, green, red and a byte without meaning."""
        image = window.get_image(part.left, part.top + row, part.width, 1, X.ZPixmap, 0xFFFFFFFF)
        return image.data


def png(width, height, lines):
    """Returns a file with these lines, each with its filter byte and three bytes for a pixel."""

    def chunk(kind, data):
        return (
            struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
        )

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + b"".join(
        [chunk(b"IHDR", header), chunk(b"IDAT", zlib.compress(lines)), chunk(b"IEND", b"")]
    )
