#!/usr/bin/env python3
"""Measures the client beside xmllint and xmlstarlet, and prints a section of the page.

usage: client.py TESSEL
"""

import os
import statistics
import sys
import tempfile

REPETITIONS = 5
ITEM = "//item[@id='70000']/name"
# What is done, and how each program is asked for it; "-" where it cannot do it.
WORK = [
    ("Start, and check a small file", "tessel check small.xml", "xmllint --noout small.xml",
     "xmlstarlet val small.xml"),
    ("Start what is only linked with Xerces-C and Xalan-C", "bench_linked", "-", "-"),
    ("Check 20 MB", "tessel check large.xml", "xmllint --noout --stream large.xml",
     "xmlstarlet val large.xml"),
    ("Write 20 MB back", "tessel format large.xml", "xmllint large.xml",
     "xmlstarlet fo --noindent large.xml"),
    ("Find one element in 20 MB", f"tessel query large.xml {ITEM}",
     f"xmllint --xpath {ITEM} large.xml", f"xmlstarlet sel -t -c {ITEM} large.xml"),
    ("Set one element in 20 MB", f"tessel set large.xml {ITEM} x", "-",
     f"xmlstarlet ed -u {ITEM} -v x large.xml"),
    ("Set two elements in 20 MB and delete one",
     f"tessel edit --set {ITEM} x --set //item[5]/note y --delete //item[6] large.xml", "-",
     f"xmlstarlet ed -u {ITEM} -v x -u //item[5]/note -v y -d //item[6] large.xml"),
]


def write_documents(folder):
    with open(os.path.join(folder, "small.xml"), "w", encoding="utf-8") as file:
        file.write("<list><item/></list>")
    with open(os.path.join(folder, "large.xml"), "w", encoding="utf-8") as file:
        file.write('<?xml version="1.0" encoding="UTF-8"?>\n<list>\n')
        for number in range(140000):
            file.write(f'<item id="{number}" state="open"><name>item {number}</name>'
                       f"<note>amber &amp; blue, {number * 7919 % 100003} pieces</note>"
                       "<price>12.50</price></item>\n")
        file.write("</list>\n")


def run_once(command, folder):
    """CPU seconds and megabytes at the peak of one run."""
    words = command.split()
    child = os.fork()
    if child == 0:
        os.chdir(folder)
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
        os.execvp(words[0], words)
    _, status, usage = os.wait4(child, 0)
    if status != 0:
        sys.exit(f"failed: {command}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def cell(command, folder):
    if command == "-":
        return "-"
    runs = [run_once(command, folder) for _ in range(REPETITIONS)]
    seconds, memory = (statistics.median(column) for column in zip(*runs))
    time = f"{seconds * 1000:.1f} ms" if seconds < 0.1 else f"{seconds:.2f} s"
    return f"{time}, {memory:.0f} MB"


def main():
    os.environ["PATH"] = f"{os.path.dirname(os.path.abspath(sys.argv[1]))}:{os.environ['PATH']}"
    print("\n## The client\n\n"
          f"CPU time and peak of memory, median of {REPETITIONS} runs of each program.\n\n"
          "| work | tessel | xmllint | xmlstarlet |\n|---|--:|--:|--:|")
    with tempfile.TemporaryDirectory() as folder:
        write_documents(folder)
        for what, *commands in WORK:
            cells = [cell(command, folder) for command in commands]
            print(f"| {what} | " + " | ".join(cells) + " |", flush=True)
    print("\nMost of the start is the dynamic loader's work: before any command runs it binds "
          "the XML libraries,\nwhich have 23,000 references by name between them, and the "
          "thirty that libcurl brings along for\nXerces-C. What any program starts with that is "
          "linked with them has a row of its own.")


main()
