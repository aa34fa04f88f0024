#include "Meetings/MeetDomain.h"

#include "Meetings/MeetValidationError.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

namespace Meetings {
namespace {

using Case = MeetValidationError::Case;

std::optional<Case> refusalOf(std::string name, double duration) {
    auto meet = someMeet(std::move(name));
    meet.metDuration = duration;
    try {
        MeetDomain::validate(meet);
    } catch (MeetValidationError const& error) {
        return error.code();
    }
    return std::nullopt;
}

TEST(MeetDomainTests, aTitledMeetWithALengthIsValid) {
    EXPECT_EQ(refusalOf("A", 1800), std::nullopt);
}

TEST(MeetDomainTests, halfASecondIsLengthEnough) {
    EXPECT_EQ(refusalOf("A", 0.5), std::nullopt);
}

TEST(MeetDomainTests, aBlankTitleIsRefused) {
    EXPECT_EQ(refusalOf("", 1800), Case::invalidTitle);
    EXPECT_EQ(refusalOf("  \n", 1800), Case::invalidTitle);
    EXPECT_EQ(refusalOf("\t\r\u00A0\u2028", 1800), Case::invalidTitle);
}

TEST(MeetDomainTests, aTitleOfOnlyAZeroWidthSpaceIsBlank) {
    EXPECT_EQ(refusalOf("\u200B", 1800), Case::invalidTitle);
}

TEST(MeetDomainTests, aByteOrderMarkIsNoBlank) {
    EXPECT_EQ(refusalOf("\uFEFF", 1800), std::nullopt);
}

TEST(MeetDomainTests, aDurationThatIsNotAboveZeroIsRefused) {
    EXPECT_EQ(refusalOf("A", 0), Case::invalidTimeRange);
    EXPECT_EQ(refusalOf("A", -0.0), Case::invalidTimeRange);
    EXPECT_EQ(refusalOf("A", -1), Case::invalidTimeRange);
    EXPECT_EQ(refusalOf("A", std::numeric_limits<double>::quiet_NaN()), Case::invalidTimeRange);
}

TEST(MeetDomainTests, blankTitleIsReportedBeforeZeroDuration) {
    EXPECT_EQ(refusalOf("  \n", 0), Case::invalidTitle);
}

TEST(MeetDomainTests, noOtherFieldIsChecked) {
    auto meet = someMeet();
    meet.metColor = {.hexValue = "?"};
    meet.metCalendarIdentifier = "";
    meet.metRecurringWeekdays = {99};
    meet.metDate = {.secondsSince1970 = std::numeric_limits<double>::infinity()};
    EXPECT_NO_THROW(MeetDomain::validate(meet));
}

TEST(MeetValidationErrorTests, errorsAreEqualByTheirCase) {
    MeetValidationError const title(Case::invalidTitle);
    MeetValidationError const range(Case::invalidTimeRange);
    EXPECT_EQ(title, MeetValidationError(Case::invalidTitle));
    EXPECT_FALSE(title == range);
    std::hash<MeetValidationError> const hash;
    EXPECT_EQ(hash(title), hash(MeetValidationError(Case::invalidTitle)));
}

TEST(MeetValidationErrorTests, eachCaseSaysWhatToDo) {
    EXPECT_STREQ(MeetValidationError(Case::invalidTitle).what(),
                 "The meet has no title. Nothing was stored; give it a title.");
    EXPECT_STREQ(MeetValidationError(Case::invalidTimeRange).what(),
                 "The meet does not end after it starts. Nothing was stored; give it a later end.");
}

} // namespace
} // namespace Meetings
