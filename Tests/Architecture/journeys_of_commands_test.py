"""The check for commands without a journey finds each of them, and leaves the others alone."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../Tools/checks"))
import journeys_of_commands as check  # noqa: E402

HELP = """Usage:
  quillora COMMAND

Commands:
  day                   show a day, or see
                        how it looks
  sources add           add a folder
  backend log on        keep a log

Exit codes:
  0  done
"""


class Commands(unittest.TestCase):
    def test_theyAreReadFromTheHelp(self):
        self.assertEqual(check.commands_of(HELP), ["day", "sources add", "backend log on"])

    def test_aHelpWithoutCommandsHasNone(self):
        self.assertEqual(check.commands_of("Usage:\n  quillora\n"), [])


class Journeys(unittest.TestCase):
    def missing(self, *sources):
        return check.without_journey(check.commands_of(HELP), sources)

    def test_whatIsRunIsNotMissed(self):
        self.assertEqual(
            self.missing('home.quillora({"day"});', 'outputOf({"sources", "add", path});', 'Words{"backend",\n "log", "on", "x"}'), [])

    def test_whatIsNotRunIsNamed(self):
        self.assertEqual(self.missing('home.quillora({"day", "--json"});'), ["sources add", "backend log on"])

    def test_aGroupOrAnotherMemberIsNotTheCommand(self):
        self.assertIn("sources add", self.missing('{"sources"}', '{"sources", "list"}', '{"sources add"}'))
        self.assertIn("backend log on", self.missing('{"backend", "log", "off"}'))

    def test_aWordElsewhereIsNoRun(self):
        self.assertIn("day", self.missing('f("day"); {"next", "day"}'))

    def test_whatIsCommentedOutOrDisabledIsNoRun(self):
        self.assertIn("day", self.missing('// {"day"}\n/* {"day"} */'))
        self.assertIn("day", self.missing('TEST_F(J, DISABLED_a) {\n    run({"day"});\n}\n'))
        self.assertNotIn("day", self.missing('TEST_F(J, DISABLED_a) {\n}\nTEST_F(J, b) {\n    run({"day"});\n}\n'))

    def test_aTextWithSlashesHidesNothing(self):
        self.assertNotIn("day", self.missing('f("https://example.org"); run({"day"});'))


if __name__ == "__main__":
    unittest.main()
