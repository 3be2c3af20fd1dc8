"""Writes a stand-in for every exported function, which does what the function does or,
where the environment picks a mutant of it, something else.

  generate.py INCLUDE_DIR OUT_DIR

OUT_DIR/renames.h, included first, makes a test call the stand-ins; OUT_DIR/stand_ins.cpp
has them; OUT_DIR/mutants.txt names the mutants, one a line:

  FUNCTION:nothing        answers what it would, and does nothing
  FUNCTION:as:OTHER       does as another function of its signature, with codes of its own
  FUNCTION:ARGUMENT=VALUE takes the argument for a constant; an out stays as it was
"""

import collections
import pathlib
import re
import sys

# What stands in the place of an argument, by its type: a name for the value, the expression.
CONSTANTS = {
    "TSXRefId": [("0", "0")],
    "int32_t": [("0", "0"), ("1", "1")],
    "bool": [("0", "false"), ("1", "true")],
    "const uint8_t*": [("0", "CNumber<uint8_t>(0)"), ("1", "CNumber<uint8_t>(1)")],
    "const int32_t*": [("0", "CNumber<int32_t>(0)"), ("1", "CNumber<int32_t>(1)")],
    "uint8_t*": [("none", "CNumber<uint8_t>(0)")],
    "int32_t*": [("none", "CNumber<int32_t>(0)")],
    "const int64_t*": [("0", "CNumber<int64_t>(0)"), ("1", "CNumber<int64_t>(1)")],
    "int64_t*": [("none", "CNumber<int64_t>(0)")],
    "double*": [("none", "CNumber<double>(0)")],
    "HStr*": [("none", "CString()")],
    "HStrArray*": [("none", "CStrings()")],
    "GenericRefObjSessionArray*": [("none", "CIds()")],
    "HStr": [("none", "nullptr")],
    "HostPath": [("none", "nullptr")],
    "const HStrRecord*": [("empty", "&g_Empty")],
    "const char*": [("empty", '""')],
    "const unsigned char*": [("empty", 'reinterpret_cast<const unsigned char*>("")')],
    "unsigned char*": [("0", "CId(nullptr)")],
    "void*": [("none", "CString()")],
}
# Who takes back the id in an out that the caller does not see.
CLOSES = {"listOut": "TSXNodeListClose", "mapOut": "TSXNamedNodeMapClose",
          "implementationOut": "TSXImplementationClose", "documentOut": "TSXDocumentClose"}

Function = collections.namedtuple("Function", "linkage result name parameters")  # (type, name)


def functions(include):
    for header in sorted(pathlib.Path(include).glob("tessel/*.h")):
        text = re.sub(r"/\*.*?\*/|^\s*#[^\n]*", "", header.read_text(), flags=re.S | re.M)
        for match in re.finditer(r'(TSX_API|__attribute__\(\(visibility\("default"\)\)\))\s+'
                                 r"([^;{}]*?)\b(\w+)\(([^()]*)\);", text):
            macro, result, name, arguments = (" ".join(part.split()) for part in match.groups())
            linkage = 'extern "C" ' if macro == "TSX_API" else ""
            parameters = [re.fullmatch(r"(.*?)\s*\b(\w+)", one.strip()).groups()
                          for one in arguments.split(",") if one.strip() != "void"]
            yield Function(linkage, result, name, parameters)


def reference_codes(include):
    """The codes for bad ids of each function, in the order of the list."""
    text = (pathlib.Path(include) / "tessel" / "status_list.h").read_text()
    codes = collections.defaultdict(list)
    for row in re.split(r"^  X\(", text, flags=re.M)[1:]:
        name = re.search(r"domErr\w+", row).group(0)
        for function in re.findall(r"\w+", row.split('"')[1]) if name.startswith("domErrRef") else []:
            codes[function].append(name)
    return codes


def stand_ins(kind, name):
    if kind == "TSXRefId*":
        return [("none", f"CId({CLOSES.get(name, 'TSXNodeClose')})")]
    return CONSTANTS[kind]


def relatives(function, among):
    """The other functions of its signature."""
    return [other.name for other in among if other is not function
            and other.result == function.result
            and [kind for kind, _ in other.parameters] == [kind for kind, _ in function.parameters]]


def nothing(function, call):
    if function.result == "void":
        return "return;"
    # What a save writes stays, and so does the memory that a pointer names.
    writes = any(kind == "HostPath" for kind, _ in function.parameters)
    if writes or function.result.endswith("*"):
        return "return {};"
    return f"return InACopy([&] {{ return {call}; }});"


def mutants(function, among, codes):
    """The kind and the statement of each mutant of a function."""
    names = [name for _, name in function.parameters]
    yield "nothing", nothing(function, f"{function.name}({', '.join(names)})")
    for other in relatives(function, among):
        call = f"{other}({', '.join(names)})"
        if function.result == "TSXStatus":
            lists = (", ".join(codes[one]) for one in (other, function.name))
            call = f"Translated({call}, {{{next(lists)}}}, {{{next(lists)}}})"
        yield f"as:{other}", f"return {call};"
    for i, (kind, name) in enumerate(function.parameters):
        for value, expression in stand_ins(kind, name) if name != "ignored" else []:
            arguments = names[:i] + [expression] + names[i + 1:]
            yield f"{name}={value}", f"return {function.name}({', '.join(arguments)});"


def main():
    include, out = sys.argv[1], pathlib.Path(sys.argv[2])
    out.mkdir(parents=True, exist_ok=True)
    found, codes = list(functions(include)), reference_codes(include)
    body, listed = [], []
    for index, function in enumerate(found):
        parameters = ", ".join(f"[[maybe_unused]] {kind} {name}" for kind, name in function.parameters)
        body.append(f"{function.linkage}{function.result} mutable_{function.name}({parameters}) {{\n"
                    f"  switch (Enter({index})) {{")
        for kind, statement in mutants(function, found, codes):
            body.append(f"    case {len(listed)}: {statement}")
            listed.append(f"{function.name}:{kind}")
        arguments = ", ".join(name for _, name in function.parameters)
        body.append(f"    default: return {function.name}({arguments});\n  }}\n}}")
    rows = lambda names: "".join(f'    "{name}",\n' for name in names)
    pages = {
        "renames.h": "".join(f"#define {one.name} mutable_{one.name}\n" for one in found),
        "mutants.txt": "".join(f"{name}\n" for name in listed),
        "stand_ins.cpp": '#include "mutants/mutants.h"\n\nnamespace mutants {\n\n'
                         f"const std::vector<const char*> g_Functions{{\n{rows(one.name for one in found)}}};\n"
                         f"const std::vector<const char*> g_Mutants{{\n{rows(listed)}}};\n\n"
                         "}  // namespace mutants\n\nusing namespace mutants;\n\n"
                         + "\n".join(body) + "\n",
    }
    for name, text in pages.items():
        if not (out / name).exists() or (out / name).read_text() != text:
            (out / name).write_text(text)


main()
