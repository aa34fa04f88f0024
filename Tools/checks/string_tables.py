#!/usr/bin/env python3
"""Compares the languages of every string table: the same keys, the same placeholders, each key once.

Usage: string_tables.py SOURCE_FOLDER        exits 1 and names every fault, if there is one
"""

import os
import re
import sys

LANGUAGES = ("en", "es")
# Comments and blanks, one entry, or what is neither.
PIECE = re.compile(
    r'(?P<skip>\s+|//[^\n]*|/\*.*?\*/)|"(?P<key>(?:\\.|[^"\\])*)"\s*=\s*"(?P<text>(?:\\.|[^"\\])*)"\s*;|(?P<stray>.)',
    re.DOTALL,
)
PLACEHOLDER = re.compile(r"%(?:\d+\$)?(?:ll|l)?[d@sfu]|%%")


def read_table(text):
    """The entries of a table in their order, and the lines on which something is no entry."""
    entries, stray, line = [], [], 1
    for match in PIECE.finditer(text):
        if match["key"] is not None:
            entries.append((match["key"], match["text"]))
        elif match["stray"] and (not stray or stray[-1] != line):
            stray.append(line)
        line += match.group().count("\n")
    return entries, stray


def placeholders(text):
    return sorted(found for found in PLACEHOLDER.findall(text) if found != "%%")


def faults(tables):
    """`tables` maps a language to its table's text."""
    read = {}
    for language, text in sorted(tables.items()):
        entries, stray = read_table(text)
        read[language] = dict(entries)
        for line in stray:
            yield f"{language}: line {line} is neither an entry nor a comment"
        keys = [key for key, _ in entries]
        for key in sorted({key for key in keys if keys.count(key) > 1}):
            yield f'{language}: "{key}" stands there more than once'
        for key, value in entries:
            if not value:
                yield f'{language}: "{key}" has no text'
    for language in LANGUAGES:
        if language not in read:
            yield f"{language}: there is no table"
    every = sorted(set().union(*read.values())) if read else []
    for key in every:
        with_key = [language for language in sorted(read) if key in read[language]]
        for language in sorted(set(read) - set(with_key)):
            yield f'{language}: "{key}" is missing'
        wanted = placeholders(read[with_key[0]][key])
        for language in with_key[1:]:
            if placeholders(read[language][key]) != wanted:
                yield f'{language}: "{key}" has other placeholders than in {with_key[0]}'


def bundles_below(root):
    """The folders that hold `<language>.lproj` folders, with each language's table file."""
    for folder, names, _ in os.walk(root):
        names[:] = sorted(name for name in names if name not in ("build", ".git"))
        languages = [name for name in names if name.endswith(".lproj")]
        if languages:
            files = {name.removesuffix(".lproj"): os.path.join(folder, name, "Localizable.strings") for name in languages}
            yield os.path.relpath(folder, root), files


def main(root):
    count, bad = 0, 0
    for bundle, files in bundles_below(root):
        count += 1
        tables = {}
        for language, path in files.items():
            with open(path, encoding="utf-8") as file:
                tables[language] = file.read()
        for fault in faults(tables):
            print(f"{bundle}: {fault}")
            bad += 1
    print(f"{count} bundles read, {bad} faults")
    return 1 if bad or not count else 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
