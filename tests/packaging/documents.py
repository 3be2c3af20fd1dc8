"""Holds the documents against what they speak about: the changelog against the
version, the client's man page and completion against its own help.

Usage: documents.py SOURCE_DIR VERSION [CLIENT]
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(sys.argv[1])
problems = []


def require(truth, problem):
    if not truth:
        problems.append(problem)


def check_changelog(version):
    top = re.search(r"^## (\S+)", (ROOT / "CHANGELOG.md").read_text(), flags=re.M)
    require(top and top.group(1) == version, f"CHANGELOG.md does not begin with {version}")


def check_links():
    """Every relative link leads to a file."""
    for page in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")]:
        for target in re.findall(r"\]\(([^)#]+)[^)]*\)", page.read_text()):
            if "://" not in target:
                require((page.parent / target).exists(), f"{page.name}: no such file: {target}")


def help_of(client, *command):
    return subprocess.run([client, *command, "--help"], check=True, capture_output=True,
                          text=True).stdout


def options_in(text):
    return set(re.findall(r"(?<![\w-])(--[a-z][a-z-]+)", text)) - {"--help"}


def subcommands(text):
    return re.findall(r"^  ([a-z]+)  ", text.split("Subcommands:")[1], flags=re.M)


def completions(*words):
    """What the shell offers after these words."""
    script = (f"source {ROOT}/tools/completion.bash; COMP_WORDS=({' '.join(words)} --); "
              "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tessel; echo \"${COMPREPLY[@]}\"")
    return set(subprocess.run(["bash", "-c", script], check=True, capture_output=True,
                              text=True).stdout.split())


def check_client(client):
    man = (ROOT / "docs" / "tessel.1").read_text().replace("\\-", "-")
    whole = help_of(client)
    common = options_in(whole)
    for command in subcommands(whole):
        require(f".SS {command}" in man or f'.SS "{command}' in man, f"tessel.1: no {command}")
        text = man.split(f".SS {command}", 1)[-1].split(".S")[0]
        own = options_in(help_of(client, command)) - common
        require(own <= options_in(text), f"tessel.1: {command}: {own - options_in(text)}")
        offered = completions("tessel", command)
        require(own <= offered, f"completion: {command}: {own - offered}")
        require(offered <= own | common | {"--help"},
                f"completion: {command} has no {offered - own - common}")
    require(common <= options_in(man), f"tessel.1: {common - options_in(man)}")


check_changelog(sys.argv[2])
check_links()
if len(sys.argv) > 3 and sys.argv[3]:
    check_client(sys.argv[3])
print("\n".join(problems))
sys.exit(1 if problems else 0)
