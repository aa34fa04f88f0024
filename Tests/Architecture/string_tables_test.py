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

    def test_numbered_places_may_change_their_order_and_repeat(self):
        self.assertEqual([], faults('"a" = "%1$@ of %2$@";', '"a" = "de %2$@, %1$@ (%1$@)";'))

    def test_plural_forms_are_those_of_each_language_but_other_is_in_all(self):
        self.assertEqual(
            [], faults('"a.one" = "a day";\n"a.other" = "%1$@ days";', '"a.one" = "%1$@ día";\n"a.many" = "%1$@ de días";\n"a.other" = "%1$@ días";')
        )
        self.assertEqual(['es: "a.other" is missing'], faults('"a.other" = "%1$@ days";', '"a.one" = "%1$@ día";'))
        self.assertEqual(['es: "a" is missing'], faults('"a.other" = "%1$@ days";', '"b" = "z";\n"b.other" = "z";')[:1])
        self.assertIn('es: "a.one" has other placeholders than in en', faults('"a.other" = "%1$@ %2$@";', '"a.other" = "%1$@ %2$@";\n"a.one" = "%1$@";'))

    def test_a_line_that_is_no_entry_is_found(self):
        self.assertEqual(["en: line 2 is neither an entry nor a comment"], faults('"a" = "1";\n"b" = "2"\n', '"a" = "3";'))

    def test_an_empty_text_is_found(self):
        self.assertEqual(['es: "a" has no text'], faults('"a" = "1";', '"a" = "";'))

    def test_a_missing_language_is_found(self):
        self.assertEqual(["es: there is no table"], list(string_tables.faults({"en": '"a" = "1";'})))


def usage(english, code, is_program=True):
    return list(string_tables.usage_faults(english, {"A.cpp": code}, is_program))


class TextsInCode(unittest.TestCase):
    def test_texts_that_are_all_used_have_no_fault(self):
        table = '"a" = "x";\n"b" = "%2$@ %1$@";\n"c.one" = "%2$@";\n"c.other" = "%1$@ %2$@";\n"d" = "y";'
        code = 'return text("a") + text("b", f(x, "),"), {y, z}) + counted("c", n, name) + texts->text("d"); // text("e")'
        self.assertEqual([], usage(table, code))

    def test_a_text_that_is_not_there_is_found(self):
        for call in ('text("b")', 'Texts::text("b")', 'texts.text("b")', 'texts->text("b")', 'counted("b", 1)'):
            with self.subTest(call):
                self.assertEqual(['A.cpp: there is no text "b"'], usage('"a" = "x";', f'{call} + text("a")'))

    def test_a_reader_of_something_else_is_no_use(self):
        self.assertEqual([], usage('"a" = "x";', 'reader.text("b") + text("a")'))

    def test_a_text_that_nobody_uses_is_found(self):
        self.assertEqual(['"a" is used nowhere'], usage('"a" = "x";', 'f(); // "a"'))
        self.assertEqual(['"a" is used nowhere'], usage('"a.one" = "x";\n"a.other" = "%1$@";', ''))

    def test_other_places_than_values_are_found(self):
        for text in ("none", "%1$@", "%1$@ %3$@", "%1$@ %2$@ %3$@", "%@ %@"):
            with self.subTest(text):
                self.assertEqual(
                    ['A.cpp: "a" has other places than the 2 values that its call gives'], usage(f'"a" = "{text}";', 'text("a", b(c, d), e)')
                )

    def test_words_in_code_are_found(self):
        for code in ('.help = "print it all"', 'report("it failed")', 'fmt::format("see {} now please", x)'):
            with self.subTest(code):
                literal = code[code.index('"') : code.rindex('"') + 1]
                self.assertEqual([f'A.cpp: {literal.split(", x")[0]} belongs into a table'], usage("", code))

    def test_paths_examples_and_broken_promises_are_no_texts(self):
        code = '.path = "sources add", {"quillora sources add ~/a \\"b c\\""}, fatalError("no entry came"), "one", "a-b c"'
        self.assertEqual([], usage("", code))
        self.assertEqual([], usage("", 'report("it failed")', is_program=False))

    def test_english_of_other_parts_is_what_they_say(self):
        code = {"P.cpp": 'fmt::format("{} is gone ({}); "\n"nothing was \\"lost\\"", a, b) + "it was read: " + c; // "no more"'}
        table = '"said-a" = "%1$@ is gone (%2$@); nothing was \\"lost\\"";\n"said-b" = "it was read: %1$@";'
        self.assertEqual([], list(string_tables.said_faults(table, code)))
        self.assertEqual([], usage(table, ""))
        self.assertEqual(
            ['"said-a": nobody in Platform or Meetings says "no more"'], list(string_tables.said_faults('"said-a" = "no more";', code))
        )


if __name__ == "__main__":
    unittest.main()
