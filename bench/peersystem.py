# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""A Debian system that has the call applications of others and the packages of this project."""

import subprocess
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(SOURCE / "packaging/systems"))

# pylint: disable=wrong-import-position
import debian

CACHE = Path("/var/cache/parley-handset")
# The programs to compare with.
PEERS = "gnome-calls plasma-dialer sddm".split()
# What a user of them has as well: fonts, icons, and QML modules that no package depends on.
WITH_PEERS = """
fonts-dejavu-core adwaita-icon-theme breeze-icon-theme libqt5svg5 sddm-theme-maui
qml-module-org-kde-kirigami2 qml-module-org-kde-people qml-module-org-kde-kcoreaddons
qml-module-org-kde-kirigami-addons-labs-mobileform qml-module-org-kde-kirigami-addons-sounds
qml-module-org-kde-kirigami-addons-labs-components qml-module-org-kde-qqc2breezestyle
qml-module-qtquick-controls2 qml-module-qtquick-layouts qml-module-qtquick-window2
qml-module-qtquick-dialogs qml-module-qtquick-templates2 qml-module-qtgraphicaleffects
qml-module-qt-labs-platform qml-module-qtmultimedia qml-module-qtquick-localstorage
""".split()
# What the measurements need.
TOOLS = "xvfb sway qtwayland5 dbus-daemon python3-dbus python3-xlib ofono".split()
FOLDER = "peers"
USER = "1000"  # sway and the buses want a user that is known and not root.


class Missing(Exception):
    """There is no such system yet. The text says how to make it."""


def install(packages=None, cache=CACHE):
    """Makes the system, and keeps it. The packages are built unless their folder is given."""
    missing = debian.missing_tools()
    if missing:
        raise debian.Failure(f"The system cannot be made here. It needs {', '.join(missing)}.")
    store = debian.Cache(cache, lambda text: print(text, flush=True))
    built = sorted((packages or store.packages(SOURCE)).glob("*.deb"))
    ours = [file for file in built if "-dbgsym" not in file.name]

    def with_peers(root):
        # The packages start services, which are of no use here.
        policy = root / "usr/sbin/policy-rc.d"
        policy.write_text("#!/bin/sh\nexit 101\n")
        policy.chmod(0o755)
        debian.install_in(root, *PEERS, *WITH_PEERS, *TOOLS)
        debian.run_in(root, "useradd", "--uid", USER, "user")

    peers = store.derived(
        "others", debian.digest(debian.SUITE, *PEERS, *WITH_PEERS, *TOOLS), with_peers
    )

    def with_ours(root):
        debian.copy(peers, root)
        binds = [(file.parent, "/mnt") for file in ours[:1]]
        debian.install_in(root, *[f"/mnt/{file.name}" for file in ours], binds=binds)

    contents = [file.read_bytes() for file in ours]
    store.entry(FOLDER, debian.digest(peers.name, *contents), with_ours)


def root(cache=CACHE):
    """Returns the folder of the system."""
    made = sorted(cache.glob(f"{FOLDER}-????????????"))
    if not made:
        raise Missing("There is no system with the peers yet. As root, run: bench/peers --install")
    return made[0]


def versions(folder):
    """Returns the versions of what is compared, and of what all of them need."""
    packages = ["parley-ui", *PEERS, "libqt5quick5", "libgtk-3-0", "xvfb", "sway", "libc6"]
    shown = debian.run(
        *["dpkg-query", f"--admindir={folder}/var/lib/dpkg", "-W", "-f", "${Package} ${Version}\n"],
        *packages,
    )
    return dict(line.split() for line in shown.splitlines())


def run(folder, output, program, *arguments):
    """Runs a program of the folder "bench" in the system, which it cannot change, and returns its
    exit status. It may write to the output. The caches of the system are hidden, so that all caches
    are in the home of whoever fills them."""
    place = Path("/run/bench")
    command = [
        *["bwrap", "--die-with-parent", "--unshare-user", "--uid", USER, "--gid", USER],
        *["--unshare-pid", "--unshare-net", "--clearenv"],
        *["--setenv", "PATH", "/usr/sbin:/usr/bin", "--ro-bind", folder, "/"],
        *["--dev", "/dev", "--proc", "/proc", "--tmpfs", "/tmp", "--tmpfs", "/run"],
        *["--ro-bind", SOURCE / "bench", place, "--bind", output, "/run/output"],
        *["--tmpfs", "/var/cache/fontconfig", "--remount-ro", "/var/cache/fontconfig"],
        *["python3", place / program, *arguments],
    ]
    return subprocess.run([str(part) for part in command], check=False).returncode
