#!/usr/bin/env python3
"""Installs what was built into a folder of its own and tries it there, as a person finds it.

Usage: install_test.py CMAKE BUILD_FOLDER PROJECT_FOLDER
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD, PROJECT = sys.argv[1:4]
PROGRAMS = ("quillora", "quillora-widget", "quillora-alarms")


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="quillora-install-")
        cls.prefix = os.path.join(cls.folder, "usr")
        home = os.path.join(cls.folder, "home")
        os.makedirs(home)
        cls.environment = {
            "PATH": "/usr/bin:/bin", "HOME": home, "LANG": "C.UTF-8", "TZ": "Europe/Berlin", "XDG_RUNTIME_DIR": home,
            **{name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")},
        }
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", cls.prefix], check=True, capture_output=True)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder, ignore_errors=True)

    def path(self, *names):
        return os.path.join(self.prefix, *names)

    def content(self, *names):
        with open(self.path(*names), encoding="utf-8") as file:
            return file.read()

    def run_installed(self, program, *words):
        return subprocess.run([self.path("bin", program), *words], env=self.environment, capture_output=True, text=True, check=False)

    def test_theProgramsRun(self):
        for program in PROGRAMS:
            done = self.run_installed(program, "--version")
            self.assertEqual((done.returncode, done.stderr), (0, ""), program)
            self.assertRegex(done.stdout, r"\d+\.\d+\.\d+")

    def test_theCompanionFindsItsTexts(self):
        checks = json.loads(self.run_installed("quillora", "doctor", "--json").stdout)["checks"]
        texts = [check for check in checks if check["check"] == "texts"]
        self.assertTrue(texts)
        for check in texts:
            self.assertEqual(check["health"], "works", check)
            self.assertIn(self.prefix, check["text"])

    def test_whatTheCompanionBecomesIsInstalledButNoCommand(self):
        self.assertEqual(os.listdir(self.path("libexec", "quillora")), ["quillora-companion"])
        done = self.run_installed("quillora", "access", "status")
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_theSoundsAreBesideTheAlarms(self):
        sounds = [name for _, _, names in os.walk(self.path("share", "quillora")) for name in names if name.endswith(".wav")]
        self.assertTrue(sounds)

    def test_everyCommandHasItsPage(self):
        listed = self.run_installed("quillora", "--help").stdout.split("Commands:\n")[1].split("\n\n")[0]
        commands = re.findall(r"^  ([a-z-]+(?: [a-z-]+)*)  ", listed, re.MULTILINE)
        self.assertTrue(commands)
        for folder in (("share", "man", "man1"), ("share", "man", "es", "man1")):
            for command in ("", *commands):
                name = "-".join(["quillora", *command.split()]) + ".1"
                self.assertTrue(os.path.isfile(self.path(*folder, name)), name)

    def test_theShellsFindTheCompletions(self):
        for names in (("bash-completion", "completions", "quillora"), ("zsh", "site-functions", "_quillora"), ("fish", "vendor_completions.d", "quillora.fish")):
            self.assertTrue(os.path.isfile(self.path("share", *names)), names)

    def test_theSessionStartsWhatWasInstalled(self):
        for unit in ("quillora-widget.service", "quillora-alarms.service"):
            program = re.search(r"^ExecStart=(\S+)", self.content("share", "systemd", "user", unit), re.MULTILINE)[1]
            self.assertTrue(os.access(program, os.X_OK), program)
            self.assertTrue(program.startswith(self.prefix), program)

    def test_theCommandThatInstallsBuildsAllOfIt(self):
        with open(os.path.join(PROJECT, "Tools", "dev", "install.sh"), encoding="utf-8") as file:
            built = re.search(r"build_preset release (.*)", file.read())[1].split()
        self.assertEqual(sorted(built), sorted([*PROGRAMS, "quillora_manual_pages"]))
        self.assertEqual(sorted(os.listdir(self.path("bin"))), sorted(PROGRAMS))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
