#include "WidgetExtension/MeetSummary.h"

#include "Platform/HTMLReader/LibXMLHTMLReader.h"
#include "Platform/WidgetHost/CallingThreadMainExecutor.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace WidgetExtension;
using testing::ElementsAre;

namespace {

// 2024-03-06, from 13:30 for an hour.
Meetings::MeetEntity review() {
    auto meeting = Meetings::someMeet("Design review");
    meeting.metDate = {1709731800};
    meeting.metDuration = 3600;
    meeting.metIsAllDay = false;
    meeting.metLocation = "Room 4";
    meeting.metDescription = "";
    return meeting;
}

std::vector<std::string> linesOf(Meetings::MeetEntity const& meeting) {
    Platform::CallingThreadMainExecutor main;
    return meetSummaryLines(meeting, Meetings::utcCalendar(), Platform::LibXMLHTMLReader(), main);
}

TEST(MeetSummaryTests, tellsTitleTimesPlaceAndWhatItIsAbout) {
    auto meeting = review();
    meeting.metDescription = "<p>---</p><ul><li>Agenda &amp; minutes</li><li>Budget</li></ul>";
    EXPECT_THAT(linesOf(meeting),
                ElementsAre("Design review", "01:30 p.m. – 02:30 p.m.", "Room 4", "Agenda & minutes"));
}

TEST(MeetSummaryTests, wholeDaysHaveNoTimes) {
    auto meeting = review();
    meeting.metIsAllDay = true;
    EXPECT_THAT(linesOf(meeting), ElementsAre("Design review", "Room 4"));
}

TEST(MeetSummaryTests, aMeetWithoutLengthHasOneTime) {
    auto meeting = review();
    meeting.metDuration = 0;
    meeting.metLocation = std::nullopt;
    EXPECT_THAT(linesOf(meeting), ElementsAre("Design review", "01:30 p.m."));
}

TEST(MeetSummaryTests, blankLinesAreLeftOut) {
    auto meeting = review();
    meeting.metLocation = " \n";
    meeting.metDescription = "<p>&nbsp;</p>";
    EXPECT_THAT(linesOf(meeting), ElementsAre("Design review", "01:30 p.m. – 02:30 p.m."));
}

TEST(MeetSummaryTests, ofAPlainDescriptionTheFirstLineThatIsNotBlankIsShown) {
    auto meeting = review();
    meeting.metDescription = "\r\n \n  - Agenda\nBudget";
    EXPECT_EQ(linesOf(meeting).back(), "- Agenda");
}

TEST(MeetSummaryTests, anOverlongLineIsCut) {
    auto meeting = review();
    meeting.metDescription = std::string(500, 'x');
    EXPECT_EQ(linesOf(meeting).back(), std::string(200, 'x') + "…");
}

} // namespace
