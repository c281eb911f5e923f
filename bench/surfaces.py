# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Sees when a window comes to a Wayland compositor, sway. A window of Wayland has content as soon as
it is there, because its first picture makes the compositor show it."""

import json
import socket
import struct
import time

from windows import PATIENCE, NoWindow, awaited

MAGIC = b"i3-ipc"
COMMAND, SUBSCRIBE = 0, 2  # Kinds of messages: sway-ipc(7)


class Surfaces:
    """The windows of applications, as in windows.Windows. All times are those of
    time.monotonic()."""

    def __init__(self, address):
        self._commands = connect(address)
        self._news = connect(address)
        send(self._news, SUBSCRIBE, '["window"]')
        receive(self._news)

    def close(self):
        self._commands.close()
        self._news.close()

    def forget(self):
        """Reads all that has happened so far."""
        send(self._commands, COMMAND, "nop")  # It is answered after what happened before.
        receive(self._commands)
        for _ in self._events(time.monotonic()):
            pass

    def appearing(self, process):
        """Waits for the next window unless the process has ended. Returns when it was there, the
        same again, and the window."""
        for when, event in self._events(time.monotonic() + PATIENCE, process):
            if event["change"] == "new":
                return when, when, event["container"]
        raise NoWindow("no window")

    def close_window(self, window):
        """Asks the application to close its window, as the button does, and waits for that. It may
        have shown the window anew meanwhile, which is another one then."""
        self.forget()
        send(self._commands, COMMAND, f"[pid={window['pid']}] kill")
        receive(self._commands)
        for _, event in self._events(time.monotonic() + PATIENCE):
            if event["change"] == "close" and event["container"]["pid"] == window["pid"]:
                return
        raise NoWindow("a window that is closed")

    def _events(self, deadline, process=None):
        """Yields the events with the time when they came."""
        while awaited(self._news, deadline, process):
            when = time.monotonic()
            yield when, receive(self._news)


def connect(address):
    connection = socket.socket(socket.AF_UNIX)
    connection.connect(str(address))
    return connection


def send(connection, kind, text):
    connection.sendall(MAGIC + struct.pack("=II", len(text), kind) + text.encode())


def receive(connection):
    header = exactly(connection, len(MAGIC) + 8)
    length, _ = struct.unpack("=II", header[len(MAGIC) :])
    return json.loads(exactly(connection, length))


def exactly(connection, length):
    data = b""
    while len(data) < length:
        part = connection.recv(length - len(data))
        if not part:
            raise NoWindow("a compositor")
        data += part
    return data
