#!/usr/bin/env python3
"""Holds every string table against its other languages and against the code that uses it.

Languages: the same keys, each once, with a text and the same placeholders; plural forms have ".other" at least.
Code:      every key that code asks for is there, and none stands unused; a text has a place for each value that
           its call gives; no program says anything that does not come from a table. What a program translates
           of other parts' English ("said-...") is what those parts say.

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
# The forms of a text that go with a number, as CLDR names them. Which of them a language has is its own affair;
# a test in C++ asks the text library for that.
PLURAL = re.compile(r"^(.+)\.(zero|one|two|few|many|other)$")

LITERAL = r'"(?:\\.|[^"\\\n])*"'
COMMENT = re.compile(rf"({LITERAL})|//[^\n]*|/\*.*?\*/", re.DOTALL)
# A text asked for by its key: text("key"), Texts::text("key"), texts->text("key"), counted("key", count).
CALL = re.compile(r'(?:(?<![\w.>:])|[tT]exts(?:::|->|\.))(text|counted)\(\s*"([^"\\]*)"')
# Words that a person would read: two of them in a row.
PROSE = re.compile(r"[A-Za-z]{2,}[,;:]? [A-Za-z]{2,}")
# What is no text for a person though it looks like one: a command's path, an example's command line, and why
# the process ends when a promise between parts of the program was broken.
NO_TEXT = re.compile(rf'(?:\.path = |\bfatalError\(\s*){LITERAL}(?:\s*{LITERAL})*|"quillora(?:-widget)? {LITERAL[1:]}')


# English of other parts that a program translates: that of the folders below, and the system's own ("errno-...", which
# a test in C++ compares with what the system says).
SAID = re.compile(r"^(said|errno)-")
SAYING = ("Platform", "Meetings")


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
    """The places of a text: numbered ones once each, since a language may need a value twice; others in number."""
    found = [place for place in PLACEHOLDER.findall(text) if place != "%%"]
    return sorted(set(place for place in found if "$" in place)) + sorted(place for place in found if "$" not in place)


def base_key(key):
    plural = PLURAL.match(key)
    return plural[1] if plural else key


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
    yield from differences(read)


def differences(read):
    """Keys that a language lacks, and texts with other placeholders than that of the first language has."""
    forms = {language: {} for language in read}
    for language, table in read.items():
        for key in table:
            forms[language].setdefault(base_key(key), []).append(key)
    for base in sorted(set().union(*forms.values()) if forms else []):
        with_key = [language for language in sorted(read) if base in forms[language]]
        for language in sorted(set(read) - set(with_key)):
            yield f'{language}: "{base}" is missing'
        counted = any(keys != [base] for language in with_key for keys in [forms[language][base]])
        first = base + ".other" if counted else base
        for language in with_key:
            if first not in read[language]:
                yield f'{language}: "{first}" is missing'
        wanted = placeholders(read[with_key[0]].get(first, ""))
        for language in with_key:
            for key in forms[language][base]:
                places = placeholders(read[language][key])
                # "one day" needs no place for its number.
                if places != wanted and not (counted and ["%1$@", *places] == wanted):
                    yield f'{language}: "{key}" has other placeholders than in {with_key[0]}'


def without_comments(code):
    return COMMENT.sub(lambda match: match[1] or " ", code)


def call_values(code, start):
    """How many arguments follow the one that ends at `start`, inside the same parentheses."""
    depth, count, position = 0, 0, start
    literal = re.compile(LITERAL)
    while position < len(code):
        quoted = literal.match(code, position)
        if quoted:
            position = quoted.end()
            continue
        character = code[position]
        if character in "([{":
            depth += 1
        elif character in ")]}":
            if depth == 0:
                return count
            depth -= 1
        elif character == "," and depth == 0:
            count += 1
        position += 1
    return count


def usage_faults(english, sources, is_program):
    """`english` is the English table's text, `sources` maps the path of each file of its code to its text."""
    entries = dict(read_table(english)[0])
    bases = {}
    for key, text in entries.items():
        bases.setdefault(base_key(key), []).append((key, text))
    literals = set()
    for path, code in sorted(sources.items()):
        code = without_comments(code)
        literals.update(literal[1:-1] for literal in re.findall(LITERAL, code))
        for match in CALL.finditer(code):
            function, key = match.groups()
            if (function == "text" and key not in entries) or (function == "counted" and key + ".other" not in entries):
                yield f'{path}: there is no text "{key}"'
            elif is_program:
                # A count is given once and stands for two: it chooses the form and is the first value.
                values = call_values(code, match.end())
                wanted = [f"%{place}$@" for place in range(1, values + 1)]
                for form, text in bases[key]:
                    if placeholders(text) not in (wanted, wanted[1:] if function == "counted" else wanted):
                        yield f'{path}: "{form}" has other places than the {values} values that its call gives'
        if is_program:
            for literal in re.findall(LITERAL, NO_TEXT.sub("", code)):
                if PROSE.search(literal):
                    yield f"{path}: {literal} belongs into a table"
    for base in sorted(set(bases) - literals):
        if not SAID.match(base):
            yield f'"{base}" is used nowhere'


def said_faults(english, sources):
    """Texts that no code of `sources` says any more. It may put them together from several literals."""
    said = set()
    for code in sources.values():
        for literals in re.findall(rf"{LITERAL}(?:\s*{LITERAL})*", without_comments(code)):
            joined = "".join(literal[1:-1] for literal in re.findall(LITERAL, literals))
            said.update(re.split(r"\{[^{}]*\}", joined))
    said = "\n".join(sorted(said))
    for key, text in read_table(english)[0]:
        if key.startswith("said-"):
            # A place may stand where words were put together in code, so each of the words is looked for.
            for words in PLACEHOLDER.split(text):
                if words not in said:
                    yield f'"{key}": nobody in {" or ".join(SAYING)} says "{words}"'


def bundles_below(root):
    """The folders that hold `<language>.lproj` folders, with each language's table file."""
    for folder, names, _ in os.walk(root):
        names[:] = sorted(name for name in names if name not in ("build", ".git"))
        languages = [name for name in names if name.endswith(".lproj")]
        if languages:
            files = {name.removesuffix(".lproj"): os.path.join(folder, name, "Localizable.strings") for name in languages}
            yield os.path.relpath(folder, root), files


def read_files(root, folder):
    sources = {}
    for place, _, names in os.walk(os.path.join(root, folder)):
        for name in sorted(names):
            if name.endswith((".h", ".cpp")):
                path = os.path.join(place, name)
                with open(path, encoding="utf-8") as file:
                    sources[os.path.relpath(path, root)] = file.read()
    return sources


def main(root):
    count, bad = 0, 0
    for bundle, files in bundles_below(root):
        count += 1
        tables = {}
        for language, path in files.items():
            with open(path, encoding="utf-8") as file:
                tables[language] = file.read()
        sources = read_files(root, os.path.dirname(bundle))
        is_program = bundle.startswith("Applications")
        saying = {path: code for folder in SAYING for path, code in read_files(root, folder).items()}
        said = said_faults(tables.get("en", ""), saying) if is_program else []
        for fault in [*faults(tables), *usage_faults(tables.get("en", ""), sources, is_program), *said]:
            print(f"{bundle}: {fault}")
            bad += 1
    print(f"{count} bundles read, {bad} faults")
    return 1 if bad or not count else 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
