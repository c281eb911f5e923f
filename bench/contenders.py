# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""The programs that bench/peers compares, and the quickest way that each has to be started, to be
kept ready without a window, to be asked for its window, and to be ready for a call."""

import dataclasses

import dbus
from dbus.lowlevel import MethodCallMessage


@dataclasses.dataclass(frozen=True, eq=False)
class Request:
    """A call on the session bus that makes a process show its window."""

    name: str
    path: str
    interface: str
    member: str
    signature: str
    arguments: tuple

    def message(self):
        """Returns the call. Nobody waits for its answer."""
        call = MethodCallMessage(self.name, self.path, self.interface, self.member)
        call.append(*self.arguments, signature=self.signature)
        call.set_no_reply(True)
        return call


@dataclasses.dataclass(frozen=True, eq=False)
class Contender:
    """A program. Without a request it cannot be kept ready: it is asked for by starting it. One that
    does not last ends itself without its own compositor, often before its window is there."""

    name: str
    package: str
    start: tuple
    ready: tuple = ()
    request: Request = None
    phoning: tuple = ()
    lasts: bool = True


LINKS = dbus.Array(["tel:+4930555123"], signature="s")


def opening(name):
    """Returns the request that opens a link to a number in an application that runs already."""
    path = "/" + name.replace(".", "/")
    nothing = dbus.Dictionary(signature="sv")
    interface = "org.freedesktop.Application"
    return Request(name, path, interface, "Open", "asa{sv}", (LINKS, nothing))


def our_opening():
    """Returns the same request to the call UI."""
    name = "com.nimbo.parley.ui"
    return Request(name, "/", name, "openUrl", "as", (LINKS,))


OURS = Contender(
    "parley-ui",
    "parley-screens",
    ("parley-ui",),
    ("parley-ui", "-prestart"),
    our_opening(),
    ("parley-ui", "-prestart"),
)
PEERS = [
    Contender(
        "GNOME Calls",
        "gnome-calls",
        ("gnome-calls", "-p", "dummy"),
        ("gnome-calls", "-p", "dummy", "--daemon"),
        opening("org.gnome.Calls"),
        ("gnome-calls", "-p", "ofono", "--daemon"),
    ),
    Contender("Plasma Dialer", "plasma-dialer", ("plasmaphonedialer",), lasts=False),
    Contender(
        "SDDM greeter",
        "sddm",
        ("sddm-greeter", "--test-mode", "--theme", "/usr/share/sddm/themes/maui"),
    ),
]
ALL = [OURS, *PEERS]
