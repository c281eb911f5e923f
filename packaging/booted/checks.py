# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""What all checks of the story share."""

from machine import Failed

CHECKS = []
NUMBER = "+49301234567"


def check(text):
    """Adds a function to the story. It returns what is to be said of its outcome, or None."""

    def add(function):
        CHECKS.append((text, function))
        return function

    return add


def expect(condition, text):
    """Fails unless the condition holds."""
    if not condition:
        raise Failed(text)


def summon(handset, *command):
    """Runs a command that asks for the call UI, and returns how long its window took."""
    said = handset.user("time-to-window", *command).splitlines()
    numbers = [line for line in said if line.isdigit()]
    expect(len(numbers) == 1, f"{' '.join(command)}: {' '.join(said)}")
    handset.expect_full_screen()
    return f"{numbers[0]} ms to the window"


def dismiss(handset):
    """Ends the call, and with it the window."""
    handset.user(*handset.ui_call("toggleCall"), group="privileged")
    handset.expect_no_window()
