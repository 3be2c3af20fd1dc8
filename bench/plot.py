#!/usr/bin/env python3
"""Turns the figures of tessel_bench into docs/bench.svg and docs/benchmarks.md.

usage: plot.py CSV FOLDER
"""

import csv
import math
import pathlib
import sys
from html import escape

LABELS, WIDTH, LINE, TOP = 400, 560, 22, 76  # pixels
BAR, MISSED, AIM = "#3b6ea5", "#b5473c", "#111"
PEERS = ("libxml2", "pugixml")
DOTS = {"the bare library": "#8fa9c4", "pugixml": "#7a9e3f"}

PAGE = """# Measurements

Written by `./bench/run`, which builds the benchmark, runs every row and replaces
this page and its picture. `build/release/bin/tessel_bench --help` tells how to run
single rows.

Each row does the same work with Tessel, with other XML libraries and with the bare
library below Tessel, in one run and in alternation, and all must agree on the result.
Only the ratios travel from machine to machine: Tessel's figure to the other's, so that
below 1 Tessel is faster. Times are processor time of the thread that works, except for
the two rows with threads of their own. Set-up and closing are outside the clock unless
they are the work.

{surroundings}

![Tessel's time as a multiple of libxml2's, row by row](bench.svg)

{table}

"Spread" is highest less lowest of Tessel's repetitions, in percent of the median. "Aim"
is what to reach: a ratio to another, or so much more than another takes. A missed one is
bold.

"Bare" is Xerces-C without Tessel, for XPath Xalan-C with a wrapper built for the
evaluation. Where it is no library, it is the same work in other surroundings: "warm id"
calls one id over and over, "no other ids" and "no open maps" lack what stands beside,
"half the size" does it to a document half as large, "by sibling" steps from sibling to
sibling, and "transcode" is the XML library's function for texts alone.

Bare Xerces-C gives text in the local code page, as Tessel does: a row that reads or
writes text includes its transcoding. Names are ready in UTF-16 there, as a program
keeps them in constants. libxml2 and pugixml hold text in UTF-8 and give a pointer to
it or a copy, whichever their own function gives. libxml2 keeps its XPath context from
one evaluation to the next and compiles the expression each time. Its time for `//name/..`
grows with the square of the document; without that row the mean to libxml2 is {mean}.

## Aims that are missed

{missed}
"""


def read(path):
    """The surroundings as pairs, and the rows as lists of contestants."""
    surroundings, lines = [], []
    for line in path.read_text().splitlines():
        if line.startswith("# "):
            surroundings.append(tuple(line[2:].split(": ", 1)))
        else:
            lines.append(line)
    rows = {}
    for figure in csv.DictReader(lines):
        rows.setdefault(figure["row"], []).append(figure)
    return surroundings, list(rows.values())


def number(value):
    if value == 0:
        return "0"
    return f"{value:.{max(0, 2 - math.floor(math.log10(value)))}f}"


def amount(figure):
    value = float(figure["median"])
    if figure["kind"] == "bytes":
        return f"{number(value)} B"
    for unit, size in (("ms", 1e6), ("µs", 1e3)):
        if value >= 10 * size:
            return f"{number(value / size)} {unit}"
    return f"{number(value)} ns"


def of(row, name):
    return next((figure for figure in row if figure["contestant"] == name), None)


def bare(row):
    """What Tessel is compared with that is no other XML library."""
    return next((figure for figure in row[1:] if figure["contestant"] not in PEERS), None)


def ratio(figure):
    return "" if figure is None else number(float(figure["ratio"]))


def spread(figure):
    median = float(figure["median"])
    return f"{(float(figure['highest']) - float(figure['lowest'])) / median:.0%}" if median else ""


def aim(row):
    return f"**{row[0]['aim']}**" if row[0]["missed"] else row[0]["aim"]


def table(rows):
    lines = ["| work | per | Tessel | spread | to libxml2 | bare | to bare | to pugixml | aim |",
             "|---|---|--:|--:|--:|---|--:|--:|---|"]
    for row in rows:
        ours, other = row[0], bare(row)
        cells = [ours["title"].replace("|", "\\|"), ours["unit"], amount(ours), spread(ours),
                 ratio(of(row, "libxml2")),
                 f"{other['contestant']}, {amount(other)}" if other else "", ratio(other),
                 ratio(of(row, "pugixml")), aim(row)]
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


def mean_without(rows, left_out):
    """The geometric mean of the expressions' ratios to libxml2, without one of them."""
    ratios = [float(of(row, "libxml2")["ratio"]) for row in rows
              if row[0]["row"].startswith("xpath.") and row[0]["row"] != left_out]
    return number(math.prod(ratios) ** (1 / len(ratios))) if ratios else "unknown"


def missed(rows, reasons):
    """What misses its aim, each with the reason that is known."""
    lines = [f"- {row[0]['title']}: {reasons.get(row[0]['row'], 'not looked into yet.')}"
             for row in rows if row[0]["missed"]]
    return "\n".join(lines) or "None."


def read_reasons(path):
    """Of lines "row: why its aim is missed"."""
    lines = (line for line in path.read_text().splitlines() if line and line[0] != "#")
    return dict(line.split(": ", 1) for line in lines)


def ticks(low, high):
    """The powers of ten in the range, with their doubles and fives where there is room."""
    steps = (1, 2, 5) if math.log10(high / low) < 4 else (1,)
    for power in range(math.floor(math.log10(low)), math.ceil(math.log10(high)) + 1):
        yield from (m * 10.0**power for m in steps if low <= m * 10.0**power <= high)


def picture(rows):
    """A bar for the ratio to libxml2; below, for rows without it, to what is bare."""
    rows = [row for row in rows if len(row) > 1]
    rows.sort(key=lambda row: of(row, "libxml2") is None)
    # Some rows compare the incomparable: a wrapper built for one look at an attribute.
    low, high = 0.02, 50
    height = TOP + LINE * len(rows) + 16

    def x(value):
        value = min(max(value, low), high)
        return LABELS + WIDTH * math.log(value / low) / math.log(high / low)

    out = ['<svg xmlns="http://www.w3.org/2000/svg" font-family="sans-serif" font-size="12"'
           f' width="{LABELS + WIDTH + 20}" height="{height}">',
           '<rect width="100%" height="100%" fill="#fff"/>',
           f'<text x="{LABELS}" y="20" font-size="14">Tessel\'s figure as a multiple of libxml2\'s,'
           ' without it of the bare one (left of 1: Tessel is faster)</text>']
    legend = [("aim met or none", BAR), ("aim missed", MISSED), *DOTS.items()]
    for i, (name, colour) in enumerate(legend):
        out.append(f'<circle cx="{LABELS + 6 + 130 * i}" cy="38" r="5" fill="{colour}"/>'
                   f'<text x="{LABELS + 16 + 130 * i}" y="42">{escape(name)}</text>')
    for tick in ticks(low, high):
        colour = "#444" if tick == 1 else "#ddd"
        out.append(f'<line x1="{x(tick):.1f}" x2="{x(tick):.1f}" y1="{TOP - 6}" y2="{height - 10}"'
                   f' stroke="{colour}"/><text x="{x(tick):.1f}" y="{TOP - 10}" font-size="10"'
                   f' text-anchor="middle">{tick:g}</text>')
    for i, row in enumerate(rows):
        y = TOP + LINE * i
        first = of(row, "libxml2") or bare(row)
        left, right = sorted((x(1), x(float(first["ratio"]))))
        out.append(f'<text x="{LABELS - 10}" y="{y + 15}" text-anchor="end">'
                   f'{escape(row[0]["title"])}</text>'
                   f'<rect x="{left:.1f}" y="{y + 5}" width="{max(right - left, 1):.1f}"'
                   f' height="12" fill="{MISSED if row[0]["missed"] else BAR}"/>')
        if row[0]["aim"].endswith(f" to {first['contestant']}"):
            at = x(float(row[0]["aim"].split()[0]))
            out.append(f'<line x1="{at:.1f}" x2="{at:.1f}" y1="{y + 2}" y2="{y + 20}"'
                       f' stroke="{AIM}" stroke-width="2"/>')
        for other, colour in zip((bare(row), of(row, "pugixml")), DOTS.values()):
            if other is not None and other is not first:
                out.append(f'<circle cx="{x(float(other["ratio"])):.1f}" cy="{y + 11}" r="4"'
                           f' fill="{colour}"/>')
    return "\n".join([*out, "</svg>", ""])


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    surroundings, rows = read(pathlib.Path(sys.argv[1]))
    folder = pathlib.Path(sys.argv[2])
    reasons = read_reasons(pathlib.Path(__file__).with_name("reasons.txt"))
    facts = "\n".join(f"- {name}: {value}" for name, value in surroundings)
    (folder / "bench.svg").write_text(picture(rows))
    (folder / "benchmarks.md").write_text(
        PAGE.format(surroundings=facts, table=table(rows), missed=missed(rows, reasons),
                    mean=mean_without(rows, "xpath.parents")))


main()
