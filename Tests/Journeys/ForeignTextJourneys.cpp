#include "PrivateHome.h"

#include "Foundation/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

// Titles, places, names of calendars and files, and what a person types are other people's texts: whatever
// they hold, no output moves a cursor, breaks a line or turns the direction of writing with them.

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// A terminal's escape sequence (as ESC and as the one C1 control), a title of the window, a bell, overrides
// and isolates of the direction of writing, a line separator, a delete, and a scalar that is none.
constexpr std::string_view hostile =
    "a\x1B[31mb\u009B31mc\x1B]0;t\x07\x64\u202Ee\u2066f\u200Fg\u2028h\x7Fi\uFFFEj";

// How a calendar file writes it; the control characters stand there as they are.
std::string hostileEvent(std::string_view uid, std::string_view name) {
    return event(uid, std::string(name) + std::string(hostile), ":20260311T090000Z", ":20260311T093000Z",
                 "LOCATION:" + std::string(hostile) + "\r\nDESCRIPTION:<p>" + std::string(hostile) +
                     "</p>\r\nURL:https://example.org/" + std::string(hostile) + "\r\n");
}

// Why the output is not harmless; empty when it is. Lines may end, and nothing else may control anything.
std::string harmIn(std::string_view output) {
    if (!Foundation::Text::isValidUTF8(output)) return "not UTF-8";
    std::string harm;
    for (char32_t const scalar : Foundation::Text::scalars(output)) {
        bool const isControl = (scalar < 0x20 && scalar != U'\n') || (scalar >= 0x7F && scalar < 0xA0);
        bool const turns = (scalar >= 0x202A && scalar <= 0x202E) || (scalar >= 0x2066 && scalar <= 0x2069) ||
                           scalar == 0x200E || scalar == 0x200F || scalar == 0x061C;
        bool const breaks = scalar == 0x2028 || scalar == 0x2029;
        bool const isNone = scalar == 0xFFFE || scalar == 0xFFFF;
        if (isControl || turns || breaks || isNone)
            harm += " U+" + std::to_string(static_cast<std::uint32_t>(scalar));
    }
    return harm;
}

struct Output {
    char const* name;
    std::vector<std::string> words;
    std::size_t lines = 0; ///< Lines on standard output; 0 where they are not counted.
    std::string input = {};
};

void PrintTo(Output const& output, std::ostream* stream) {
    *stream << output.name;
}

class ForeignTextJourneys : public testing::TestWithParam<Output> {
protected:
    ForeignTextJourneys() {
        home.setUp();
        auto const evil = home.calendars() / std::string(hostile);
        home.write(evil / "one.ics", calendarFile(hostileEvent("u1", "")));
        home.write(evil / "displayname", hostile);
        home.write(evil / ("bad" + std::string(hostile) + ".ics"),
                   "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:x" + std::string(hostile) +
                       "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
        home.write(home.folder() / "more" / "tea" / "tea.ics", calendarFile(hostileEvent("u2", "More")));
        auto const added = home.quillora(
            {"sources", "add", (home.folder() / "more").string(), "--title", std::string(hostile)});
        EXPECT_EQ(added.exitCode, 0) << added.errors;
        EXPECT_EQ(harmIn(added.output), "");
    }

    PrivateHome home;
};

TEST_P(ForeignTextJourneys, controlNothing) {
    auto const result = home.quillora(GetParam().words, ProgramRun::Output::captured, GetParam().input);
    EXPECT_EQ(harmIn(result.output), "") << result.output;
    EXPECT_EQ(harmIn(result.errors), "") << result.errors;
    EXPECT_NE(result.output + result.errors, "");
    if (GetParam().lines > 0) {
        EXPECT_EQ(std::ranges::count(result.output, '\n'), static_cast<std::ptrdiff_t>(GetParam().lines));
    }
}

std::string const typed(hostile);

INSTANTIATE_TEST_SUITE_P(
    Outputs, ForeignTextJourneys,
    testing::Values(
        Output{.name = "dayAsText", .words = {"day", "--at", "2026-03-11T08:00"}, .lines = 4},
        Output{.name = "dayAsJSON", .words = {"day", "--json", "--at", "2026-03-11T08:00"}, .lines = 1},
        Output{.name = "dayAsSVG", .words = {"day", "--svg", "-", "--at", "2026-03-11T08:00"}},
        Output{.name = "calendars", .words = {"calendars", "list"}},
        Output{.name = "calendarsAsJSON", .words = {"calendars", "list", "--json"}, .lines = 1},
        Output{.name = "sources", .words = {"sources", "list"}, .lines = 2},
        Output{.name = "sourcesAsJSON", .words = {"sources", "list", "--json"}, .lines = 1},
        Output{.name = "setup", .words = {"setup", "--yes"}}, Output{.name = "doctor", .words = {"doctor"}},
        Output{.name = "doctorAsJSON", .words = {"doctor", "--json"}, .lines = 1},
        Output{.name = "occurrences",
               .words = {"occurrences", "calendars", "--from", "2026-03-11", "--to", "2026-03-12"},
               .lines = 1},
        Output{.name = "occurrencesAsJSON",
               .words = {"occurrences", "calendars", "--from", "2026-03-11", "--to", "2026-03-12", "--json"},
               .lines = 1},
        Output{.name = "meets", .words = {"meet", "show", "--day", "2026-03-11"}, .lines = 3},
        Output{.name = "meetsAsJSON", .words = {"meet", "show", "--day", "2026-03-11", "--json"}, .lines = 1},
        Output{.name = "newMeet",
               .words = {"meet", "add", "--name", typed, "--start", "2026-03-11T12:00", "--location", typed,
                         "--description", typed}},
        Output{.name = "meetNobodyKnows", .words = {"meet", "show", typed}},
        Output{.name = "wrongDuration",
               .words = {"meet", "add", "--name", "x", "--start", "09:00", "--duration", typed}},
        Output{.name = "wrongLink",
               .words = {"meet", "add", "--name", "x", "--start", "09:00", "--url", typed}},
        Output{.name = "announcedCalendars", .words = {"alarm", "calendars", "list"}},
        Output{.name = "announcedCalendarNobodyKnows", .words = {"alarm", "calendars", "add", typed}},
        Output{.name = "announcement", .words = {"alarm", "preview", "--meet", typed, "--text"}},
        Output{.name = "messageTemplate", .words = {"alarm", "template", typed + "{event}"}},
        Output{.name = "messageWithoutAPlace", .words = {"alarm", "template", typed}},
        Output{.name = "unknownMode", .words = {"alarm", "mode", typed}},
        Output{.name = "lineOfHTML", .words = {"html-line"}, .lines = 1, .input = "<p>" + typed + "</p>"},
        Output{.name = "lineOfText", .words = {"html-line"}, .input = typed},
        Output{.name = "hiddenCalendar", .words = {"calendars", "hide", typed}},
        Output{.name = "unknownCommand", .words = {typed}},
        Output{.name = "unknownOption", .words = {"day", "--" + typed}},
        Output{.name = "wrongFamily", .words = {"day", "--family", typed}},
        Output{.name = "wrongDay", .words = {"day", "--day", typed}},
        Output{.name = "wrongMoment", .words = {"day", "--at", typed}},
        Output{.name = "wrongScale", .words = {"day", "--png", "x", "--scale", typed}},
        Output{.name = "wrongPicture", .words = {"day", "--png", typed + "/x.png"}},
        Output{.name = "missingFolder", .words = {"sources", "add", typed}},
        Output{.name = "missingSource", .words = {"sources", "remove", typed}},
        Output{.name = "missingPath",
               .words = {"occurrences", typed, "--from", "2026-03-11", "--to", "2026-03-12"}},
        Output{.name = "wrongZone",
               .words = {"occurrences", "calendars", "--zone", typed, "--from", "2026-03-11", "--to",
                         "2026-03-12"}},
        Output{.name = "providerNobodyKnows", .words = {"providers", "edit", typed, "--name", typed}},
        Output{.name = "surplusArgument", .words = {"next", typed}}),
    [](auto const& row) { return std::string(row.param.name); });

TEST(ForeignTextInProvidersJourneys, controlNothing) {
    PrivateHome const home;
    ASSERT_EQ(home.quillora({"setup", "--yes", "--keychain", "file"}).exitCode, 0);
    for (auto const& words : std::vector<std::vector<std::string>>{
             {"providers", "edit", "eventKit", "--name", typed, "--email", typed, "--description", typed},
             {"providers", "list"},
             {"providers", "list", "--json"},
             {"providers", "disable", "eventKit"},
             {"providers", "remove", "eventKit"}}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_EQ(harmIn(result.output), "") << words[1];
        EXPECT_EQ(harmIn(result.errors), "") << words[1];
    }
}

TEST(ForeignTextInMeetsJourneys, aMeetToldWholeControlsNothing) {
    PrivateHome const home;
    home.setUp();
    home.write(home.calendars() / "home" / "a.ics", calendarFile(hostileEvent("u1", "")));
    auto const day = home.dayJSON({"--at", "2026-03-11T08:00"});
    auto const& meetings = std::get<Foundation::JSON::Array>(day.member("meetings")->storage);
    ASSERT_EQ(meetings.size(), 1U);
    auto const id = Foundation::JSON::text(*meetings.front().member("metId")).value();
    for (auto const& words : std::vector<std::vector<std::string>>{
             {"meet", "show", id, "--day", "2026-03-11"},
             {"meet", "show", id, "--day", "2026-03-11", "--json"},
             {"meet", "edit", id, "--day", "2026-03-11", "--name", typed + "x", "--yes"},
             {"meet", "delete", id, "--day", "2026-03-11", "--yes"}}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 0) << words[1] << result.errors;
        EXPECT_EQ(harmIn(result.output), "") << words[1];
        EXPECT_EQ(harmIn(result.errors), "") << words[1];
    }
}

TEST(ForeignTextInJSONJourneys, isWholeWhenItIsRead) {
    PrivateHome const home;
    home.setUp();
    home.write(home.calendars() / "home" / "a.ics", calendarFile(hostileEvent("u1", "")));
    auto const names = meetNames(home.dayJSON({"--at", "2026-03-11T08:00"}));
    ASSERT_EQ(names.size(), 1U);
    // What the calendar's format itself does not allow is the reader's affair; the rest comes as it was
    // written.
    EXPECT_THAT(names.front(), HasSubstr("\u202Ee\u2066f\u200Fg\u2028h"));
}

TEST(ForeignTextFromRightToLeftJourneys, readsAsItWasWritten) {
    constexpr std::string_view title = "\u200Fפגישה: C++\u200E";
    PrivateHome const home;
    home.setUp();
    home.write(home.calendars() / "home" / "a.ics",
               calendarFile(event("u1", std::string(title), ":20260311T090000Z", ":20260311T093000Z",
                                  "LOCATION:Be\u00ADspre\u00ADchung\u200F 4\r\n")));
    auto const day = std::vector<std::string>{"day", "--at", "2026-03-11T08:00"};
    EXPECT_THAT(home.outputOf(day), HasSubstr(std::string(title)));
    EXPECT_EQ(meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})), std::vector{std::string(title)});
    // What a bar draws is this text once it is read; a person who looks at the document sees every mark.
    EXPECT_THAT(home.outputOf({"day", "--json", "--at", "2026-03-11T08:00"}),
                HasSubstr("\\u200fפגישה: C++\\u200e"));
    auto const shown = home.outputOf({"meet", "show", "--day", "2026-03-11"});
    EXPECT_THAT(shown, HasSubstr(std::string(title)));
    EXPECT_THAT(shown, testing::Not(HasSubstr("\uFFFD")));
    EXPECT_THAT(home.outputOf({"occurrences", "calendars", "--from", "2026-03-11", "--to", "2026-03-12"}),
                HasSubstr(std::string(title)));
    auto const html =
        home.quillora({"html-line"}, ProgramRun::Output::captured, "<p>" + std::string(title) + "&shy;</p>");
    EXPECT_EQ(html.output, std::string(title) + "\n");
}

TEST(HarmTests, theTestItselfSeesHarm) {
    EXPECT_EQ(harmIn("Reunión 日本\n"), "");
    for (auto const* text :
         {"\x1B", "\u009B", "\u202E", "\u2066", "\u200F", "\u2028", "\x7F", "\uFFFE", "\r", "\xFF"})
        EXPECT_NE(harmIn(text), "");
}

} // namespace
