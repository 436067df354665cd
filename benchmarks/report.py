# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The figures as a table, as JSON and as a plot."""

import json
import math
import statistics
import xml.sax.saxutils

_UNITS = {"s": (1, "s"), "ms": (1e3, "ms"), "MB": (1e-6, "MB")}


class Row:
    """One thing that was measured again and again, and beside it what it is compared with, in the same order."""

    def __init__(self, name, values, against="", references=(), aim=None, limit=None, slack=0, unit="ms", note=""):
        """The limit is a factor of the reference, or without one a value; slack comes on top."""
        self.name, self.values, self.against, self.references = name, list(values), against, list(references)
        self.aim, self.limit, self.slack, self.unit, self.note = aim, limit, slack, unit, note

    def ratios(self):
        return [value / reference for value, reference in zip(self.values, self.references)]

    def median(self):
        return statistics.median(self.values)

    def is_reached(self):
        """None without a limit."""
        if self.limit is None:
            return None
        allowed = (statistics.median([self.limit * reference + self.slack for reference in self.references])
                   if self.references else self.limit)
        return self.median() <= allowed

    def as_json(self):
        return {"name": self.name, "seconds or bytes": self.values, "against": self.against,
                "references": self.references, "ratios": self.ratios(), "aim": self.aim, "reached": self.is_reached(),
                "note": self.note}


class Growth:
    """What one item takes at different numbers of items."""

    LIMIT = 1.3

    def __init__(self, name, values_by_count, unit="ms", note=""):
        self.name, self.unit, self.note = name, unit, note
        self.points = [(count, statistics.median(values) / count) for count, values in sorted(values_by_count.items())]

    def factors(self):
        """From one point to the next."""
        return [after / before for (_, before), (_, after) in zip(self.points, self.points[1:])]

    def is_reached(self):
        return all(factor <= self.LIMIT for factor in self.factors())

    def as_json(self):
        return {"name": self.name, "seconds or bytes an item": self.points, "factors": self.factors(),
                "reached": self.is_reached(), "note": self.note}


def _shown(values, unit):
    factor, name = _UNITS[unit]
    numbers = sorted(value * factor for value in values)
    digits = 0 if numbers[0] >= 100 else 1 if numbers[0] >= 10 else 2
    spread = f" ({numbers[0]:.{digits}f} to {numbers[-1]:.{digits}f})" if len(numbers) > 1 else ""
    return f"{statistics.median(numbers):.{digits}f} {name}{spread}"


def _verdict(reached):
    return {True: "yes", False: "**no**", None: ""}[reached]


def _line(cells):
    return "| " + " | ".join(cells) + " |"


def table(rows, growths, steps):
    """In Markdown. The steps: seconds of processor time an example, by name."""
    lines = [_line(["What", "Median (spread)", "Against", "Ratio (spread)", "Aim", "Reached"]), _line(["---"] * 6)]
    for row in rows:
        ratios = sorted(row.ratios())
        ratio = f"{statistics.median(ratios):.2f} ({ratios[0]:.2f} to {ratios[-1]:.2f})" if ratios else ""
        against = f"{row.against}: {_shown(row.references, row.unit)}" if row.references else row.against
        name = row.name + (f"; {row.note}" if row.note else "")
        lines.append(_line([name, _shown(row.values, row.unit), against, ratio, row.aim or "reported",
                            _verdict(row.is_reached())]))
    if steps:
        lines += ["", _line(["Processor time for each of 100 examples of 1 MB, 200 files", "ms"]), _line(["---"] * 2)]
        lines += [_line([name, f"{seconds * 1e3:.2f}"]) for name, seconds in steps.items()]
    if growths:
        lines += ["", _line(["Growth: what an item takes", "At", "Factor from one to the next", "Aim", "Reached"]),
                  _line(["---"] * 5)]
    for growth in growths:
        factor, unit = _UNITS[growth.unit]
        points = ", ".join(f"{count:,}: {value * factor:.3g} {unit}" for count, value in growth.points)
        factors = ", ".join(f"{factor:.2f}" for factor in growth.factors())
        name = growth.name + (f"; {growth.note}" if growth.note else "")
        lines.append(_line([name, points, factors, f"at most {Growth.LIMIT}", _verdict(growth.is_reached())]))
    return "\n".join(lines) + "\n"


def as_json(machine, rows, growths, steps):
    return json.dumps({"machine": machine, "rows": [row.as_json() for row in rows], "processor seconds": steps,
                       "growth": [growth.as_json() for growth in growths]}, indent=2) + "\n"


# The plot

_WIDTH, _HEIGHT, _LEFT, _TOP, _RIGHT, _BOTTOM = 1000, 440, 70, 50, 420, 50
_COLOURS = ("#2563a8", "#c0561f", "#2f855a", "#8a3f9e", "#a8791c", "#b02a48", "#3a7f86", "#555555",
            "#111111")


def _text(x, y, text, **attributes):
    rest = "".join(f' {key.replace("_", "-")}="{value}"' for key, value in attributes.items())
    return f'<text x="{x:.1f}" y="{y:.1f}"{rest}>{xml.sax.saxutils.escape(text)}</text>'


def _dashes(number):
    """The colours come round again, dashed."""
    return ' stroke-dasharray="7 4"' if number >= len(_COLOURS) else ""


def plot(growths):
    """A picture in SVG: what an item takes, as a multiple of what it takes at the smallest number, on logarithmic axes.
    A line that stays level grows with the number of items and no faster."""
    right, bottom = _WIDTH - _RIGHT, _HEIGHT - _BOTTOM
    relative = [[(count, seconds / growth.points[0][1]) for count, seconds in growth.points] for growth in growths]
    counts = [math.log10(count) for points in relative for count, _ in points]
    values = [math.log2(value) for points in relative for _, value in points] + [-1, 1]
    first, last = math.floor(min(counts)), math.ceil(max(counts))
    low, high = math.floor(min(values)), math.ceil(max(values))

    def place(count, value):
        return (_LEFT + (math.log10(count) - first) / (last - first) * (right - _LEFT),
                bottom - (math.log2(value) - low) / (high - low) * (bottom - _TOP))

    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{_WIDTH}" height="{_HEIGHT}" '
             f'viewBox="0 0 {_WIDTH} {_HEIGHT}" font-family="sans-serif" font-size="12">',
             "<!-- SPDX-FileCopyrightText: The Varnel authors -->",
             "<!-- SPDX-License-Identifier: GPL-3.0-or-later -->",
             f'<rect width="{_WIDTH}" height="{_HEIGHT}" fill="white"/>',
             _text(_LEFT, 26, "What an item takes, as a multiple of that at the smallest number", font_size=15)]
    for exponent in range(first, last + 1):
        x, _ = place(10 ** exponent, 1)
        parts.append(f'<path d="M{x:.1f} {_TOP}V{bottom}" stroke="#dddddd"/>')
        parts.append(_text(x, bottom + 20, f"{10 ** exponent:,}", text_anchor="middle"))
    for exponent in range(low, high + 1):
        _, y = place(10 ** first, 2.0 ** exponent)
        parts.append(f'<path d="M{_LEFT} {y:.1f}H{right}" stroke="{"#888888" if exponent == 0 else "#dddddd"}"/>')
        parts.append(_text(_LEFT - 8, y + 4, f"{2.0 ** exponent:g}", text_anchor="end"))
    parts.append(_text((_LEFT + right) / 2, _HEIGHT - 8, "items", text_anchor="middle"))
    for number, (growth, points) in enumerate(zip(growths, relative)):
        colour = _COLOURS[number % len(_COLOURS)]
        places = [place(count, value) for count, value in points]
        line = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
        parts.append(f'<polyline points="{line}" fill="none" stroke="{colour}" stroke-width="2"{_dashes(number)}/>')
        parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3.5" fill="{colour}"/>' for x, y in places]
        y = _TOP + 12 + 22 * number
        parts.append(f'<path d="M{right + 20} {y - 4}h24" stroke="{colour}" stroke-width="3"{_dashes(number)}/>')
        parts.append(_text(right + 52, y, growth.name))
    parts.append("</svg>")
    return "\n".join(parts) + "\n"
