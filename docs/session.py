"""Draws a session with the client, as it runs, into an SVG picture.

Usage: session.py CLIENT PICTURE
"""

import html
import os
import pty
import re
import subprocess
import sys
import tempfile

CLIENT, PICTURE = os.path.abspath(sys.argv[1]), sys.argv[2]
FILES = {
    "floor.xml": '<floor>\n  <tile size="20"><colour>lapis</colour></tile>\n'
                 '  <tile size="35"/><!-- worn -->\n</floor>\n',
    "broken.xml": "<floor>\n  <tile size=20/>\n  <step></stair>\n</floor>\n",
}
COMMANDS = [
    "tessel tree floor.xml",
    "tessel query floor.xml '//tile[@size > 25]'",
    "tessel edit --in-place --set //colour azure --delete '//comment()' floor.xml",
    "tessel query --text floor.xml //colour",
    "tessel check broken.xml",
]
COLOURS = {"1": "#ffffff", "31": "#ff7b72", "32": "#7ee787", "36": "#79c0ff"}
LINE, LEFT, WIDTH = 18, 16, 720


def output_of(command, folder):
    """What the command writes to a terminal."""
    primary, secondary = pty.openpty()
    path = f"{os.path.dirname(CLIENT)}:{os.environ['PATH']}"
    subprocess.run(["bash", "-c", command], cwd=folder, stdout=secondary, stderr=secondary,
                   env={"PATH": path, "TERM": "xterm", "LC_ALL": "C.UTF-8"}, check=False)
    os.close(secondary)
    text = b""
    try:
        while chunk := os.read(primary, 65536):
            text += chunk
    except OSError:
        pass
    os.close(primary)
    return [line for line in text.decode().replace("\r", "").split("\n") if line.strip()]


def spans(line):
    colour = "#c9d1d9"
    for piece in re.split(r"(\x1b\[\d*m)", line):
        if piece.startswith("\x1b"):
            colour = COLOURS.get(piece[2:-1], "#c9d1d9")
        elif piece:
            yield f'<tspan fill="{colour}">{html.escape(piece)}</tspan>'


def main():
    lines = []
    with tempfile.TemporaryDirectory() as folder:
        for name, content in FILES.items():
            with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                file.write(content)
        for command in COMMANDS:
            lines += [f"\x1b[36m$\x1b[0m {command}", *output_of(command, folder)]
    height = LINE * len(lines) + 2 * LEFT
    with open(PICTURE, "w", encoding="utf-8") as picture:
        picture.write(f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
                      'font-family="monospace" font-size="13">\n'
                      f'<rect width="{WIDTH}" height="{height}" rx="8" fill="#161b22" '
                      'stroke="#8b949e"/>\n')
        for number, line in enumerate(lines):
            picture.write(f'<text x="{LEFT}" y="{LEFT + LINE * number + 13}" xml:space="preserve">'
                          + "".join(spans(line)) + "</text>\n")
        picture.write("</svg>\n")


main()
