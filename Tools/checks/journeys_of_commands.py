#!/usr/bin/env python3
"""Holds the companion's commands against the journeys: every command is run by the real program in one of them.

The commands are those that the program itself lists. A journey runs one as a list of words that begins with it,
{"sources", "add", ...}; what is commented out or disabled does not count.

Usage: journeys_of_commands.py QUILLORA JOURNEYS_FOLDER        exits 1 and names every command that none runs
"""

import os
import re
import subprocess
import sys

COMMENT = re.compile(r'("(?:\\.|[^"\\\n])*")|//[^\n]*|/\*.*?\*/', re.DOTALL)
# A test that is not run, to the brace that closes it at the beginning of a line.
DISABLED = re.compile(r"^TEST(?:_F|_P)?\([^)]*\bDISABLED_.*?^\}", re.DOTALL | re.MULTILINE)
WORDS = re.compile(r'\{\s*("[a-z-]+"(?:\s*,\s*"[a-z-]+")*)')


def commands_of(help_text):
    """The paths of the commands in the program's help, such as "sources add"."""
    section = re.search(r"^Commands:\n(.*?)\n\n", help_text, re.DOTALL | re.MULTILINE)
    return re.findall(r"^  ([a-z-]+(?: [a-z-]+)*)  ", section[1], re.MULTILINE) if section else []


def word_lists(source):
    """The lists of words in a journey's source, as tuples."""
    code = DISABLED.sub("", COMMENT.sub(lambda match: match[1] or " ", source))
    return [tuple(re.findall(r'"([a-z-]+)"', match)) for match in WORDS.findall(code)]


def without_journey(commands, sources):
    """Those of the commands that no source runs, in their order."""
    run = {words[:length] for source in sources for words in word_lists(source) for length in range(1, len(words) + 1)}
    return [command for command in commands if tuple(command.split()) not in run]


def main(program, folder):
    listed = subprocess.run([program, "--help"], env={"LANG": "C.UTF-8"}, check=True, capture_output=True, text=True).stdout
    commands = commands_of(listed)
    if not commands:
        print(f"{program} --help lists no commands")
        return 1
    sources = []
    for name in sorted(os.listdir(folder)):
        if name.endswith("Journeys.cpp"):
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                sources.append(file.read())
    missing = without_journey(commands, sources)
    for command in missing:
        print(f"no journey in {folder} runs: quillora {command}")
    print(f"{len(commands)} commands and {len(sources)} files of journeys read, {len(missing)} without one")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
