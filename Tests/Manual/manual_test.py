#!/usr/bin/env python3
"""Reads the manual pages with groff (and mandoc, where it is there) and asks the completion in a real bash.

Usage: manual_test.py MANUAL_FOLDER QUILLORA
"""

import json
import os
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

FOLDER, QUILLORA = sys.argv[1], sys.argv[2]
PAGES = [os.path.join(FOLDER, "man", "man1"), os.path.join(FOLDER, "man", "es", "man1")]
BASH = os.path.join(FOLDER, "completions", "bash-completion", "completions", "quillora")
ZSH = os.path.join(FOLDER, "completions", "zsh", "site-functions", "_quillora")
FISH = os.path.join(FOLDER, "completions", "fish", "vendor_completions.d", "quillora.fish")


# The commands whose argument is one of a few words, with these.
ARGUMENT_CHOICES = {
    "alarm mode": ["voice", "hero", "funk"],
    "alarm voice": ["spanish", "english"],
}


def output_of(*words):
    return subprocess.run([QUILLORA, *words], check=True, capture_output=True, text=True, env={"LANG": "C.UTF-8"}).stdout


def commands():
    """The paths of all commands, as the program's own help lists them."""
    listed = output_of("--help").split("Commands:\n")[1].split("\n\n")[0]
    return [match[1].strip() for match in re.finditer(r"^  (\S+(?: \S+)*)  ", listed, re.MULTILINE)]


def pages():
    return [os.path.join(folder, name) for folder in PAGES for name in sorted(os.listdir(folder))]


def rendered(page):
    """The page as a terminal shows it, without what makes letters bold there: each struck twice."""
    done = subprocess.run(
        ["groff", "-k", "-man", "-Tutf8", "-ww", "-P-c", page], capture_output=True, text=True, check=False
    )
    done.stdout = re.sub(".\x08", "", done.stdout)
    return done


def completed(line, setup="", path=os.path.dirname(QUILLORA)):
    """What bash offers at the end of `line`, by the words as its own line editor would part them."""
    words = [word for word in re.split(r"[ ]+|(=)", line) if word]
    if line.endswith(" ") or line.endswith("="):
        words.append("")
    script = (
        f'source "$1"; {setup}\nshift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _quillora; '
        'printf "%s\\n" "${COMPREPLY[@]}"'
    )
    done = subprocess.run(
        ["bash", "--norc", "-c", script, "bash", BASH, *words],
        capture_output=True, text=True, check=True, env={"PATH": f"{path}:/usr/bin:/bin"},
    )
    return [word for word in done.stdout.split("\n") if word]


class ManualPages(unittest.TestCase):
    def test_everyCommandHasAPageInEachLanguage(self):
        for folder in PAGES:
            for command in ["", *commands()]:
                name = "-".join(["quillora", *command.split()]) + ".1"
                self.assertTrue(os.path.exists(os.path.join(folder, name)), f"{folder}/{name}")

    def test_groffRendersThemWithoutAWarning(self):
        self.assertIsNotNone(shutil.which("groff"), "install groff-base")
        for page in pages():
            result = rendered(page)
            self.assertEqual((result.returncode, result.stderr), (0, ""), page)

    def test_mandocFindsNothingToWarnOf(self):
        if not shutil.which("mandoc"):
            self.skipTest("mandoc is not installed")
        for page in pages():
            result = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", page], capture_output=True, text=True)
            self.assertEqual(result.stdout, "", page)

    def test_aPageTellsWhatTheHelpTells(self):
        text = re.sub(r"\s+", " ", rendered(os.path.join(PAGES[0], "quillora-day.1")).stdout)
        for words in ("quillora day [--offset N]", "--family FAMILY", "quillora day --offset 1", "EXIT STATUS"):
            self.assertIn(words, text)
        self.assertIn("NO_COLOR", rendered(os.path.join(PAGES[0], "quillora.1")).stdout)

    def test_thePagesNameTheWordsThatAnOptionTakes(self):
        for folder in PAGES:
            text = re.sub(r"\s+", " ", rendered(os.path.join(folder, "quillora-setup.1")).stdout)
            self.assertRegex(text, r"--keychain KEYCHAIN [^.]*\bsecret-service\b[^.]*\bfile\b")

    def test_theSpanishPagesAreSpanish(self):
        text = rendered(os.path.join(PAGES[1], "quillora-day.1")).stdout
        self.assertIn("OPCIONES", text)
        self.assertIn("muestra un día", text)


class BashCompletion(unittest.TestCase):
    def test_everyCommandIsOfferedWhereItStands(self):
        for command in commands():
            *group, last = command.split()
            self.assertIn(last, completed(" ".join(["quillora", *group, ""])), command)

    def test_aBeginningNarrows(self):
        self.assertEqual(completed("quillora cal"), ["calendars"])
        self.assertEqual(completed("quillora sources a"), ["add"])

    def test_optionsAndTheirChoices(self):
        self.assertIn("--family", completed("quillora day --"))
        self.assertEqual(completed("quillora day --fam"), ["--family"])
        self.assertEqual(completed("quillora day --family "), ["small", "medium", "large"])
        self.assertEqual(completed("quillora day --family s"), ["small"])
        self.assertEqual(completed("quillora day --family=m"), ["medium"])
        self.assertEqual(completed("quillora day --scheme="), ["light", "dark"])
        self.assertEqual(completed("quillora --v"), ["--version"])

    def test_argumentsThatTakeOneOfAFewWords(self):
        for command, words in ARGUMENT_CHOICES.items():
            self.assertEqual(completed(f"quillora {command} "), words)
            self.assertEqual(completed(f"quillora {command} {words[0]} "), [])
        self.assertEqual(completed("quillora alarm voice e"), ["english"])

    def test_filesWithBlanks(self):
        with tempfile.TemporaryDirectory() as folder:
            open(os.path.join(folder, "a b.ics"), "w", encoding="utf-8").close()
            os.mkdir(os.path.join(folder, "a c"))
            self.assertEqual(sorted(completed(f"quillora occurrences {folder}/a")), [f"{folder}/a b.ics", f"{folder}/a c"])
            self.assertEqual(completed(f"quillora sources add {folder}/a"), [f"{folder}/a c"])

    def test_calendarsAndSourcesAreThePersonsOwn(self):
        with tempfile.TemporaryDirectory() as folder:
            program = os.path.join(folder, "quillora")
            answers = {
                "calendars": {"accounts": [{"eacCalendars": [{"eciId": "k1/home"}, {"eciId": "k1/my work"}]}]},
                "sources": {"sources": [{"id": "k1"}]},
            }
            with open(program, "w", encoding="utf-8") as file:
                file.write("#!/bin/bash\ncase $1 in\n")
                for name, answer in answers.items():
                    file.write(f"{name}) echo '{json.dumps(answer, separators=(',', ':'))}' ;;\n")
                file.write("esac\n")
            os.chmod(program, 0o755)
            self.assertEqual(completed("quillora calendars hide ", path=folder), ["k1/home", "k1/my\\ work"])
            self.assertEqual(completed("quillora calendars hide k1/home k1/m", path=folder), ["k1/my\\ work"])
            self.assertEqual(completed("quillora sources remove ", path=folder), ["k1"])

    def test_theTabulatorCompletesAtAPrompt(self):
        process, terminal = pty.fork()
        if process == 0:
            os.execvpe("bash", ["bash", "--norc", "--noprofile", "-i"], {"PATH": "/usr/bin:/bin", "PS1": "> ", "TERM": "dumb", "INPUTRC": "/dev/null"})
        seen = b""
        try:
            os.write(terminal, f"source {BASH}; echo rea''dy\n".encode())
            seen = self.read_until(terminal, b"ready\r\n")
            os.write(terminal, b"quillora prov\tl\t--j\t")
            seen = self.read_until(terminal, b"providers list --json ")
        finally:
            os.close(terminal)
            os.waitpid(process, 0)
        self.assertIn(b"quillora providers list --json ", seen)

    def read_until(self, terminal, text):
        seen, end = b"", time.monotonic() + 60
        while text not in seen and time.monotonic() < end:
            if select.select([terminal], [], [], 1)[0]:
                seen += os.read(terminal, 4096)
        self.assertIn(text, seen)
        return seen


class OtherShells(unittest.TestCase):
    def test_everyCommandAndOptionIsNamed(self):
        with open(ZSH, encoding="utf-8") as zsh, open(FISH, encoding="utf-8") as fish:
            texts = {"zsh": zsh.read(), "fish": fish.read()}
        for command in commands():
            self.assertIn("_quillora_at_" + re.sub("[ -]", "_", command) + "()", texts["zsh"])
            for option in re.findall(r"^  (--[a-z-]+)", output_of(*command.split(), "--help"), re.MULTILINE):
                self.assertIn(option, texts["zsh"])
                self.assertIn(f"'__quillora_begins_with {command}' -l {option[2:]} ", texts["fish"])

    def test_theWordsThatAnArgumentTakesAreThere(self):
        with open(ZSH, encoding="utf-8") as zsh, open(FISH, encoding="utf-8") as fish:
            texts = {"zsh": zsh.read(), "fish": fish.read()}
        for command, words in ARGUMENT_CHOICES.items():
            function = texts["zsh"].split(f"_quillora_at_{command.replace(' ', '_')}() {{")[1].split("\n}")[0]
            self.assertRegex(function, rf"'::[A-Z]+:\({' '.join(words)}\)'")
            self.assertIn(f"-n '__quillora_ends_with {command}' -a '{' '.join(words)}' -d ", texts["fish"])

    def test_zshAndFishTakeTheirFiles(self):
        for shell, file in (("zsh", ZSH), ("fish", FISH)):
            if not shutil.which(shell):
                continue
            result = subprocess.run([shell, "-n", file], capture_output=True, text=True)
            self.assertEqual((result.returncode, result.stderr), (0, ""), file)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
