#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <ostream>

namespace Meetings {
namespace {

TEST(MeetEntityTests, aMeetIsTimedUnlessItSaysOtherwise) {
    MeetEntity const meet = {
        .metId = {.bytes = {}},
        .metName = "A",
        .metDate = {.secondsSince1970 = 0},
        .metDescription = "",
        .metDuration = 1,
        .metColor = {.hexValue = "#000000"},
        .metLocation = std::nullopt,
        .metUrl = std::nullopt,
        .metCalendarName = "",
        .metCalendarIdentifier = "",
        .metRecurrenceFrequency = MeetRecurrenceFrequency::none,
        .metRecurringWeekdays = {},
        .metOriginalIdentifier = "",
        .metSource = MeetSource::backend,
    };
    EXPECT_FALSE(meet.metIsAllDay);
}

TEST(MeetEntityTests, theIdentityIsTheMeetsId) {
    EXPECT_EQ(someMeet().id(), (Foundation::UUID{.bytes = {1, 2, 3, 4}}));
}

TEST(MeetEntityTests, nothingIsCheckedOrNormalisedWhenAMeetIsMade) {
    auto meet = someMeet("  ");
    meet.metDuration = -5;
    meet.metColor = {.hexValue = "no colour"};
    meet.metRecurringWeekdays = {0, 9};
    EXPECT_EQ(meet.metName, "  ");
    EXPECT_EQ(meet.metDuration, -5);
    EXPECT_EQ(meet.metColor.hexValue, "no colour");
    EXPECT_EQ(meet.metRecurringWeekdays, (std::set<std::int64_t>{0, 9}));
}

TEST(MeetEntityTests, meetsMadeSeparatelyWithTheSameFieldsAreEqual) {
    EXPECT_EQ(someMeet(), someMeet());
}

TEST(MeetEntityTests, aDurationThatIsNotANumberEqualsNothing) {
    auto meet = someMeet();
    meet.metDuration = std::numeric_limits<double>::quiet_NaN();
    auto const same = meet;
    EXPECT_FALSE(meet == same);
}

struct FieldRow {
    char const* name;
    std::function<void(MeetEntity&)> change;
    friend void PrintTo(FieldRow const& row, std::ostream* out) { *out << row.name; }
};

class MeetEntityFieldTests : public testing::TestWithParam<FieldRow> {};

TEST_P(MeetEntityFieldTests, oneFieldMakesTwoMeetsUnequal) {
    auto changed = someMeet();
    GetParam().change(changed);
    EXPECT_NE(changed, someMeet());
}

INSTANTIATE_TEST_SUITE_P(
    everyField, MeetEntityFieldTests,
    testing::Values(
        FieldRow{"metId", [](MeetEntity& meet) { meet.metId.bytes[15] = 9; }},
        FieldRow{"metName", [](MeetEntity& meet) { meet.metName = "stand-up"; }},
        FieldRow{"metDate", [](MeetEntity& meet) { meet.metDate.secondsSince1970 += 0.5; }},
        FieldRow{"metDescription", [](MeetEntity& meet) { meet.metDescription = ""; }},
        FieldRow{"metDuration", [](MeetEntity& meet) { meet.metDuration = 1801; }},
        FieldRow{"metColor", [](MeetEntity& meet) { meet.metColor.hexValue = "#d1495b"; }},
        FieldRow{"metIsAllDay", [](MeetEntity& meet) { meet.metIsAllDay = true; }},
        FieldRow{"metLocation", [](MeetEntity& meet) { meet.metLocation = std::nullopt; }},
        FieldRow{"metUrl", [](MeetEntity& meet) { meet.metUrl->absoluteString = "https://example.com/1/"; }},
        FieldRow{"metCalendarName", [](MeetEntity& meet) { meet.metCalendarName = "Home"; }},
        FieldRow{"metCalendarIdentifier", [](MeetEntity& meet) { meet.metCalendarIdentifier = "a1/home"; }},
        FieldRow{"metRecurrenceFrequency",
                 [](MeetEntity& meet) { meet.metRecurrenceFrequency = MeetRecurrenceFrequency::daily; }},
        FieldRow{"metRecurringWeekdays", [](MeetEntity& meet) { meet.metRecurringWeekdays = {2, 5}; }},
        FieldRow{"metOriginalIdentifier", [](MeetEntity& meet) { meet.metOriginalIdentifier = "u2"; }},
        FieldRow{"metSource", [](MeetEntity& meet) { meet.metSource = MeetSource::backend; }}),
    [](auto const& test) { return test.param.name; });

} // namespace
} // namespace Meetings
