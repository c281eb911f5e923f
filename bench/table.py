# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""The table of what was measured."""


class Table:
    """Rows of figure, ours, yardstick, ratio, goal. A goal is the most that a ratio may be, or,
    without a yardstick, the most that the figure may be. An absolute goal is the latter although
    there is a yardstick, and is shown with its unit."""

    def __init__(self):
        self._rows = []

    def add(self, figure, unit, ours, yardstick=None, goal=None, note=None, absolute=False):
        """Prints nothing yet. The note is shown where the ratio is missing."""
        ratio = ours / yardstick if yardstick else None
        compared = ours if absolute or ratio is None else ratio
        self._rows.append(
            {
                "figure": figure,
                "unit": unit,
                "ours": ours,
                "yardstick": yardstick,
                "ratio": ratio,
                "goal": goal,
                "absolute": absolute,
                "met": None if goal is None else compared <= goal,
                "note": note,
            }
        )

    def rows(self):
        """As dictionaries, for JSON."""
        return self._rows

    def goals_met(self):
        return all(row["met"] is not False for row in self._rows)

    def text(self):
        lines = [
            "| figure | unit | ours | yardstick | ratio | goal | |",
            "| --- | --- | --- | --- | --- | --- | --- |",
        ]
        for row in self._rows:
            said = {True: "met", False: "MISSED", None: ""}[row["met"]]
            lines.append(
                "| "
                + " | ".join(
                    [
                        row["figure"],
                        row["unit"],
                        number(row["ours"]),
                        number(row["yardstick"]),
                        "" if row["ratio"] is None else f"{row['ratio']:.3f}",
                        shown_goal(row),
                        " ".join(filter(None, [said, row["note"]])),
                    ]
                )
                + " |"
            )
        return "\n".join(lines)


def shown_goal(row):
    """A ratio has no unit."""
    if row["goal"] is None:
        return ""
    return f"{row['goal']:g}" + (f" {row['unit']}" if row["absolute"] else "")


def number(value):
    """With about four digits."""
    if value is None:
        return ""
    if isinstance(value, int) or value >= 1000:
        return f"{value:,.0f}"
    return f"{value:.4g}"
