"""Runs the code of the pages: of howto.md every piece, against what it is said to print;
of comparison.md every task in all three libraries, which must print the same.

Usage: pages.py DOCS_DIR TESSEL; pkg-config must find tessel and tessel-host.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

DOCS, CLIENT = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()
FENCE = re.compile(r"^```(\w+)\n(.*?)^```$", re.M | re.S)
problems = []

# Whoever leaves something open fails, whatever was printed.
LEDGER = """
#include <stdlib.h>
__attribute__((destructor)) static void check_ledger(void) {
  StandinLedger ledger;
  StandinReadLedger(&ledger);
  if (ledger.handles != 0 || ledger.violations != 0) _Exit(9);
}
"""

TASK = """
static void task_NUMBER(void) {
  const char* xml = "<floor><tile size=\\"20\\"/><tile size=\\"30\\"/></floor>";
  (void)xml;
  SETUP
  {
    PIECE
  }
  CLEANUP
}
"""

MARK = "-- task"

# Of each library: its package, what stands before main, and the tree of the later tasks.
LIBRARIES = {
    "Tessel": ("tessel tessel-host", """
#include <stdio.h>
#include <tessel/standin.h>
#include <tessel/tessel.h>
static HStr string(const char* text) { return StandinStringFromText(text, -1); }
static void print(HStr text) { printf("%.*s\\n", (int)(*text)->count, (char*)(*text)->bytes); }
""" + LEDGER, """TSXRefId document, root, tile; HStr source = string(xml), faults = NULL, thrown = NULL;
  TSXDocumentOpen(0, &document); TSXLoadString(document, &source, &faults, &thrown);
  TSXGetDocumentElement(document, 0, &root); TSXGetFirstChild(root, 0, &tile);""",
               "TSXDocumentClose(document); ClearString(&source); ClearString(&faults);"),
    "libxml2": ("libxml-2.0", """
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <stdio.h>
#include <string.h>
static void print(const xmlChar* text) { printf("%s\\n", (const char*)text); }
""", """xmlDocPtr document = xmlReadMemory(xml, (int)strlen(xml), NULL, NULL, 0);
  xmlNodePtr root = xmlDocGetRootElement(document), tile = root->children; (void)tile;""",
                "xmlFreeDoc(document);"),
    "pugixml": ("pugixml", """
#include <cstdio>
#include <pugixml.hpp>
#include <sstream>
static void print(const char* text) { printf("%s\\n", text); }
""", """pugi::xml_document document; document.load_string(xml);
  pugi::xml_node root = document.document_element(), tile = root.first_child(); (void)tile;""",
                ""),
}


def run(what, command, folder, **options):
    result = subprocess.run(command, cwd=folder, capture_output=True, text=True, **options)
    if result.returncode != 0:
        problems.append(f"{what}: status {result.returncode}\n{result.stderr}")
    return result


def run_program(what, source, packages, folder, language="c"):
    flags = subprocess.run(["pkg-config", "--cflags", "--libs", *packages.split()], check=True,
                           capture_output=True, text=True).stdout.split()
    name = "piece." + ("c" if language == "c" else "cpp")
    (folder / name).write_text(source)
    compiler = ["cc", "-std=gnu99"] if language == "c" else ["c++", "-std=c++17"]
    if run(what, [*compiler, "-Wall", "-Werror", "-Wno-unused-function", name, "-o", "piece", *flags, "-lpthread"],
           folder).returncode != 0:
        return None
    return run(what, ["./piece"], folder).stdout


def run_shell(what, script, folder):
    path = os.environ | {"PATH": f"{CLIENT.parent}:{os.environ['PATH']}"}
    return run(what, ["bash", "-ec", "exec 2>&1\n" + script], folder, env=path).stdout


def answers(folder):
    page = (DOCS / "howto.md").read_text()
    frame = FENCE.search(page).group(2)
    for section in page.split("\n## ")[1:]:
        title = section.split("\n")[0]
        pieces = FENCE.findall(section)
        if not pieces or len(pieces) % 2 != 0:
            problems.append(f"{title}: needs code, and what it prints")
        for (language, code), (_, printed) in zip(pieces[::2], pieces[1::2]):
            if language == "sh":
                got = run_shell(title, code, folder)
            else:
                whole = code if "int main" in code else frame.replace("/* here */", code)
                got = run_program(title, whole + LEDGER, "tessel tessel-host", folder)
            if got not in (None, printed):
                problems.append(f"{title}: printed\n{got}")


def tasks(folder):
    page = (DOCS / "comparison.md").read_text()
    sections = page.split("\n## ")[1:]
    columns = zip(*map(FENCE.findall, sections), strict=True)
    printed = []
    # One program of each library, which says where each task begins.
    for column, (name, library) in zip(columns, LIBRARIES.items(), strict=True):
        packages, head, setup, cleanup = library
        main = ""
        for number, (language, code) in enumerate(column):
            task = TASK.replace("PIECE", code).replace("NUMBER", str(number))
            task = task.replace("SETUP", setup if number else "")
            head += task.replace("CLEANUP", cleanup if number else "")
            main += f'  puts("{MARK}"); task_{number}();\n'
        source = f"{head}\nint main(void) {{\n{main}  return 0;\n}}\n"
        text = run_program(f"comparison: {name}", source, packages, folder, language)
        printed.append((text or "").split(f"{MARK}\n")[1:])
    for section, *texts in zip(sections, *printed):
        if len(set(texts)) != 1 or texts[0] == "":
            problems.append(f"{section.splitlines()[0]}: printed {texts}")


with tempfile.TemporaryDirectory() as work:
    answers(pathlib.Path(work))
    tasks(pathlib.Path(work))
print("\n".join(problems))
sys.exit(1 if problems else 0)
