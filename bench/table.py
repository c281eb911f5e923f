# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""The table of figures."""


class Table:
    """Rows of figure, ours, yardstick, ratio and goal. A goal is the largest allowed ratio. Without
    a yardstick, and if it is absolute, it is the largest allowed figure. An absolute goal is shown
    with its unit."""

    def __init__(self):
        self._rows = []

    def add(
        self,
        figure,
        unit,
        ours,
        yardstick=None,
        goal=None,
        note=None,
        absolute=False,
        growth=None,
    ):
        """Adds a row. The note is shown in the last column. The growth is for bench/picture."""
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
                "growth": growth,
            }
        )

    def rows(self):
        """Returns the rows as dictionaries, for JSON."""
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
    """Returns the goal as text, with a unit unless it is a ratio."""
    if row["goal"] is None:
        return ""
    return f"{row['goal']:g}" + (f" {row['unit']}" if row["absolute"] else "")


def number(value):
    """Returns the value with about four digits."""
    if value is None:
        return ""
    if isinstance(value, int) or value >= 1000:
        return f"{value:,.0f}"
    return f"{value:.4g}"
