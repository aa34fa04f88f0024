#include "Applications/Companion/MeetWords.h"
#include "Foundation/DateFormatting.h"

#include <gtest/gtest.h>

namespace Companion {
namespace {

using Foundation::Date;
using Platform::EKRecurrenceFrequency;
using Platform::EKRecurrenceRule;

class MeetWordsTests : public testing::Test {
protected:
    [[nodiscard]] Date at(std::string_view text) const {
        return Foundation::momentFromISO8601(text, calendar).value();
    }

    Foundation::Calendar calendar{Foundation::TimeZone::named("Europe/Berlin").value()};
    MeetWords words{calendar, {.identifier = "en"}};
};

TEST_F(MeetWordsTests, inASentenceAWeekdayIsWrittenAsTheLanguageDoes) {
    EXPECT_EQ(words.dayInSentence(at("2026-11-23")), "Monday 2026-11-23");
    MeetWords const spanish(calendar, {.identifier = "es"});
    EXPECT_EQ(spanish.dayInSentence(at("2026-11-23")), "lunes 2026-11-23");
    EXPECT_EQ(spanish.day(at("2026-11-23")), "Lunes 2026-11-23");
}

TEST_F(MeetWordsTests, timesAreToldWithTheirDays) {
    struct Row {
        char const* start;
        char const* end;
        bool isAllDay;
        char const* words;
    };
    for (auto const& row : std::vector<Row>{
             {"2026-03-11T09:00", "2026-03-11T09:15", false, "Wednesday 2026-03-11, 09:00 a.m. – 09:15 a.m."},
             {"2026-03-11T09:00", "2026-03-11T09:00", false, "Wednesday 2026-03-11, 09:00 a.m."},
             {"2026-03-11T22:00", "2026-03-12T00:00", false, "Wednesday 2026-03-11, 10:00 p.m. – 12:00 a.m."},
             {"2026-03-11T22:00", "2026-03-12T02:00", false,
              "Wednesday 2026-03-11, 10:00 p.m. – Thursday 2026-03-12, 02:00 a.m."},
             {"2026-03-11", "2026-03-12", true, "Wednesday 2026-03-11, all day"},
             {"2026-03-11", "2026-03-14", true, "Wednesday 2026-03-11 – Friday 2026-03-13, all day"},
             // The day on which the clocks go forward lasts 23 hours.
             {"2026-03-29", "2026-03-30", true, "Sunday 2026-03-29, all day"},
         })
        EXPECT_EQ(words.when(at(row.start), at(row.end), row.isAllDay), row.words);
}

TEST_F(MeetWordsTests, rulesAreToldAsFarAsTheyGo) {
    auto const weekly = EKRecurrenceFrequency::weekly;
    auto const monthly = EKRecurrenceFrequency::monthly;
    struct Row {
        EKRecurrenceRule rule;
        char const* words;
    };
    for (auto const& row : std::vector<Row>{
             {{.frequency = EKRecurrenceFrequency::daily}, "every day"},
             {{.frequency = EKRecurrenceFrequency::yearly, .interval = 4}, "every 4 years"},
             {{.frequency = EKRecurrenceFrequency::other, .interval = 8}, "several times a day"},
             {{.frequency = weekly, .daysOfTheWeek = {{.dayOfTheWeek = 1}}}, "every week on Sunday"},
             {{.frequency = monthly, .daysOfTheWeek = {{.dayOfTheWeek = 7, .weekNumber = 5}}},
              "every month on the fifth Saturday"},
             {{.frequency = monthly, .daysOfTheWeek = {{.dayOfTheWeek = 3, .weekNumber = -2}}},
              "every month on Tuesday number 2 from the end"},
             {{.frequency = EKRecurrenceFrequency::yearly,
               .daysOfTheWeek = {{.dayOfTheWeek = 2, .weekNumber = 20}}},
              "every year on Monday number 20"},
             {{.frequency = monthly, .daysOfTheMonth = {1, 15, -2}},
              "every month on day 1, day 15 and day 2 from the end"},
             {{.frequency = weekly, .occurrenceCount = 1}, "every week, once"},
             {{.frequency = weekly, .endDate = at("2026-05-01T23:59")},
              "every week, until Friday 2026-05-01"},
         })
        EXPECT_EQ(words.repetition({row.rule}), row.words);
    EXPECT_EQ(words.repetition({{.frequency = weekly}, {.frequency = monthly}}),
              "every week and every month");
    EXPECT_EQ(words.repetition({}), "");
}

TEST_F(MeetWordsTests, weekdaysAreThoseOfTheLocale) {
    MeetWords const german(calendar, {.identifier = "de"});
    EXPECT_EQ(german.day(at("2026-03-11")), "Mittwoch 2026-03-11");
}

} // namespace
} // namespace Companion
