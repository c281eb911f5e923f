# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Counts the instructions of all threads between two moments, with callgrind.

A moment is a line that the screens log: QML's console.info() is the only caller of
QMessageLogger::info(), and callgrind writes what it has counted since the last moment into a file
whenever that function is entered.
"""

import collections
import re
from pathlib import Path

from handset import Failure

MOMENT = "QMessageLogger::info(char const*, ...) const"


def under_callgrind(command, output):
    """Returns the command that counts the instructions of a command."""
    return [
        "valgrind",
        "--quiet",
        "--tool=callgrind",
        f"--callgrind-out-file={output}",
        f"--dump-before={MOMENT}",
        *command,
    ]


def counted(output, part):
    """Returns the instructions between a moment, numbered from 1, and the moment before it."""
    file = Path(f"{output}.{part}")
    found = re.search(r"^summary: (\d+)$", file.read_text(errors="replace"), re.MULTILINE)
    if not found:
        raise Failure(f"callgrind has counted nothing in {file}")
    return int(found[1])


def by_library(output, part):
    """Returns the same as a Counter by the name of the library that has the code."""
    names = {}
    counts = collections.Counter()
    library = None
    is_call = False
    with open(f"{output}.{part}", encoding="utf-8", errors="replace") as lines:
        for line in lines:
            named = re.match(r"(c?)ob=(\(\d+\))(?: (.*))?$", line)
            if named:
                names.setdefault(named[2], Path(named[3] or "").name)
                if not named[1]:
                    library = named[2]
            elif line.startswith("calls="):
                is_call = True  # The next line has the cost of the called function.
            elif re.match(r"[0-9+*-]", line):
                if not is_call:
                    counts[library] += int(line.split()[1])
                is_call = False
    return collections.Counter({names.get(one, "?"): count for one, count in counts.items()})
