# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Compares instruction counts with those of bench/recorded.json. They must not grow."""

import json
import subprocess
from pathlib import Path
from statistics import median

from figures import count_calls, count_start
from handset import Handset

FILE = Path(__file__).resolve().parent / "recorded.json"
GROWTH = 0.05
YARDSTICK = "bare host"
# These packages have the other code whose instructions are counted.
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
    """Returns the exit status: 1 if a count has grown."""
    recorded = json.loads(FILE.read_text())
    counts, before = measured(programs), recorded["instructions"]
    # More fonts, or another Qt, make the bare host cost more as well.
    machine = counts.pop(YARDSTICK) / before[YARDSTICK]
    print(
        f"The start of the bare host costs {machine - 1:+.1%} compared with the recorded one. "
        "The recorded starts are scaled by this."
    )
    for package, version in versions().items():
        if recorded["versions"].get(package) != version:
            print(
                f"Recorded with {package} {recorded['versions'].get(package)}, measured with "
                f"{version}. This may cause differences."
            )
    failed = False
    for name, count in counts.items():
        expected = before[name] * (machine if name.startswith("start") else 1)
        change = count / expected - 1
        failed |= change > GROWTH
        verdict = "GROWN" if change > GROWTH else "better" if change < -GROWTH else "as recorded"
        print(f"{name}: {count:,} instructions, {change:+.1%}: {verdict}")
    if failed:
        print(f"A count may grow by {GROWTH:.0%}. If more is meant, run bench/run --record.")
    return int(failed)
