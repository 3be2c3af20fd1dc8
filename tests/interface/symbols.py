"""Compares what the built library exports and imports, and the prototypes in its
headers, with the checked-in lists: a change of the interface is a decision.

Usage: symbols.py LIBRARY INCLUDE_DIR [--update]
"""

import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).parent


def dynamic_symbols(library, which):
    out = subprocess.run(["nm", "-D", which, library], check=True, capture_output=True, text=True)
    return [line.split()[-1].split("@")[0] for line in out.stdout.splitlines()]


def exports(library):
    # A sanitizer adds symbols of its own to what it instruments.
    return sorted(s for s in dynamic_symbols(library, "--defined-only")
                  if not re.match(r"__(asan|odr|ubsan|tsan|start|stop)", s))


def imports(library):
    return sorted(s for s in dynamic_symbols(library, "--undefined-only") if s.startswith("Host"))


def prototypes(include):
    found = []
    for header in sorted(pathlib.Path(include).glob("tessel/*.h")):
        text = re.sub(r"/\*.*?\*/", "", header.read_text(), flags=re.S)
        for match in re.finditer(r"(?:TSX_API|^(?:void|HostHandle|int32_t|size_t|void\*))\s[^;{}#]*?\)\s*;",
                                 text, flags=re.S | re.M):
            found.append(re.sub(r"\s+", " ", match.group(0)).replace("TSX_API ", ""))
    return sorted(found)


def compare(name, actual, update):
    path = HERE / name
    if update:
        path.write_text("\n".join(actual) + "\n")
    expected = path.read_text().splitlines()
    for line in sorted(set(actual) - set(expected)):
        print(f"{name}: not in the list: {line}")
    for line in sorted(set(expected) - set(actual)):
        print(f"{name}: only in the list: {line}")
    return actual == expected


def main():
    library, include = sys.argv[1:3]
    update = "--update" in sys.argv
    same = [compare("exports.txt", exports(library), update),
            compare("imports.txt", imports(library), update),
            compare("prototypes.txt", prototypes(include), update)]
    names = set(exports(library))
    declared = {re.search(r"(\w+)\s*\(", p).group(1) for p in prototypes(include)}
    undeclared = {n for n in names if not n.startswith(("_Z", "g_"))} - declared
    for name in sorted(undeclared):
        print(f"exported without a prototype: {name}")
    sys.exit(0 if all(same) and not undeclared else 1)


main()
