# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Instruction counts that must not grow, against those of bench/recorded.json."""

import json
import subprocess
from pathlib import Path
from statistics import median

from figures import count_calls, count_start
from handset import Handset

FILE = Path(__file__).resolve().parent / "recorded.json"
GROWTH = 0.05
YARDSTICK = "bare host"
# What else the instructions are of.
PACKAGES = [
    "libc6",
    "libdbus-1-3",
    "libdconf1",
    "libglib2.0-0",
    "libqt5core5a",
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
                counts[YARDSTICK] = round(median(drawn))
                counts["one dial"] = round(count_calls(handset, programs, "dial"))
    return counts


def versions():
    shown = subprocess.run(
        ["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *PACKAGES],
        capture_output=True,
        text=True,
        check=False,
    ).stdout
    return dict(line.split() for line in shown.splitlines())


def record(programs):
    content = {"instructions": measured(programs), "versions": versions()}
    FILE.write_text(json.dumps(content, indent=2) + "\n")
    print(FILE.read_text())
    return 0


def check(programs):
    """The exit status: 1 if something has grown."""
    recorded = json.loads(FILE.read_text())
    counts, before = measured(programs), recorded["instructions"]
    # More fonts, or another Qt, cost the bare host more as well.
    machine = counts.pop(YARDSTICK) / before[YARDSTICK]
    print(
        f"The bare host's start: {machine - 1:+.1%} to the recorded one; starts are compared "
        "with as much more or less."
    )
    for package, version in versions().items():
        if recorded["versions"].get(package) != version:
            print(
                f"Recorded with {package} {recorded['versions'].get(package)}, and this is "
                f"{version}: what changes may be its doing."
            )
    failed = False
    for name, count in counts.items():
        expected = before[name] * (machine if name.startswith("start") else 1)
        change = count / expected - 1
        failed |= change > GROWTH
        verdict = "GROWN" if change > GROWTH else "better" if change < -GROWTH else "as recorded"
        print(f"{name}: {count:,} instructions, {change:+.1%}: {verdict}")
    if failed:
        print(f"More than {GROWTH:.0%} is too much. Where it is meant: bench/run --record")
    return int(failed)
