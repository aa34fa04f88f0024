#!/usr/bin/env python3
"""Follows a day with the real program: its lines, a status bar's, and the view that fills a terminal.

Usage: following_test.py QUILLORA
"""

import datetime
import fcntl
import json
import os
import pty
import select
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

QUILLORA = sys.argv[1]
PATIENCE = 120  # Seconds, for a loaded machine under a sanitizer; nothing here waits without a condition.


def event(uid, title, start, end):
    form = "%Y%m%dT%H%M%SZ"
    lines = [
        "BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//Test//EN", "BEGIN:VEVENT", f"UID:{uid}", "DTSTAMP:20260101T000000Z",
        f"SUMMARY:{title}", f"DTSTART:{start.strftime(form)}", f"DTEND:{end.strftime(form)}", "END:VEVENT", "END:VCALENDAR", "",
    ]
    return "\r\n".join(lines)


class Home:
    """A person's home of the test's own. It lies in a zone where it is about noon, so that no day ends meanwhile."""

    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="quillora-following-")
        offset = 12 - datetime.datetime.now(datetime.timezone.utc).hour
        self.environment = {
            "PATH": "/usr/bin:/bin", "HOME": self.folder, "LANG": "C.UTF-8", "TERM": "xterm",
            "TZ": f"Etc/GMT{-offset:+d}", "TMPDIR": self.folder, **{
                name: os.path.join(self.folder, place) for name, place in (
                    ("XDG_CONFIG_HOME", "config"), ("XDG_DATA_HOME", "data"), ("XDG_CACHE_HOME", "cache"), ("XDG_RUNTIME_DIR", "run"))},
            **{name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")},
        }
        self.calendar = os.path.join(self.folder, "calendars", "work")
        os.makedirs(self.calendar)
        os.makedirs(os.path.join(self.folder, "run"))
        self.now = datetime.datetime.now(datetime.timezone.utc)
        self.write("first", "First & <foremost>", 1)
        self.run("setup", "--yes", "--keychain", "file")
        self.run("sources", "add", os.path.join(self.folder, "calendars"))

    def write(self, name, title, hours):
        start = self.now + datetime.timedelta(hours=hours)
        path = os.path.join(self.calendar, name + ".ics")
        with open(path + ".tmp", "w", encoding="utf-8", newline="") as file:
            file.write(event(name, title, start, start + datetime.timedelta(minutes=30)))
        os.rename(path + ".tmp", path)

    def run(self, *words):
        return subprocess.run([QUILLORA, *words], env=self.environment, check=True, capture_output=True, text=True).stdout

    def calendar_identifier(self):
        accounts = json.loads(self.run("calendars", "list", "--json"))["accounts"]
        return next(c["eciId"] for a in accounts for c in a["eacCalendars"] if c["eciTitle"] == "work")

    def remove(self):
        shutil.rmtree(self.folder, ignore_errors=True)


class Follower:
    """A program that prints lines until it is ended."""

    def __init__(self, home, *words):
        self.process = subprocess.Popen(
            [QUILLORA, "day", "--follow", *words], env=home.environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.bytes = b""

    def line(self):
        end = time.monotonic() + PATIENCE
        while b"\n" not in self.bytes:
            if not select.select([self.process.stdout], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError(f"no further line; so far {self.bytes!r}")
            more = os.read(self.process.stdout.fileno(), 65536)
            if not more:
                raise AssertionError("it ended: " + self.process.stderr.read().decode())
            self.bytes += more
        line, _, self.bytes = self.bytes.partition(b"\n")
        return line.decode()

    def line_where(self, holds):
        while True:
            line = json.loads(self.line())
            if holds(line):
                return line

    def end(self, number):
        self.process.send_signal(number)
        return self.process.wait(PATIENCE)

    def switches(self):
        """How often its threads went to sleep so far."""
        count = 0
        folder = f"/proc/{self.process.pid}/task"
        for task in os.listdir(folder):
            with open(f"{folder}/{task}/status", encoding="utf-8") as status:
                count += sum(int(line.split()[1]) for line in status if "ctxt_switches" in line)
        return count

    def stop(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.process.stdout.close()
        self.process.stderr.close()


def names(day):
    return [meeting["metName"] for meeting in day["meetings"]]


class Following(unittest.TestCase):
    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.remove)

    def follower(self, *words):
        follower = Follower(self.home, *words)
        self.addCleanup(follower.stop)
        return follower

    def test_everyKindOfChangeIsALineOfItsOwn(self):
        follower = self.follower("--json")
        self.assertEqual(names(json.loads(follower.line())), ["First & <foremost>"])
        self.home.write("second", "Second", 2)
        follower.line_where(lambda day: "Second" in names(day))
        self.home.run("calendars", "hide", self.home.calendar_identifier())
        follower.line_where(lambda day: names(day) == [])
        self.home.run("calendars", "show", self.home.calendar_identifier())
        follower.line_where(lambda day: len(names(day)) == 2)
        self.home.run("next")
        follower.line_where(lambda day: day["dayOffset"] == 1)
        self.assertEqual(follower.end(signal.SIGTERM), 0)
        self.assertEqual(follower.process.stderr.read(), b"")

    def test_anotherDayStaysThatDay(self):
        follower = self.follower("--json", "--offset", "1")
        self.assertEqual(json.loads(follower.line())["dayOffset"], 1)
        self.home.run("previous")
        self.home.write("tomorrow", "Tomorrow", 24)
        day = follower.line_where(lambda day: names(day) == ["Tomorrow"])
        self.assertEqual(day["dayOffset"], 1)
        self.assertEqual(follower.end(signal.SIGINT), 0)

    def test_aStatusBarsLine(self):
        follower = self.follower("--waybar")
        line = json.loads(follower.line())
        self.assertEqual(sorted(line), ["class", "text", "tooltip"])
        self.assertEqual(line["class"], "next")
        self.assertTrue(line["text"].endswith("First &amp; &lt;foremost&gt;"), line["text"])
        self.assertIn("First &amp; &lt;foremost&gt;", line["tooltip"])
        self.home.write("first", "Running", 0)
        self.assertEqual(follower.line_where(lambda line: "Running" in line["text"])["class"], "now")
        os.remove(os.path.join(self.home.calendar, "first.ics"))
        follower.line_where(lambda line: line["class"] == "free")
        self.home.run("access", "deny")
        follower.line_where(lambda line: line["class"] == "denied")

    def test_aReaderThatGoesAwayEndsIt(self):
        follower = self.follower("--json")
        follower.line()
        follower.process.stdout.close()
        self.assertEqual(follower.process.wait(PATIENCE), 0)
        self.assertEqual(follower.process.stderr.read(), b"")

    @unittest.skipIf("TSAN_OPTIONS" in os.environ, "the sanitizer has a thread of its own that wakes")
    def test_anIdleFollowerDoesNotWake(self):
        follower = self.follower("--json")
        follower.line()
        end = time.monotonic() + PATIENCE
        while True:
            before = follower.switches()
            time.sleep(2)
            if follower.switches() == before:
                return
            self.assertLess(time.monotonic(), end, "it woke within each two seconds")

    def test_aFullDiskIsAnError(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([QUILLORA, "day", "--follow"], env=self.home.environment, stdout=full, stderr=subprocess.PIPE, timeout=PATIENCE)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"standard output could not be written", done.stderr)

    def test_whatCannotBeFollowedIsRefused(self):
        for words in (["--day", "2026-03-11"], ["--at", "2026-03-11"], ["--png", "x.png"], ["--offset", "11"], ["--json", "--waybar"]):
            done = subprocess.run([QUILLORA, "day", "--follow", *words], env=self.home.environment, capture_output=True, timeout=PATIENCE)
            self.assertEqual(done.returncode, 2, words)


class Screen:
    """The program, or another that runs it, on a terminal of its own."""

    def __init__(self, home, columns=80, rows=24, command=(QUILLORA, "day", "--live")):
        self.terminal, self.end = pty.openpty()
        self.resize(columns, rows)
        self.before = termios.tcgetattr(self.end)
        self.process = subprocess.Popen(
            command, env=home.environment, stdin=self.end, stdout=self.end, stderr=self.end, start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        self.seen = b""

    def resize(self, columns, rows=24):
        fcntl.ioctl(self.end, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def read_until(self, text):
        """What comes before `text`; both are then done with."""
        end = time.monotonic() + PATIENCE
        while text not in self.seen:
            if select.select([self.terminal], [], [], max(0, end - time.monotonic()))[0]:
                self.seen += os.read(self.terminal, 65536)
            elif time.monotonic() >= end:
                raise AssertionError(f"{text!r} did not come, but {self.seen!r}")
        before, _, self.seen = self.seen.partition(text)
        return before

    def press(self, keys):
        os.write(self.terminal, keys)

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        os.close(self.terminal)
        os.close(self.end)


ENTER = b"\x1b[?1049h"
LEAVE = b"\x1b[?25h\x1b[?1049l"
KEYS = "← previous   → next   t today   q quit".encode()


class Live(unittest.TestCase):
    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.remove)

    def screen(self, **more):
        screen = Screen(self.home, **more)
        self.addCleanup(screen.close)
        screen.read_until(b"foremost")
        return screen

    def offset(self):
        return json.loads(self.home.run("day", "--json"))["dayOffset"]

    def heading(self):
        return self.home.run("day").split("\n")[0].encode()

    def test_keysMoveTheDay(self):
        screen = self.screen()
        for keys, offset in ((b"n", 1), (b"\x1b[C", 2), (b"p", 1), (b"\x1b[D", 0), (b"\x1bOD", -1), (b"t", 0), (b"l", 1), (b"\x1b[H", 0)):
            screen.press(keys)
            end = time.monotonic() + PATIENCE
            while self.offset() != offset:
                self.assertLess(time.monotonic(), end, keys)
            screen.read_until(self.heading())

    def test_qGivesTheTerminalBack(self):
        screen = self.screen()
        screen.press(b"q")
        screen.read_until(LEAVE)
        self.assertEqual(screen.process.wait(PATIENCE), 0)
        self.assertEqual(termios.tcgetattr(screen.end), screen.before)

    def test_everySignalGivesTheTerminalBack(self):
        for number, code in ((signal.SIGINT, 0), (signal.SIGTERM, 0), (signal.SIGHUP, 0), (signal.SIGQUIT, None), (signal.SIGABRT, None)):
            screen = self.screen()
            self.assertNotEqual(termios.tcgetattr(screen.end), screen.before)
            screen.process.send_signal(number)
            screen.read_until(LEAVE)
            ended = screen.process.wait(PATIENCE)
            self.assertEqual(ended, -number if code is None else code, number)
            self.assertEqual(termios.tcgetattr(screen.end), screen.before, number)

    def test_controlCEndsIt(self):
        screen = self.screen()
        screen.press(b"\x03")
        screen.read_until(LEAVE)
        self.assertEqual(screen.process.wait(PATIENCE), 0)

    def test_controlZGivesTheTerminalBackAndFgTakesItAgain(self):
        self.home.environment["PS1"] = "ready> "
        shell = Screen(self.home, command=("bash", "--norc", "--noprofile", "-i"))
        self.addCleanup(shell.close)
        shell.read_until(b"ready> ")
        shell.press(f"'{QUILLORA}' day --live\n".encode())
        shell.read_until(ENTER)
        shell.read_until(b"foremost")
        for _ in range(2):
            shell.press(b"\x1a")
            shell.read_until(LEAVE)
            shell.read_until(b"Stopped")
            shell.read_until(b"ready> ")
            shell.press(b"fg\n")
            shell.read_until(ENTER)
            shell.read_until(b"foremost")
            shell.read_until(KEYS)
        shell.press(b"n")
        shell.read_until(KEYS)
        shell.press(b"q")
        shell.read_until(LEAVE)
        shell.read_until(b"ready> ")
        self.assertEqual(self.offset(), 1)
        shell.press(b"echo code=$?\n")
        shell.read_until(b"code=0\r\n")

    def test_aDayThatCannotBeKeptIsSaidSo(self):
        screen = self.screen()
        stored = os.path.join(self.home.folder, "data", "group.quillora", "scheduleWidgetDayOffset.json")
        os.makedirs(stored)
        screen.press(b"n")
        screen.read_until(b"the day could not be saved and stays as it was")
        os.rmdir(stored)
        screen.press(b"n")
        screen.read_until(b"\x1b[J")
        end = time.monotonic() + PATIENCE
        while self.offset() != 1:
            self.assertLess(time.monotonic(), end)
        screen.read_until(self.heading())

    def test_theKeysAreNamedHoweverLowTheTerminalIs(self):
        for hour in range(2, 8):
            self.home.write(f"more{hour}", f"Meet {hour}", hour)
        for rows in (24, 6, 3, 2, 1):
            screen = Screen(self.home, rows=rows)
            self.addCleanup(screen.close)
            screen.read_until(b"\x1b[J")  # The keys alone, before the day is known.
            frame = screen.read_until(b"\x1b[J")
            self.assertIn(KEYS, frame)
            self.assertLess(frame.count(b"\r\n"), rows)
            screen.press(b"q")
            screen.read_until(LEAVE)

    def test_itSpeaksThePersonsLanguage(self):
        self.home.environment["LANG"] = "es_ES.UTF-8"
        self.screen().read_until("← anterior   → siguiente   t hoy   q salir".encode())

    def test_aTerminalWithoutACursorIsRefused(self):
        for term in ("dumb", ""):
            self.home.environment["TERM"] = term
            screen = Screen(self.home)
            self.addCleanup(screen.close)
            screen.read_until(b"--live needs a terminal whose cursor can be moved")
            self.assertEqual(screen.process.wait(PATIENCE), 2)
            self.assertNotIn(b"\x1b", screen.seen)

    def test_itFollowsTheCalendars(self):
        screen = self.screen()
        self.home.write("second", "Second meet", 2)
        screen.read_until(b"Second meet")

    def test_itFitsATerminalThatChanges(self):
        self.home.write("long", "A title that is much too long for a narrow terminal", 3)
        screen = self.screen()
        screen.read_until(b"much too long for a narrow terminal")
        screen.resize(40)
        screen.process.send_signal(signal.SIGWINCH)
        screen.read_until("…".encode())

    def test_coloursAreLeftOutOnRequest(self):
        screen = self.screen()
        self.home.write("second", "Coloured", 2)
        screen.read_until(b"\x1b[38;2;")
        self.home.environment["NO_COLOR"] = "1"
        plain = self.screen()
        plain.press(b"q")
        plain.read_until(LEAVE)
        self.home.write("third", "Plain", 3)
        other = Screen(self.home)
        self.addCleanup(other.close)
        other.read_until(b"\x1b[?7l")
        seen = b""
        while b"Plain" not in seen:
            seen += os.read(other.terminal, 65536)
        self.assertNotIn(b"\x1b[38;2;", seen)
        self.assertNotIn(b"\x1b[1m", seen)

    def test_withoutATerminalItIsRefused(self):
        done = subprocess.run([QUILLORA, "day", "--live"], env=self.home.environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=PATIENCE)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"--live needs a terminal", done.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
