#pragma once

#include "Tests/Audio/StandInProgram.h"
#include "Tests/Platform/TemporaryFolder.h"
#include "Tests/WidgetHost/ChildProcess.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

/// A home of its own for the alarm service itself: the calendar "Work" is announced, by a sound.
class AlarmHome {
public:
    AlarmHome() {
        for (auto const* name : {"cache", "run", "calendars/Work"})
            std::filesystem::create_directories(folder.path() / name);
        std::filesystem::permissions(folder.path() / "run", std::filesystem::perms::owner_all);
        folder.place("config/quillora/calendar-access.json", "3");
        folder.place("data/group.quillora/enabledCalendarAccounts.json", R"(["eventKit"])");
        folder.place("config/quillora/calendar-store.json",
                     R"({"version":1,"sources":[{"kind":"folder","id":"k3fa","path":")" +
                         (folder.path() / "calendars").string() + R"(","title":"Test"}]})");
        folder.place("config/quillora/defaults.json",
                     R"({"meetAlarmMode":"hero","alarmEnabledCalendarIdentifiers":["k3fa\/Work"]})");
        placeStandIn(programs, "pw-play");
        environment = {{"PATH", programs.path().string()},
                       {"HOME", folder.path().string()},
                       {"XDG_CONFIG_HOME", folder.path() / "config"},
                       {"XDG_DATA_HOME", folder.path() / "data"},
                       {"XDG_CACHE_HOME", folder.path() / "cache"},
                       {"XDG_RUNTIME_DIR", folder.path() / "run"},
                       {"LANG", "C.UTF-8"},
                       {"TZ", "Europe/Berlin"}};
        // What a sanitizer is to pass over holds for the program as for its tests.
        for (char const* const name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"})
            if (char const* const value = std::getenv(name)) environment[name] = value;
    }

    /// Puts these events in the place of all that the calendar held.
    void placeEvents(std::string const& events) const {
        folder.place("calendars/Work/.meets.tmp",
                     "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:test\r\n" + events + "END:VCALENDAR\r\n");
        std::filesystem::rename(folder.path() / "calendars/Work/.meets.tmp",
                                folder.path() / "calendars/Work/meets.ics");
    }

    [[nodiscard]] std::unique_ptr<ChildProcess> started(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), QUILLORA_BUILD_DIR "/bin/quillora-alarms");
        return std::make_unique<ChildProcess>(options, environment);
    }

    [[nodiscard]] std::string settings() const {
        std::ifstream file(folder.path() / "config/quillora/defaults.json");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// A line for each sound that was played: the file's path.
    [[nodiscard]] std::string sounds() const { return wordsGivenTo(programs, "pw-play"); }

    TemporaryFolder folder;
    TemporaryFolder programs;
    ChildProcess::Environment environment;
};
