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
BAR, PEERS = "#3b6ea5", {"libxml2": "#d9822b", "pugixml": "#7a9e3f"}

PAGE = """# Measurements

Written by `./bench/run`, which builds the benchmark, runs every row and replaces
this page and its picture. `build/release/bin/tessel_bench --help` tells how to run
single rows.

Each row does the same work with Tessel, with the bare library below it (Xerces-C,
for XPath Xalan-C with a wrapper built for the evaluation) and with other XML
libraries, in one run and in alternation, and all must agree on the result. Only
the ratios travel from machine to machine: Tessel's figure to the other's, so that
below 1 Tessel is faster. Set-up and closing are outside the clock unless they are
the work.

{surroundings}

![Tessel's time as a multiple of the bare library's, row by row](bench.svg)

{table}

"Spread" is highest less lowest of Tessel's repetitions, in percent of the median.
"Aim" is the ratio to reach, to the library that it names if it names one. Closing a
document with a million ids is judged by the difference, not the ratio: bare Xerces-C
frees its tree in blocks, at next to no cost a node.

Bare Xerces-C gives text in the local code page, as Tessel does: a row that reads or
writes text includes its transcoding. Names are ready in UTF-16 there, as a program
keeps them in constants. libxml2 and pugixml hold text in UTF-8 and give a pointer to
it or a copy, whichever their own function gives.
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


def ratio_to(row, name):
    return next((float(f["ratio"]) for f in row if f["contestant"] == name), None)


def times(ratio):
    return "" if ratio is None else number(ratio)


def spread(figure):
    median = float(figure["median"])
    return f"{(float(figure['highest']) - float(figure['lowest'])) / median:.0%}" if median else ""


def table(rows):
    lines = ["| work | per | Tessel | spread | compared with | ratio"
             " | to libxml2 | to pugixml | aim |",
             "|---|---|--:|--:|---|--:|--:|--:|---|"]
    for row in rows:
        ours, other = row[0], row[1] if len(row) > 1 else None
        compared = f"{other['contestant']}, {amount(other)}" if other else ""
        cells = [ours["title"].replace("|", "\\|"), ours["unit"], amount(ours), spread(ours),
                 compared,
                 times(float(other["ratio"])) if other else "",
                 *(times(ratio_to(row, peer)) for peer in PEERS), ours["aim"]]
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


def ticks(low, high):
    """The powers of ten in the range, with their doubles and fives where there is room."""
    steps = (1, 2, 5) if math.log10(high / low) < 4 else (1,)
    for power in range(math.floor(math.log10(low)), math.ceil(math.log10(high)) + 1):
        yield from (m * 10.0**power for m in steps if low <= m * 10.0**power <= high)


def picture(rows):
    rows = [row for row in rows if len(row) > 1]
    ratios = [float(f["ratio"]) for row in rows for f in row[1:]]
    low, high = min(0.5, *ratios) * 0.9, max(2.0, *ratios) * 1.1
    height = TOP + LINE * len(rows) + 16

    def x(ratio):
        return LABELS + WIDTH * math.log(ratio / low) / math.log(high / low)

    out = ['<svg xmlns="http://www.w3.org/2000/svg" font-family="sans-serif" font-size="12"'
           f' width="{LABELS + WIDTH + 20}" height="{height}">',
           '<rect width="100%" height="100%" fill="#fff"/>',
           f'<text x="{LABELS}" y="20" font-size="14">Tessel\'s figure as a multiple of the'
           ' other\'s (left of 1: Tessel is faster)</text>']
    legend = [("the bare library", BAR), *PEERS.items()]
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
        ratio = float(row[1]["ratio"])
        left, right = sorted((x(1), x(ratio)))
        out.append(f'<text x="{LABELS - 10}" y="{y + 15}" text-anchor="end">'
                   f'{escape(row[0]["title"])}</text>'
                   f'<rect x="{left:.1f}" y="{y + 5}" width="{max(right - left, 1):.1f}"'
                   f' height="12" fill="{BAR}"/>')
        for peer, colour in PEERS.items():
            if (value := ratio_to(row, peer)) is not None:
                out.append(f'<circle cx="{x(value):.1f}" cy="{y + 11}" r="4" fill="{colour}"/>')
    return "\n".join([*out, "</svg>", ""])


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    surroundings, rows = read(pathlib.Path(sys.argv[1]))
    folder = pathlib.Path(sys.argv[2])
    facts = "\n".join(f"- {name}: {value}" for name, value in surroundings)
    (folder / "bench.svg").write_text(picture(rows))
    (folder / "benchmarks.md").write_text(PAGE.format(surroundings=facts, table=table(rows)))


main()
