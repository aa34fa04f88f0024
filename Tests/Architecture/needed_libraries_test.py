"""The check of the quick program's libraries finds each one too many."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../Tools/checks"))
import needed_libraries as check  # noqa: E402

READELF = """
Dynamic section at offset 0x1 contains 30 entries:
  Tag        Type                         Name/Value
 0x0000000000000001 (NEEDED)             Shared library: [libglib-2.0.so.0]
 0x0000000000000001 (NEEDED)             Shared library: [libstdc++.so.6]
 0x0000000000000001 (NEEDED)             Shared library: [libcurl.so.4]
 0x000000000000001d (RUNPATH)            Library runpath: [/opt/lib]
"""
LDD = """\tlinux-vdso.so.1 (0x00007ffc)
\tlibglib-2.0.so.0 => /lib/libglib-2.0.so.0 (0x00007f)
\tlibxml2.so.2 => /lib/libxml2.so.2 (0x00007f)
\tlibselinux.so.1 => /lib/libselinux.so.1 (0x00007f)
\t/lib64/ld-linux-x86-64.so.2 (0x00007f)
"""


class NeededLibraries(unittest.TestCase):
    def test_whatTheProgramNamesIsRead(self):
        self.assertEqual(check.needed(READELF), ["glib-2.0", "stdc++", "curl"])

    def test_whatIsLoadedIsRead(self):
        self.assertEqual(check.loaded(LDD), ["glib-2.0", "xml2", "selinux"])

    def test_aLibraryThatIsNotOnTheListIsFound(self):
        self.assertEqual(len(list(check.faults(["glib-2.0", "curl"], []))), 1)
        self.assertEqual(len(list(check.faults(["something-new"], []))), 1)

    def test_aHeavyOneThatAnotherBringsAlongIsFound(self):
        self.assertEqual(list(check.faults(["glib-2.0"], ["glib-2.0", "xml2", "selinux"])), ["what it needs brings xml2 along"])

    def test_whatIsAllowedIsLeftAlone(self):
        self.assertEqual(list(check.faults(["glib-2.0", "stdc++"], ["glib-2.0", "selinux"])), [])

    def test_nothingHeavyIsOnTheList(self):
        self.assertFalse(check.HEAVY & check.MAY_NEED)


if __name__ == "__main__":
    unittest.main()
