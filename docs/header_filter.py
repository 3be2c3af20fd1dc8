"""Turns a public header's plain comments into what Doxygen reads.

The headers are written for their readers in an editor: block comments without
marks, sections as "-- Title ---", codes in indented lists. Usage: FILE on the
command line, the result on standard output.
"""

import re
import sys

SECTION = re.compile(r"^/\* -- (.*?) -+(\s*\*/)?$")
CODE_LINE = re.compile(r"^ \*   (?=\S)(.*?)(?:  +(.*))?$")
PROTOTYPE = re.compile(r"^(?:TSX_API|STANDIN_API)\s.*?(\w+)\(")


def marked_up(text):
    """Escapes what Doxygen would take for markup, and links the status codes."""
    text = re.sub(r"<(tessel/\w+\.h)>", r"\1", text)
    text = text.replace("#", r"\#").replace("<", r"\<")
    text = re.sub(r"(?<![\w*/])\*(\w+)", r"`*\1`", text)
    text = re.sub(r"`(\*?\w+)`", r"<code>\1</code>", text)
    return re.sub(r"\b(domErr\w+)", r'\\ref \1 "\1"', text)


def comment_lines(lines):
    """One comment, its indented lines as list items."""
    in_list = False
    for line in lines:
        item = CODE_LINE.match(line)
        if item and not line.startswith(" *    "):
            if not in_list:
                yield " *"
            in_list = True
            what, meaning = item.groups()
            yield " *   - " + marked_up(what + (": " + meaning if meaning else ""))
        elif in_list and line.startswith(" *    "):
            yield " *     " + marked_up(line[2:].strip())
        else:
            if in_list:
                yield " *"
            in_list = False
            yield line[:2] + marked_up(line[2:]) if line.startswith(" *") else marked_up(line)


def closed(comment):
    """The comment with its end on a line of its own, after a list too."""
    body, _, _ = comment.rpartition("*/")
    return body.rstrip().split("\n")


def blocks(text):
    """The header in pieces: comments that start a line, and what is between."""
    return re.split(r"(^/\*.*?\*/$)", text, flags=re.S | re.M)


def documented(comment, is_first):
    first, *rest = closed(comment)
    lines = [" * " + first[3:], *rest]
    yield "/** @file" if is_first else "/**"
    yield from comment_lines(lines)
    yield " */"


def section(title, comment):
    first, *rest = closed(comment)
    del first
    yield "/** @name " + title
    yield from comment_lines([line for line in rest if line.strip(" *-")])
    yield " * @{ */"


def code(text):
    """Gives the second of two prototypes under one comment the first one's text.

    A prototype without a comment gets a command that Doxygen does not know: it
    stops there.
    """
    last, is_first = "", True
    for line in text.strip("\n").split("\n"):
        prototype = PROTOTYPE.match(line)
        if prototype and not is_first:
            yield f"/** \\copydoc {last} */" if last else "/** \\undocumented_prototype */"
        if prototype:
            last = prototype.group(1)
        elif not line.strip():
            last = ""
        is_first = False
        yield re.sub(r"/\* (.*) \*/$", lambda m: f"/**< {marked_up(m.group(1))} */", line)


def filtered(text):
    is_first, is_open = True, False
    for piece in blocks(text):
        start = SECTION.match(piece.split("\n")[0])
        if start:
            if is_open:
                yield "/** @} */"
            is_open = True
            yield from section(start.group(1), piece)
        elif piece.startswith("/*"):
            yield from documented(piece, is_first)
        else:
            yield from code(piece)
        is_first = is_first and not piece.strip()
    if is_open:
        yield "/** @} */"


def main():
    with open(sys.argv[1], encoding="utf-8") as header:
        print("\n".join(filtered(header.read())))


main()
