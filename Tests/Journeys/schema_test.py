#!/usr/bin/env python3
"""Holds what the program prints for programs against Docs/quillora.schema.json.

Usage: schema_test.py QUILLORA SCHEMA BACKEND
"""

import copy
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

import jsonschema

QUILLORA = sys.argv[1]
with open(sys.argv[2], encoding="utf-8") as file:
    SCHEMA = json.load(file)
BACKEND = sys.argv[3]

EVENTS = {
    "review": "DTSTART:20260311T130000Z\r\nDTEND:20260311T140000Z\r\nLOCATION:Room\r\nURL:https://example.org/\r\n",
    "standup": "DTSTART:20260309T080000Z\r\nDTEND:20260309T081500Z\r\nRRULE:FREQ=WEEKLY;BYDAY=MO,WE\r\n",
    "gym": "DTSTART:20260310T160000Z\r\nDTEND:20260310T170000Z\r\nRRULE:FREQ=DAILY\r\nEXDATE:20260311T160000Z\r\n",
    "fair": "DTSTART;VALUE=DATE:20260311\r\nDTEND;VALUE=DATE:20260313\r\n",
    "broken": "DTSTART:nonsense\r\n",
    **{f"more{n}": f"DTSTART:20260311T{n:02}0000Z\r\nDTEND:20260311T{n:02}3000Z\r\n" for n in range(10, 21)},
}
AT = ["--at", "2026-03-11T07:00:00"]


def validator(name):
    schema = {"$schema": SCHEMA["$schema"], "$defs": SCHEMA["$defs"], "$ref": f"#/$defs/{name}"}
    return jsonschema.Draft202012Validator(schema)


class Outputs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="quillora-schema-")
        cls.environment = {
            "PATH": "/usr/bin:/bin", "HOME": cls.folder, "LANG": "C.UTF-8", "TZ": "Europe/Berlin", "TMPDIR": cls.folder,
            "XDG_CONFIG_HOME": cls.folder + "/config", "XDG_DATA_HOME": cls.folder + "/data",
            "XDG_CACHE_HOME": cls.folder + "/cache", "XDG_RUNTIME_DIR": cls.folder,
            **{name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")},
        }
        work = os.path.join(cls.folder, "calendars", "work")
        os.makedirs(work)
        for uid, lines in EVENTS.items():
            with open(os.path.join(work, uid + ".ics"), "w", encoding="utf-8", newline="") as file:
                file.write(f"BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:{uid}\r\nSUMMARY:{uid}\r\n{lines}END:VEVENT\r\nEND:VCALENDAR\r\n")
        cls.run_quillora("setup", "--yes", "--keychain", "file")
        cls.run_quillora("sources", "add", os.path.join(cls.folder, "calendars"))

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder, ignore_errors=True)

    @classmethod
    def run_quillora(cls, *words, given=""):
        done = subprocess.run([QUILLORA, *words], env=cls.environment, input=given, capture_output=True, text=True, check=False)
        assert done.returncode == 0 or words[0] == "doctor", f"{words}: {done.stderr}"
        return done.stdout

    def check(self, name, *words, given=""):
        printed = self.run_quillora(*words, given=given)
        self.assertTrue(printed, words)
        documents = [json.loads(line) for line in printed.splitlines()]
        for document in documents:
            errors = [f"{error.json_path}: {error.message}" for error in validator(name).iter_errors(document)]
            self.assertEqual(errors, [], words)
        return documents[0]

    def test_theSchemaItselfIsOne(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_days(self):
        for family in ("small", "medium", "large"):
            day = self.check("day", "day", "--json", "--family", family, *AT)
        kinds = {row["kind"] for row in day["face"]["rows"]}
        self.assertEqual(kinds, {"header", "label", "bar", "space", "card", "more"})
        empty = self.check("day", "day", "--json", "--day", "2020-01-01", *AT)
        self.assertEqual(empty["face"]["rows"][-1]["kind"], "line")

    def test_explanations(self):
        page = self.check("explanation", "explain", "--json", *AT)
        self.assertEqual({meet["rule"] for meet in page["meets"]}, {"card", "allDayRow", "didNotFit", "excludedDate"})
        self.assertEqual(len(page["problems"]), 1)
        self.check("explanation", "explain", "--json", "--day", "2020-01-01", *AT)
        self.assertEqual(len(self.check("explanation", "explain", "review", "--json", "--offset", "1", *AT)["otherDays"]), 1)

    def test_meets(self):
        listed = self.check("meetList", "meet", "show", "--json", "--day", "2026-03-11")
        self.check("meetPage", "meet", "show", listed["meetings"][0]["metId"], "--json", "--day", "2026-03-11")

    def test_changedMeets(self):
        added = self.check("changedMeet", "meet", "add", "--name", "Tea", "--start", "2026-04-01T15:00", "--url", "https://example.org/", "--json")
        day = ["--day", "2026-04-01", "--json"]
        edited = self.check("changedMeet", "meet", "edit", added["meet"]["metId"], "--name", "Coffee", "--yes", *day)
        self.assertEqual(edited["meet"]["metName"], "Coffee")

    def test_meetsOfABackend(self):
        token = os.path.join(self.folder, "token")
        with subprocess.Popen([BACKEND, "--token-file", token], env=self.environment, stdout=subprocess.PIPE, text=True) as service:
            try:
                url = service.stdout.readline().strip()
                with open(token, encoding="utf-8") as file:
                    given = file.read()
                connection = ["--url", url, "--token-fd", "0", "--json"]
                meet = ["--name", "Tea", "--start", "2026-03-11T09:00", "--repeat", "weekly", "--weekdays", "wed"]
                added = self.check("backendMeet", "backend", "add", *meet, *connection, given=given)
                self.check("backendMeet", "backend", "list", *connection, given=given)
                name = added["metOriginalIdentifier"]
                self.check("backendMeet", "backend", "edit", name, "--name", "Coffee", *connection, given=given)
                self.check("backendMeet", "backend", "delete", name, "--yes", *connection, given=given)
            finally:
                service.terminate()

    def test_lists(self):
        self.check("calendars", "calendars", "list", "--json")
        self.check("alarmCalendars", "alarm", "calendars", "list", "--json")
        self.check("sources", "sources", "list", "--json")
        self.check("providers", "providers", "list", "--json")
        self.check("doctor", "doctor", "--json")
        self.check("occurrence", "occurrences", os.path.join(self.folder, "calendars"), "--from", "2026-03-11", "--to", "2026-03-12", "--json")

    def test_statusBars(self):
        for words in (["--offset", "0"], ["--offset", "1"], ["--day", "2020-01-01"]):
            self.check("statusBar", "day", "--waybar", *words, *AT)

    def test_theSchemaRefusesWhatIsOtherwise(self):
        day = self.check("day", "day", "--json", *AT)
        for change in ({"version": 2}, {"date": "yesterday"}, {"meetings": [{}]}, {"unknown": 1}):
            other = {**copy.deepcopy(day), **change}
            self.assertFalse(validator("day").is_valid(other), change)
        del day["face"]
        self.assertFalse(validator("day").is_valid(day))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
