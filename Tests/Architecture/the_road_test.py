"""The check of who uses whom catches each kind of violation, and passes what the list allows."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../Tools/checks"))
import the_road  # noqa: E402

TARGETS = """\
target quillora_settings INTERFACE_LIBRARY\x20
target quillora_foundation STATIC_LIBRARY Foundation
link quillora_foundation ICU::uc
link quillora_foundation quillora_settings
file quillora_foundation Foundation/Date.h
target quillora_platform_files INTERFACE_LIBRARY Platform/Files
link quillora_platform_files quillora_foundation
file quillora_platform_files Platform/Files/FileManager.h
target quillora_platform_files_posix STATIC_LIBRARY Platform/Files
link quillora_platform_files_posix quillora_platform_files
link quillora_platform_files_posix PkgConfig::GIO
file quillora_platform_files_posix Platform/Files/PosixFileManager.h
file quillora_platform_files_posix Platform/Files/PosixFileManager.cpp
target quillora_platform_logging_journal STATIC_LIBRARY Platform/Logging
file quillora_platform_logging_journal Platform/Logging/JournalLogger.h
target quillora_meetings STATIC_LIBRARY Meetings
link quillora_meetings quillora_platform_files
file quillora_meetings Meetings/MeetEntity.h
file quillora_meetings Meetings/MeetDomain.cpp
target quillora_calendarproviders STATIC_LIBRARY CalendarProviders
link quillora_calendarproviders quillora_foundation
file quillora_calendarproviders CalendarProviders/ResultEntity.h
target quillora_widgetextension STATIC_LIBRARY WidgetExtension
link quillora_widgetextension quillora_meetings
file quillora_widgetextension WidgetExtension/ScheduleWidgetView.cpp
target quillora EXECUTABLE Applications/Companion
link quillora quillora_meetings
link quillora quillora_platform_files_posix
link quillora CLI11::CLI11
file quillora Applications/Companion/main.cpp
target MeetingsTests EXECUTABLE Tests/Meetings
link MeetingsTests quillora_meetings
link MeetingsTests GTest::gtest
file MeetingsTests Tests/Meetings/MeetDomainTests.cpp
"""


def links(*lines):
    return list(the_road.link_violations(the_road.read_targets(TARGETS + "".join(f"link {line}\n" for line in lines))))


def includes(path, text, *lines):
    targets = the_road.read_targets(TARGETS + "".join(f"{line}\n" for line in lines))
    return list(the_road.include_violations(targets, {path: text}))


class Links(unittest.TestCase):
    def test_the_allowed_links_pass(self):
        self.assertEqual([], links())

    def test_each_link_against_the_list_is_found(self):
        for line in (
            "quillora_foundation quillora_platform_files",
            "quillora_platform_files quillora_platform_files_posix",
            "quillora_platform_files_posix quillora_meetings",
            "quillora_platform_files_posix quillora_platform_logging_journal",
            "quillora_meetings quillora_platform_files_posix",
            "quillora_meetings quillora_calendarproviders",
            "quillora_meetings quillora_widgetextension",
            "quillora_calendarproviders quillora_meetings",
            "quillora_widgetextension quillora_platform_files_posix",
            "quillora_widgetextension quillora",
            "quillora MeetingsTests",
        ):
            with self.subTest(line):
                user, used = line.split()
                found = links(line)
                self.assertEqual(1, len(found), found)
                self.assertTrue(found[0].startswith(f"{user} (") and f"links {used} (" in found[0], found)

    def test_an_outside_library_stays_in_its_wrapper(self):
        for user in ("quillora_platform_files", "quillora_meetings", "quillora_widgetextension"):
            with self.subTest(user):
                self.assertEqual(1, len(links(f"{user} PkgConfig::GLIB")))

    def test_a_folder_without_a_place_in_the_list_is_found(self):
        targets = the_road.read_targets("target quillora_misc STATIC_LIBRARY Miscellany\n")
        self.assertEqual(1, len(list(the_road.link_violations(targets))))


class Includes(unittest.TestCase):
    def test_the_allowed_includes_pass(self):
        for path, text in {
            "Platform/Files/PosixFileManager.cpp": '#include "Platform/Files/FileManager.h"\n#include <gio/gio.h>\n',
            "Meetings/MeetDomain.cpp": '#include "Meetings/MeetEntity.h"\n#include "Foundation/Date.h"\n#include <vector>\n',
            "WidgetExtension/ScheduleWidgetView.cpp": '#include "Meetings/MeetEntity.h"\n',
            "Applications/Companion/main.cpp": '#include "Platform/Files/PosixFileManager.h"\n#include <CLI/CLI.hpp>\n',
            "Tests/Meetings/MeetDomainTests.cpp": '#include "Meetings/MeetEntity.h"\n#include <gtest/gtest.h>\n',
        }.items():
            with self.subTest(path):
                self.assertEqual([], includes(path, text))

    def test_each_include_against_the_list_is_found(self):
        for path, header in (
            ("Foundation/Date.h", "Platform/Files/FileManager.h"),
            ("Platform/Files/FileManager.h", "Platform/Files/PosixFileManager.h"),
            ("Platform/Files/PosixFileManager.cpp", "Meetings/MeetEntity.h"),
            ("Meetings/MeetDomain.cpp", "Platform/Files/PosixFileManager.h"),
            ("Meetings/MeetDomain.cpp", "CalendarProviders/ResultEntity.h"),
            ("CalendarProviders/ResultEntity.h", "Meetings/MeetEntity.h"),
        ):
            with self.subTest(f"{path} {header}"):
                found = includes(path, f'#pragma once\n  #  include "{header}"\n')
                self.assertEqual(1, len(found), found)
                self.assertIn(f'includes "{header}"', found[0])

    def test_an_outside_header_stays_in_its_wrapper(self):
        for header in ("glib.h", "boost/asio/awaitable.hpp", "unicode/uloc.h", "fmt/core.h"):
            with self.subTest(header):
                found = includes("Meetings/MeetDomain.cpp", f"#include <{header}>\n")
                self.assertEqual([f"Meetings/MeetDomain.cpp: Meetings includes the outside header <{header}>"], found)

    def test_an_include_needs_its_link(self):
        found = includes("WidgetExtension/ScheduleWidgetView.cpp", '#include "CalendarProviders/ResultEntity.h"\n')
        self.assertEqual(1, len(found))
        self.assertIn("does not link quillora_calendarproviders", found[0])

    def test_an_include_names_its_header_from_the_root(self):
        found = includes("Meetings/MeetDomain.cpp", '#include "MeetEntity.h"\n')
        self.assertEqual(1, len(found))
        self.assertIn("not the path of a header from the root", found[0])

    def test_a_file_without_a_target_is_found(self):
        self.assertEqual(["Meetings/Lost.cpp: no target lists this file"], includes("Meetings/Lost.cpp", ""))

    def test_a_test_may_have_a_little_header_of_its_own(self):
        sources = {
            "Tests/Meetings/MeetDomainTests.cpp": '#include "Meets.h"\n#include "Tests/Meetings/Meets.h"\n',
            "Tests/Meetings/Meets.h": "#pragma once\n",
        }
        self.assertEqual([], list(the_road.include_violations(the_road.read_targets(TARGETS), sources)))

    def test_an_include_in_a_comment_is_not_one(self):
        self.assertEqual([], includes("Meetings/MeetDomain.cpp", '// #include "MeetEntity.h"\n'))


if __name__ == "__main__":
    unittest.main()
