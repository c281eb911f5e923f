# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""A story of steps that are taken one after the other, each printed with its outcome."""

import time


def tell(text):
    """Prints a line at once."""
    print(text, flush=True)


def play(steps, subject, after_failure=lambda step: None):
    """Takes each step (a text and a function of the subject, which may return what is to be said of
    its outcome). Returns the number of steps that have failed."""
    failures = 0
    for text, step in steps:
        start = time.monotonic()
        try:
            said = step(subject)
        except Exception as failure:  # pylint: disable=broad-except # The others are still played.
            failures += 1
            tell(f"FAILED {text}: {failure or type(failure).__name__}")
            after_failure(step)
        else:
            took = f"{time.monotonic() - start:.1f} s"
            tell(f"ok     {text} ({', '.join(filter(None, [said, took]))})")
    return failures
