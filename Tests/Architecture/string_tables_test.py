"""The check of the string tables finds each kind of fault."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../Tools/checks"))
import string_tables  # noqa: E402


def faults(en, es):
    return list(string_tables.faults({"en": en, "es": es}))


class StringTables(unittest.TestCase):
    def test_matching_tables_have_no_fault(self):
        self.assertEqual([], faults('/* The day */\n"a" = "%d more";\n// b\n"b" = "x \\"y\\"";', '"b" = "z";\n"a" = "%d más";\n'))

    def test_a_key_missing_in_one_language_is_found(self):
        self.assertEqual(['es: "b" is missing'], faults('"a" = "1";\n"b" = "2";', '"a" = "3";'))
        self.assertEqual(['en: "b" is missing'], faults('"a" = "1";', '"a" = "3";\n"b" = "2";'))

    def test_a_key_that_stands_twice_is_found(self):
        self.assertEqual(['en: "a" stands there more than once'], faults('"a" = "1";\n"a" = "2";', '"a" = "3";'))

    def test_other_placeholders_are_found(self):
        for english, spanish in (("%d more", "más"), ("%d more", "%@ más"), ("%d of %d", "%d de"), ("100%%", "%d")):
            with self.subTest(english):
                self.assertEqual(
                    ['es: "a" has other placeholders than in en'], faults(f'"a" = "{english}";', f'"a" = "{spanish}";')
                )

    def test_a_line_that_is_no_entry_is_found(self):
        self.assertEqual(["en: line 2 is neither an entry nor a comment"], faults('"a" = "1";\n"b" = "2"\n', '"a" = "3";'))

    def test_an_empty_text_is_found(self):
        self.assertEqual(['es: "a" has no text'], faults('"a" = "1";', '"a" = "";'))

    def test_a_missing_language_is_found(self):
        self.assertEqual(["es: there is no table"], list(string_tables.faults({"en": '"a" = "1";'})))


if __name__ == "__main__":
    unittest.main()
