#pragma once

#include "ChildProcess.h"
#include "DisplayServer.h"
#include "VirtualScreen.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

inline constexpr char const* title = "Quillora";
inline constexpr std::uint32_t wednesdayColor = 0xD1495B;
inline constexpr std::uint32_t thursdayColor = 0x2E86AB;
inline constexpr std::uint32_t lightBrand = 0x5CC2C6;
inline constexpr std::uint32_t darkBrand = 0x696F9B;

inline char const* searchPath() {
    char const* const path = std::getenv("PATH");
    return path == nullptr ? "/usr/local/bin:/usr/bin:/bin" : path;
}

inline std::string readFile(std::filesystem::path const& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The program itself, in a home and on a display of its own.
class WidgetProgramTests : public testing::Test {
protected:
    WidgetProgramTests() {
        std::string pattern = testing::TempDir() + "widget-XXXXXX";
        home = mkdtemp(pattern.data());
        for (char const* const folder : {"config/quillora", "data/group.quillora", "cache", "run"}) {
            std::filesystem::create_directories(home / folder);
        }
        std::filesystem::permissions(home / "run", std::filesystem::perms::owner_all);
        environment = {
            {"PATH", searchPath()},
            {"HOME", home.native()},
            {"XDG_CONFIG_HOME", home / "config"},
            {"XDG_DATA_HOME", home / "data"},
            {"XDG_CACHE_HOME", home / "cache"},
            {"XDG_STATE_HOME", home / "state"},
            {"XDG_RUNTIME_DIR", home / "run"},
            {"DISPLAY", display.name()},
            {"GDK_BACKEND", "x11"},
            {"NO_AT_BRIDGE", "1"},
            {"GSETTINGS_BACKEND", "memory"},
            {"LANG", "C.UTF-8"},
            {"TZ", "Europe/Berlin"},
        };
        // What a sanitizer is to pass over holds for the program as for its tests.
        for (char const* const name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"}) {
            if (char const* const value = std::getenv(name)) {
                environment[name] = value;
            }
        }
        giveAccess();
        addCalendar("Wednesday", "D1495B", "20260311T100000", "20260311T110000");
        addCalendar("Thursday", "2E86AB", "20260312T100000", "20260312T110000");
    }
    ~WidgetProgramTests() override {
        widget.reset();
        std::filesystem::remove_all(home);
    }

    void write(std::filesystem::path const& path, std::string const& text) const {
        auto const aside = path.parent_path() / ".aside";
        std::ofstream(aside) << text;
        std::filesystem::rename(aside, path);
    }

    void giveAccess() const {
        write(home / "config/quillora/calendar-access.json", "3");
        write(home / "data/group.quillora/enabledCalendarAccounts.json", R"(["eventKit"])");
        write(home / "config/quillora/calendar-store.json",
              R"({"version":1,"sources":[{"kind":"folder","id":"k3fa","path":")" +
                  (home / "calendars").native() + R"(","title":"Test"}]})");
    }

    /// `more` are lines of the event, each with its end.
    void addCalendar(std::string const& name, std::string const& color, std::string const& start,
                     std::string const& end, std::string const& more = "") const {
        auto const folder = home / "calendars" / name;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "color") << "#" + color;
        std::ofstream(folder / "event.ics")
            << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:test\r\nBEGIN:VEVENT\r\nUID:" + name +
                   "\r\nSUMMARY:" + name + "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" + start +
                   "\r\nDTEND:" + end + "\r\n" + more + "END:VEVENT\r\nEND:VCALENDAR\r\n";
    }

    static std::vector<std::string> command(std::vector<std::string> options) {
        options.insert(options.begin(), QUILLORA_BUILD_DIR "/bin/quillora-widget");
        return options;
    }

    /// Starts the widget, at nine on Wednesday unless the options say otherwise, and waits for its day.
    void open(std::vector<std::string> options = {"--at", "2026-03-11T09:00"}) {
        options.emplace_back("--print-first-frame");
        widget = std::make_unique<ChildProcess>(command(std::move(options)), environment);
        ASSERT_TRUE(widget->readLine().has_value()) << widget->errorText();
    }

    [[nodiscard]] std::optional<VirtualScreen::Picture> dayWith(std::uint32_t color,
                                                                std::uint32_t without) const {
        return screen.pictureWhen(
            title, [=](auto const& shown) { return shown.count(color) > 0 && shown.count(without) == 0; });
    }
    [[nodiscard]] bool showsWednesday() const { return dayWith(wednesdayColor, thursdayColor).has_value(); }
    [[nodiscard]] bool showsThursday() const { return dayWith(thursdayColor, wednesdayColor).has_value(); }

    [[nodiscard]] std::filesystem::path offsetFile() const {
        return home / "data/group.quillora/scheduleWidgetDayOffset.json";
    }

    std::filesystem::path home;
    DisplayServer display;
    VirtualScreen screen{display.name()};
    ChildProcess::Environment environment;
    std::unique_ptr<ChildProcess> widget;
};
