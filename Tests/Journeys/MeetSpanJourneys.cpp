// What `--this` and `--future` do to a series of which an occurrence was changed by itself, and what happens
// while a question stands.

#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Words = std::vector<std::string>;

constexpr char const* goAhead = "Go ahead? [y/n] ";
constexpr char const* gone =
    "The event is no longer in the calendar. Nothing was changed; load the day again.\n";

std::string contentOf(fs::path const& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// 2026-03-11, a Wednesday, with one occurrence of a daily series that was changed by itself and says little.
class MeetSpanJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.write(file(),
                   calendarFile(event("u1", "Stand-up", ";TZID=Europe/Berlin:20260302T090000",
                                      ";TZID=Europe/Berlin:20260302T091500",
                                      "RRULE:FREQ=DAILY\r\nLOCATION:Room 1\r\nDESCRIPTION:Bring coffee\r\n"
                                      "X-OTHER;A=b:kept\r\n") +
                                event("u1", "Retrospective", ";TZID=Europe/Berlin:20260311T140000",
                                      ";TZID=Europe/Berlin:20260311T150000",
                                      "RECURRENCE-ID;TZID=Europe/Berlin:20260311T090000\r\n")));
        home.setUp();
    }

    [[nodiscard]] fs::path file() const { return home.calendars() / "work" / "stand-up.ics"; }

    // The one meet of the day.
    static Words of(std::string const& command, Words more, std::string const& id) {
        Words words{"meet", command, id, "--day", "2026-03-11"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    [[nodiscard]] std::string id() const {
        auto const list = home.outputOf({"meet", "show", "--day", "2026-03-11"});
        auto const line = list.find('\n') + 1;
        return list.substr(line, list.find(' ', line) - line);
    }
    [[nodiscard]] std::string shown(std::string const& day) const {
        return home.outputOf({"day", "--day", day, "--json"});
    }

    PrivateHome home;
};

TEST_F(MeetSpanJourneys, thePlanTellsWhatTheLaterOnesTakeOver) {
    auto const words = of("edit", {"--future", "--description", "Bring cake", "--start", "14:30"}, id());
    EXPECT_THAT(
        home.quillora(words).errors,
        StartsWith(
            "Changes \"Retrospective\" from this occurrence on, Wednesday 2026-03-11, 02:00 p.m. – 03:00 "
            "p.m.; earlier ones stay as they are:\n"
            "  When         Wednesday 2026-03-11, 02:00 p.m. – 03:00 p.m.  →  Wednesday 2026-03-11, "
            "02:30 p.m. – 03:30 p.m.\n"
            "  Description  (nothing)                                      →  Bring cake\n"
            "The later ones change so:\n"
            "  Title        Stand-up                                      →  Retrospective\n"
            "  When         Thursday 2026-03-12, 09:00 a.m. – 09:15 a.m.  →  Thursday 2026-03-12, "
            "09:30 a.m. – 09:45 a.m.\n"
            "  Description  Bring coffee                                  →  Bring cake\n"));
}

TEST_F(MeetSpanJourneys, theLaterOnesBecomeWhatThePlanTold) {
    static_cast<void>(home.outputOf(
        of("edit", {"--future", "--description", "Bring cake", "--start", "14:30", "--yes"}, id())));
    auto const later = shown("2026-03-12");
    for (auto const* text : {"Retrospective", "Bring cake", "Room 1", "2026-03-12T08:30:00Z"})
        EXPECT_THAT(later, HasSubstr(text)) << later;
    EXPECT_THAT(shown("2026-03-11"), HasSubstr("2026-03-11T13:30:00Z"));
    EXPECT_THAT(shown("2026-03-11"), Not(HasSubstr("Room 1")));
    EXPECT_THAT(shown("2026-03-10"), HasSubstr("Bring coffee"));
}

TEST_F(MeetSpanJourneys, whatChangesNothingSaysSoAndAsksNobody) {
    auto const before = home.snapshot();
    for (auto const& more : std::vector<Words>{
             {"--future", "--location", ""}, {"--this", "--name", "Retrospective"}, {"--start", "14:00"}}) {
        auto const result = home.quillora(of("edit", more, id()));
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_EQ(result.output, "Nothing changes: \"Retrospective\" is so already\n");
    }
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(MeetSpanJourneys, accessThatIsTakenBackWhileTheQuestionStandsIsRespected) {
    auto const before = contentOf(file());
    for (auto const* command : {"edit", "delete"}) {
        for (auto const* reach : {"--this", "--future"}) {
            Words more{reach};
            if (std::string_view(command) == "edit") more.insert(more.end(), {"--name", "Other"});
            auto const name = id();
            auto const result = home.quilloraAsked(of(command, more, name), goAhead, "y\n", [&] {
                EXPECT_EQ(home.quillora({"access", "deny"}).exitCode, 0);
            });
            EXPECT_EQ(result.exitCode, 1) << command << ' ' << reach << '\n' << result.output;
            EXPECT_EQ(contentOf(file()), before) << command << ' ' << reach;
            EXPECT_EQ(home.quillora({"access", "grant"}).exitCode, 0);
        }
    }
}

TEST_F(MeetSpanJourneys, whatGoesWhileTheQuestionStandsIsToldInTheOneWay) {
    auto const content = contentOf(file());
    for (auto const& words : std::vector<Words>{
             of("edit", {"--name", "Other"}, id()), of("edit", {"--this", "--name", "Other"}, id()),
             of("edit", {"--future", "--name", "Other"}, id()), of("delete", {}, id()),
             of("delete", {"--this"}, id()), of("delete", {"--future"}, id())}) {
        auto const result = home.quilloraAsked(words, goAhead, "y\n", [&] { fs::remove(file()); });
        EXPECT_EQ(result.exitCode, 1) << result.output;
        std::string text = gone;
        text.insert(text.size() - 1, "\r");
        EXPECT_THAT(result.output, EndsWith(text));
        home.write(file(), content);
    }
}

TEST_F(MeetSpanJourneys, whatLastsNoTimeIsRenamedAndMovedAsItIs) {
    home.write(file(), calendarFile("BEGIN:VEVENT\r\nUID:u2\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Post\r\n"
                                    "DTSTART:20260311T090000Z\r\nEND:VEVENT\r\n"));
    static_cast<void>(home.outputOf(of("edit", {"--name", "Parcel", "--start", "11:00", "--yes"}, id())));
    auto const content = contentOf(file());
    EXPECT_THAT(content, HasSubstr("SUMMARY:Parcel\r\n"));
    EXPECT_THAT(content, HasSubstr("DTSTART:20260311T100000Z\r\n"));
    EXPECT_THAT(content, Not(HasSubstr("DTEND")));
    auto const refused = home.quillora(of("edit", {"--duration", "0", "--yes"}, id()));
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(contentOf(file()), content);
}

} // namespace
