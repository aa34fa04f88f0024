#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/MeetArguments.h"
#include "Foundation/DateFormatting.h"

#include <gtest/gtest.h>

namespace Companion {
namespace {

using Foundation::Date;
using Platform::EKRecurrenceFrequency;

class MeetArgumentsTests : public testing::Test {
protected:
    using Options = std::map<std::string, std::string, std::less<>>;

    [[nodiscard]] MeetArguments read(Options options) const {
        return meetArguments(ArgumentValues(std::move(options), {}), calendar);
    }
    [[nodiscard]] MeetTimes timesOf(Options options, std::string_view day = "2026-03-11") const {
        return newTimes(read(std::move(options)), calendar.day(at(day)), calendar);
    }
    [[nodiscard]] Date at(std::string_view text) const {
        return Foundation::momentFromISO8601(text, calendar).value();
    }
    [[nodiscard]] Meetings::MeetEntity meet(std::string_view start, std::string_view end,
                                            bool isAllDay) const {
        return {.metId = {},
                .metName = "Tea",
                .metDate = at(start),
                .metDescription = "green",
                .metDuration = at(end).timeIntervalSince(at(start)),
                .metColor = {.hexValue = ""},
                .metIsAllDay = isAllDay,
                .metLocation = std::nullopt,
                .metUrl = std::nullopt,
                .metCalendarName = "",
                .metCalendarIdentifier = "",
                .metRecurrenceFrequency = Meetings::MeetRecurrenceFrequency::none,
                .metRecurringWeekdays = {},
                .metOriginalIdentifier = "",
                .metSource = Meetings::MeetSource::eventKit};
    }
    void expectTimes(MeetTimes const& times, std::string_view start, std::string_view end) const {
        EXPECT_EQ(times.start, at(start));
        EXPECT_EQ(times.end, at(end));
    }

    Foundation::Calendar calendar{Foundation::TimeZone::named("Europe/Berlin").value()};
};

TEST_F(MeetArgumentsTests, clocksAreThoseOfTheDayAndLengthsOfAllForms) {
    expectTimes(timesOf({{"--start", "9:05"}}), "2026-03-11T09:05", "2026-03-11T10:05");
    expectTimes(timesOf({{"--start", "09:00"}, {"--end", "09:30"}}), "2026-03-11T09:00", "2026-03-11T09:30");
    expectTimes(timesOf({{"--start", "2026-04-01T23:00"}, {"--end", "2026-04-02T01:00"}}), "2026-04-01T23:00",
                "2026-04-02T01:00");
    struct Row {
        char const* length;
        char const* end;
    };
    for (auto const& row : std::vector<Row>{{"45", "2026-03-11T09:45"},
                                            {"45m", "2026-03-11T09:45"},
                                            {"2h", "2026-03-11T11:00"},
                                            {"1h30m", "2026-03-11T10:30"},
                                            {"1h5", "2026-03-11T10:05"},
                                            {"0", "2026-03-11T09:00"}})
        expectTimes(timesOf({{"--start", "09:00"}, {"--duration", row.length}}), "2026-03-11T09:00", row.end);
}

TEST_F(MeetArgumentsTests, aTimeThatTheClocksSkipMovesForward) {
    expectTimes(timesOf({{"--start", "02:30"}}, "2026-03-29"), "2026-03-29T03:30", "2026-03-29T04:30");
}

TEST_F(MeetArgumentsTests, wholeDaysEndAtTheNextMidnight) {
    expectTimes(timesOf({{"--all-day", ""}}, "2026-03-29"), "2026-03-29", "2026-03-30");
    expectTimes(timesOf({{"--all-day", ""}, {"--start", "2026-03-28"}, {"--end", "2026-03-30"}}),
                "2026-03-28", "2026-03-31");
}

TEST_F(MeetArgumentsTests, whatIsNotGivenStays) {
    auto const tea = meet("2026-03-11T09:00", "2026-03-11T09:30", false);
    auto const changed = [&](Options options) {
        return changedTimes(read(std::move(options)), tea, calendar);
    };
    expectTimes(changed({{"--name", "Coffee"}}), "2026-03-11T09:00", "2026-03-11T09:30");
    expectTimes(changed({{"--start", "10:00"}}), "2026-03-11T10:00", "2026-03-11T10:30");
    expectTimes(changed({{"--end", "10:00"}}), "2026-03-11T09:00", "2026-03-11T10:00");
    expectTimes(changed({{"--duration", "5"}}), "2026-03-11T09:00", "2026-03-11T09:05");
}

TEST_F(MeetArgumentsTests, movedDaysStayAsManyAcrossAChangeOfClocks) {
    auto const fair = meet("2026-03-26", "2026-03-28", true);
    expectTimes(changedTimes(read({{"--start", "2026-03-28"}}), fair, calendar), "2026-03-28", "2026-03-30");
    expectTimes(changedTimes(read({{"--end", "2026-03-29"}}), fair, calendar), "2026-03-26", "2026-03-30");
}

TEST_F(MeetArgumentsTests, whatLeavesTheCalendarsYearsIsWrongUse) {
    auto const tea = meet("2026-03-11T09:00", "2026-03-11T10:00", false);
    auto const fair = meet("2026-03-11", "2026-03-15", true);
    for (auto const& options :
         std::vector<Options>{{{"--start", "9999-12-31T23:00"}},
                              {{"--start", "9999-12-31T23:00-12:00"}},
                              {{"--end", "9999-12-31T23:00-12:00"}},
                              {{"--start", "9999-12-31T22:59"}, {"--duration", "2h"}}}) {
        EXPECT_THROW(static_cast<void>(changedTimes(read(options), tea, calendar)), CommandError);
    }
    EXPECT_THROW(static_cast<void>(timesOf({{"--start", "9999-12-31T23:30"}})), CommandError);
    EXPECT_THROW(static_cast<void>(changedTimes(read({{"--start", "9999-12-29"}}), fair, calendar)),
                 CommandError);
    expectTimes(changedTimes(read({{"--start", "9999-12-31T22:59"}}), tea, calendar), "9999-12-31T22:59",
                "9999-12-31T23:59");
}

TEST_F(MeetArgumentsTests, aRepetitionIsReadWhole) {
    auto const arguments =
        read({{"--repeat", "weekly"}, {"--weekdays", "Monday,wed,7"}, {"--until", "2026-05-01"}});
    ASSERT_TRUE(arguments.repetition.has_value());
    EXPECT_EQ(arguments.repetition->weekdays, (std::set<std::int64_t>{2, 4, 7}));
    EXPECT_FALSE(arguments.repetition->fitsAMeet());
    EXPECT_TRUE(arguments.goesBeyondAMeet());

    Platform::EKEvent event{.startDate = at("2026-03-11T09:00")};
    writeFields(arguments, event, calendar);
    ASSERT_EQ(event.recurrenceRules.size(), 1U);
    EXPECT_EQ(event.recurrenceRules.front().frequency, EKRecurrenceFrequency::weekly);
    EXPECT_EQ(event.recurrenceRules.front().endDate, at("2026-05-01T23:59:59"));
}

TEST_F(MeetArgumentsTests, aRhythmThatAMeetCanSayNeedsNoMore) {
    for (auto const* rhythm : {"daily", "weekly", "monthly", "none"})
        EXPECT_FALSE(read({{"--repeat", rhythm}}).goesBeyondAMeet()) << rhythm;
    EXPECT_TRUE(read({{"--repeat", "yearly"}}).goesBeyondAMeet());
    EXPECT_TRUE(read({{"--repeat", "daily"}, {"--count", "2"}}).goesBeyondAMeet());
    EXPECT_TRUE(read({}).isEmpty());
}

TEST_F(MeetArgumentsTests, anEmptyTextEmptiesItsField) {
    Platform::EKEvent event{.title = "Tea",
                            .startDate = at("2026-03-11T09:00"),
                            .notes = "green",
                            .location = "Kitchen",
                            .url = Foundation::URL::fromText("https://example.org")};
    writeFields(read({{"--description", ""}, {"--location", ""}, {"--url", ""}}), event, calendar);
    EXPECT_EQ(event.title, "Tea");
    EXPECT_EQ(event.notes, std::nullopt);
    EXPECT_EQ(event.location, std::nullopt);
    EXPECT_EQ(event.url, std::nullopt);
}

TEST_F(MeetArgumentsTests, whatCannotBeMeantIsWrongUse) {
    for (auto const& options : std::vector<Options>{
             {{"--start", "24:00"}},
             {{"--start", "9"}},
             {{"--start", "09:5"}},
             {{"--start", "-9:00"}},
             {{"--duration", ""}},
             {{"--duration", "m"}},
             {{"--duration", "h"}},
             {{"--duration", "1h-5m"}},
             {{"--duration", "1d"}},
             {{"--duration", "99999999999999999999"}},
             {{"--repeat", "weekly"}, {"--weekdays", ""}},
             {{"--repeat", "weekly"}, {"--weekdays", "mon,"}},
             {{"--repeat", "daily"}, {"--weekdays", "mon"}},
             {{"--repeat", "none"}, {"--count", "2"}},
             {{"--repeat", "daily"}, {"--count", "-1"}},
             {{"--count", "2"}},
             {{"--url", "http://["}},
             {{"--url", "not a url"}},
             {{"--url", "example.org"}},
         }) {
        EXPECT_THROW(static_cast<void>(read(options)), CommandError)
            << options.begin()->first << options.begin()->second;
    }
}

} // namespace
} // namespace Companion
