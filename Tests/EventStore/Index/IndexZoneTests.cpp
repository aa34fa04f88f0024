// What other rules of a time zone change: answers, and no index.

#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/Index/IndexedRoot.h"

#include <fmt/chrono.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

#include <sys/wait.h>
#include <unistd.h>

using namespace Platform;

namespace {

using Texts = std::vector<std::string>;

// Five hours ahead of UTC, and by the newer rules seven behind it from 10 March 2026 on.
constexpr auto formerRules = "Zone Testland/Moving 5:00 - TST\n";
constexpr auto newerRules = "Zone Testland/Moving 5:00 - TST 2026 Mar 10 0:00\n-7:00 - TST\n";

// An event of an hour on that zone's clock, which the file does not explain.
std::string zonedEvent(std::string const& title, std::string const& start, std::string const& more = "") {
    return smallFile({fmt::format("BEGIN:VEVENT\r\nUID:{0}\r\nSUMMARY:{0}\r\nDTSTART;TZID=Testland/Moving:{1}"
                                  "\r\nDURATION:PT1H\r\n{2}END:VEVENT\r\n",
                                  title, start, more)});
}

// The title and the time in UTC of what happens on each day of March 2026, asked for day by day.
Texts daysOf(CalendarRootReader& reader) {
    constexpr double day = 86400;
    constexpr double march = 1772323200;
    Texts lines;
    for (int number = 0; number < 31; ++number) {
        auto const from = march + number * day;
        std::vector<EKEvent> events;
        reader.appendEvents({.start = {from}, .end = {from + day}, .calendars = std::nullopt},
                            Foundation::TimeZone::utc(), IndexedRoot::later(), events);
        for (auto const& event : events) {
            auto const start = static_cast<std::time_t>(event.startDate->secondsSince1970);
            lines.push_back(
                fmt::format("{} {:%d %H:%M}", event.title.value_or("untitled"), fmt::gmtime(start)));
        }
    }
    return lines;
}

class IndexZoneTests : public testing::Test {
protected:
    IndexZoneTests() {
        root.write("work/a.ics", zonedEvent("early", "20260305T090000"));
        root.write("work/b.ics", zonedEvent("late", "20260311T090000"));
        root.write("work/c.ics", zonedEvent("other-day", "20260312T020000"));
        root.write("work/d.ics", zonedEvent("series", "20260306T090000", "RRULE:FREQ=WEEKLY;COUNT=3\r\n"));
        root.write("work/e.ics",
                   zonedEvent("ended", "20260304T090000", "RRULE:FREQ=WEEKLY;UNTIL=20260318T050000Z\r\n"));
        root.write("work/f.ics", smallFile({smallEvent("u", "universal", "20260315T120000Z")}));
    }

    // A folder of zones that has these rules; empty where there is no compiler of zones.
    [[nodiscard]] std::filesystem::path zones(std::string const& name, std::string const& rules) const {
        auto const source = folder.write(name + ".zones", rules);
        auto const compiled = folder / name;
        // Where ordinary users do not look for programs.
        auto const status = std::system( // NOLINT(cert-env33-c): paths of this test's own.
            fmt::format("PATH=\"$PATH:/usr/sbin\" zic -d '{}' '{}'", compiled.string(), source.string())
                .c_str());
        constexpr int noSuchProgram = 127;
        if (WIFEXITED(status) && WEXITSTATUS(status) == noSuchProgram) return {};
        EXPECT_EQ(status, 0);
        return compiled;
    }

    struct Answer {
        Texts lines;
        std::string reads; // How many files were read for it because they were not known.
    };

    // What a process answers that finds its zones there: one that runs keeps the rules that it has found.
    [[nodiscard]] Answer answerUnder(std::filesystem::path const& zones) const {
        auto const report = folder / "report";
        auto const child = ::fork();
        if (child == 0) {
            ::setenv("TZDIR", zones.c_str(), 1);
            auto const reader = root.reader();
            std::ofstream stream(report);
            for (auto const& line : daysOf(*reader))
                stream << line << '\n';
            stream << reader->reads() << '\n';
            stream.close();
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        Answer answer;
        std::ifstream stream(report);
        for (std::string line; std::getline(stream, line);)
            answer.lines.push_back(line);
        if (answer.lines.empty()) return answer;
        answer.reads = answer.lines.back();
        answer.lines.pop_back();
        return answer;
    }

    IndexedRoot root;
    TemporaryFolder folder;
};

} // namespace

TEST_F(IndexZoneTests, newerRulesOfAZoneChangeTheAnswersAndNoIndex) {
    auto const former = zones("former", formerRules);
    if (former.empty()) GTEST_SKIP() << "there is no zic here";
    auto const newer = zones("newer", newerRules);

    auto const first = answerUnder(former);
    EXPECT_EQ(first.lines, (Texts{"ended 04 04:00", "early 05 04:00", "series 06 04:00", "late 11 04:00",
                                  "ended 11 04:00", "other-day 11 21:00", "series 13 04:00",
                                  "universal 15 12:00", "ended 18 04:00", "series 20 04:00"}));
    EXPECT_EQ(first.reads, "6");
    auto const index = root.indexContents();

    auto const second = answerUnder(newer);
    EXPECT_EQ(second.lines,
              (Texts{"ended 04 04:00", "early 05 04:00", "series 06 04:00", "late 11 16:00", "ended 11 16:00",
                     "other-day 12 09:00", "series 13 16:00", "universal 15 12:00", "series 20 16:00"}));
    EXPECT_EQ(second.reads, "0");
    EXPECT_EQ(root.indexContents(), index);

    // Back again, with an index that was made under the newer rules.
    std::filesystem::remove_all(root.indexes());
    EXPECT_EQ(answerUnder(newer).lines, second.lines);
    auto const third = answerUnder(former);
    EXPECT_EQ(third.lines, first.lines);
    EXPECT_EQ(third.reads, "0");
}
