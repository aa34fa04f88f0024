#!/usr/bin/env python3
"""Holds the command lines that the README names against the program: each command and option is there, and each
command of the program's help is named for some task.

Usage: readme_test.py QUILLORA README
"""

import functools
import re
import shlex
import subprocess
import sys
import unittest

QUILLORA, README = sys.argv[1:3]
# Looked at by who works on Quillora, not by who uses it.
FOR_DEVELOPERS = {"html-line"}


@functools.cache
def help_of(*words):
    return subprocess.run([QUILLORA, *words, "--help"], env={"LANG": "C.UTF-8"}, capture_output=True, text=True, check=False)


def commands():
    listed = help_of().stdout.split("Commands:\n")[1].split("\n\n")[0]
    return re.findall(r"^  ([a-z-]+(?: [a-z-]+)*)  ", listed, re.MULTILINE)


def named_lines():
    """The words of each `quillora ...` of the README; `… list` stands for another member of the group before it."""
    lines, group = [], []
    with open(README, encoding="utf-8") as file:
        text = file.read()
    text += "\n".join(f"`{line.split('#')[0].strip()}`" for line in re.findall(r"^quillora .*", text, re.MULTILINE))
    for quoted in re.findall(r"`((?:quillora|…) [^`]*)`", text):
        first, *words = shlex.split(quoted)
        words = words if first == "quillora" else group + words
        group = path_of(words)[:-1]
        lines.append(words)
    return lines


def path_of(words):
    """The longest beginning of `words` that is a command."""
    known = commands()
    for length in range(len(words), 0, -1):
        if " ".join(words[:length]) in known:
            return words[:length]
    return []


class Readme(unittest.TestCase):
    def test_whatItNamesIsThere(self):
        lines = named_lines()
        self.assertGreater(len(lines), 40)
        for words in lines:
            path = path_of(words)
            self.assertTrue(path, words)
            page = help_of(*path).stdout
            for word in words[len(path):]:
                if word.startswith("--"):
                    self.assertRegex(page, rf"(?m)^  {word}\b", words)

    def test_everyCommandIsNamedForATask(self):
        named = {" ".join(path_of(words)) for words in named_lines()}
        self.assertEqual(sorted(set(commands()) - named - FOR_DEVELOPERS), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
