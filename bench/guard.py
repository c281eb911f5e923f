# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Compares instruction counts with those that bench/recorded.json has for the same system. They
must not grow."""

import json
import platform
import subprocess
import sys
from pathlib import Path
from statistics import median

from figures import count_calls, count_request, count_shipped_screens, count_start
from handset import Handset

FILE = Path(__file__).resolve().parent / "recorded.json"
GROWTH = 0.05
PING = "one Ping"
# Each count is compared in relation to its yardstick, which other fonts or another Qt change as well.
YARDSTICKS = {
    "start to first frame, services present": "bare host",
    "start to first frame, services absent": "bare host",
    "request to first frame": "bare host",
    "shipped screens, start to first frame": "bare host",
    "shipped screens, first frame to telephony": "bare host",
    "one dial": PING,
}
# The numbers that elf(5) gives them, and the names that uname(1) does.
PROCESSORS = {3: "i686", 40: "armv7l", 62: "x86_64", 183: "aarch64", 243: "riscv64"}
NOT_RECORDED = 77  # The exit status that makes CTest report the check as skipped.
# These packages have the other code whose instructions are counted. Debian 13 has renamed two.
PACKAGES = [
    "libc6",
    "libdbus-1-3",
    "libdconf1",
    "libglib2.0-0",
    "libglib2.0-0t64",
    "libqt5core5a",
    "libqt5core5t64",
    "libqt5qml5",
    "libqt5quick5",
    "valgrind",
]


def measured(programs):
    counts = {}
    for services in ("present", "absent"):
        with Handset(services, programs.handset) as handset:
            _, drawn = count_start(handset, programs, programs.native, 1)
            counts[f"start to first frame, services {services}"] = round(median(drawn))
            if services == "present":
                _, drawn = count_start(handset, programs, programs.bare, 1)
                counts["bare host"] = round(median(drawn))
                counts["request to first frame"] = round(
                    median(count_request(handset, programs, 1))
                )
                drawn, ready = count_shipped_screens(handset, programs, 3)
                counts["shipped screens, start to first frame"] = round(median(drawn))
                # A thread that is woken once too often only adds to it.
                counts["shipped screens, first frame to telephony"] = round(min(ready))
                ping, dial = count_calls(handset, programs, "Ping", "dial")
                counts[PING] = round(ping)
                counts["one dial"] = round(dial)
    return counts


def versions():
    """Returns the versions of those packages that are installed."""
    shown = subprocess.run(
        ["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *PACKAGES],
        capture_output=True,
        text=True,
        check=False,
    ).stdout
    found = (line.split() for line in shown.splitlines())
    return dict(fields for fields in found if len(fields) == 2)


def processor(program):
    """Returns the name of the processor for which a program is built (elf(5)). The machine's own may
    be another one: it may be emulated, or have 64 bits where the program has 32."""
    header = Path(program).read_bytes()[:20]
    number = int.from_bytes(header[18:20], sys.byteorder)
    return PROCESSORS.get(number, f"processor {number}")


def system(programs):
    """Returns the name of the system's release and processor: they, the compiler and the libraries
    decide the counts."""
    release = platform.freedesktop_os_release()
    version = release.get("VERSION_ID", "")
    return f"{release['NAME']} {version} {processor(programs.native[0])}"


def record(programs):
    """Records the counts of this system, and keeps those of others."""
    recorded = json.loads(FILE.read_text())
    recorded[system(programs)] = {"instructions": measured(programs), "versions": versions()}
    FILE.write_text(json.dumps(recorded, indent=2, sort_keys=True) + "\n")
    print(FILE.read_text())
    return 0


def check(programs):
    """Returns the exit status: 1 if a count has grown."""
    name = system(programs)
    recorded = json.loads(FILE.read_text()).get(name)
    if recorded is None:
        print(f"No counts are recorded for {name}. Record them with bench/run --record.")
        return NOT_RECORDED
    counts, before = measured(programs), recorded["instructions"]
    here = versions()
    for package, version in recorded["versions"].items():
        if here.get(package) != version:
            print(
                f"Recorded with {package} {version}, measured with "
                f"{here.get(package, 'none')}. This may cause differences."
            )
    failed = False
    for name, yardstick in YARDSTICKS.items():
        if name not in before:
            print(f"{name}: {counts[name]:,} instructions, not recorded")
            continue
        machine = counts[yardstick] / before[yardstick]
        if yardstick == PING and here == recorded["versions"]:
            machine = 1  # Our own code answers the Ping, too: it must not hide what that costs.
        change = counts[name] / before[name] / machine - 1
        failed |= change > GROWTH
        verdict = "GROWN" if change > GROWTH else "better" if change < -GROWTH else "as recorded"
        print(
            f"{name}: {counts[name]:,} instructions, {change:+.1%}, allowing "
            f"{machine - 1:+.1%} ({yardstick}): {verdict}"
        )
    if failed:
        print(f"A count may grow by {GROWTH:.0%}. If more is meant, run bench/run --record.")
    return int(failed)
