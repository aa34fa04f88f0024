#include "WidgetExtension/ScheduleWidgetView.h"

#include "Tests/WidgetExtension/FaceFixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <variant>
#include <vector>

namespace WidgetExtension {
namespace {

using Platform::ColorScheme;
using Platform::SRGBColor;
using Platform::WidgetFamily;
using Names = std::vector<std::string>;

template <typename Row>
std::vector<Row> rowsOf(ScheduleWidgetView const& view) {
    std::vector<Row> found;
    for (auto const& row : view.layout().rows) {
        if (auto const* wanted = std::get_if<Row>(&row)) found.push_back(*wanted);
    }
    return found;
}

Names lineTextsOf(ScheduleWidgetView const& view) {
    Names texts;
    for (auto const& line : rowsOf<Platform::LineRow>(view))
        texts.push_back(line.text);
    return texts;
}

std::vector<Meetings::MeetEntity> morningAndMidday() {
    auto ended = Meetings::meetAt(wednesday + 9 * hour, "09:00 to 10:00");
    ended.metDuration = hour;
    auto running = Meetings::meetAt(wednesday + 10.5 * hour, "10:30 to 11:30");
    running.metDuration = hour;
    return {ended, running};
}

TEST(ScheduleWidgetViewTests, brandAndBackgroundFollowTheScheme) {
    auto view = viewOf({});
    EXPECT_EQ(view.brandColor(), (SRGBColor{.red = 92 / 255.0, .green = 194 / 255.0, .blue = 198 / 255.0}));
    EXPECT_EQ(view.backgroundColor(), (SRGBColor{.red = 1, .green = 1, .blue = 1}));
    view.colorScheme = ColorScheme::dark;
    EXPECT_EQ(view.brandColor(), (SRGBColor{.red = 105 / 255.0, .green = 111 / 255.0, .blue = 155 / 255.0}));
    EXPECT_EQ(view.backgroundColor(), (SRGBColor{.red = 0, .green = 0, .blue = 0}));
}

TEST(ScheduleWidgetViewTests, theAccentIsTheNamedColourOfTheSchemeElseTheBrand) {
    auto view = viewOf({});
    EXPECT_EQ(view.layout().accent, view.brandColor());
    view.colors = std::make_shared<Platform::TableColorProvider>(
        Platform::TableColorProvider::Table{{{"AccentColor", ColorScheme::dark}, {0.25, 0.5, 1}}});
    EXPECT_EQ(view.layout().accent, view.brandColor());
    view.colorScheme = ColorScheme::dark;
    EXPECT_EQ(view.layout().accent, (SRGBColor{.red = 0.25, .green = 0.5, .blue = 1}));
    EXPECT_EQ(view.layout().brand, view.brandColor());
}

TEST(ScheduleWidgetViewTests, theBadgeIsTheEntrysDayInTheUsersCalendarAndLanguage) {
    auto view = viewOf({}, WidgetFamily::systemLarge, "es");
    EXPECT_EQ(view.weekdayName(), "Miércoles");
    EXPECT_EQ(view.dayNumber(), 6);
    view.entry.date = {.secondsSince1970 = wednesday + 20 * hour};
    view.calendar = Meetings::calendarIn("Asia/Tokyo");
    EXPECT_EQ(view.weekdayName(), "Jueves");
    EXPECT_EQ(view.dayNumber(), 7);
    view.locale = {.identifier = "en"};
    EXPECT_EQ(view.weekdayName(), "Thursday");
}

TEST(ScheduleWidgetViewTests, theHeaderHasTheTwoButtonsAroundTheBadge) {
    auto const header = std::get<Platform::HeaderRow>(viewOf({}).layout().rows.front());
    EXPECT_EQ(header.previous, (Platform::FaceButton{.action = Platform::FaceButton::Action::previousDay,
                                                     .systemImage = "chevron.left",
                                                     .title = "Previous day"}));
    EXPECT_EQ(header.next, (Platform::FaceButton{.action = Platform::FaceButton::Action::nextDay,
                                                 .systemImage = "chevron.right",
                                                 .title = "Next day"}));
    EXPECT_EQ(header.weekday, "Wednesday");
    EXPECT_EQ(header.day, 6);
}

TEST(ScheduleWidgetViewTests, onTodaysPageAMeetThatHasEndedIsGone) {
    auto view = viewOf(morningAndMidday());
    view.now = {.secondsSince1970 = wednesday + 11 * hour};
    view.entry.date = view.now;
    EXPECT_EQ(namesOf(view.timedMeetings()), Names{"10:30 to 11:30"});
}

TEST(ScheduleWidgetViewTests, onAnyOtherPageEveryMeetStays) {
    auto view = viewOf(morningAndMidday());
    view.now = {.secondsSince1970 = wednesday + day + 11 * hour};
    EXPECT_EQ(namesOf(view.timedMeetings()), (Names{"09:00 to 10:00", "10:30 to 11:30"}));
}

TEST(ScheduleWidgetViewTests, aMeetThatEndsAtThisMomentIsGone) {
    auto view = viewOf(morningAndMidday());
    view.now = {.secondsSince1970 = wednesday + 10 * hour};
    EXPECT_EQ(namesOf(view.timedMeetings()), Names{"10:30 to 11:30"});
    view.now = {.secondsSince1970 = wednesday + 10 * hour - 0.5};
    EXPECT_EQ(namesOf(view.timedMeetings()), (Names{"09:00 to 10:00", "10:30 to 11:30"}));
}

TEST(ScheduleWidgetViewTests, allDayMeetsStayOnTodaysPageInEntryOrder) {
    auto view = viewOf({allDayMeet("b"), timedMeet(0), allDayMeet("a")});
    view.now = {.secondsSince1970 = wednesday + 23 * hour};
    EXPECT_EQ(namesOf(view.allDayMeetings()), (Names{"b", "a"}));
    EXPECT_EQ(namesOf(view.timedMeetings()), Names{});
}

TEST(ScheduleWidgetViewTests, eachFamilyHasItsNumberOfCardsAndItsHeight) {
    auto const limitOf = [](WidgetFamily family) { return viewOf({}, family).maxVisibleEvents(); };
    EXPECT_EQ(limitOf(WidgetFamily::systemSmall), 3U);
    EXPECT_EQ(limitOf(WidgetFamily::systemMedium), 3U);
    EXPECT_EQ(limitOf(WidgetFamily::systemLarge), 8U);
    EXPECT_EQ(limitOf(WidgetFamily::systemExtraLarge), 7U);
    EXPECT_EQ(viewOf({}, WidgetFamily::systemSmall).cardHeight(), 18);
    EXPECT_EQ(viewOf({}, WidgetFamily::systemMedium).cardHeight(), 24);
    EXPECT_EQ(viewOf({}, WidgetFamily::systemExtraLarge).cardHeight(), 24);
}

TEST(ScheduleWidgetViewTests, aSmallFaceOfFiveMeetsShowsThreeCardsAndCountsTwo) {
    auto const view = viewOf(timedMeets(5), WidgetFamily::systemSmall);
    auto const cards = rowsOf<Platform::CardRow>(view);
    ASSERT_EQ(cards.size(), 3U);
    EXPECT_EQ(cards[2].name, "Meet 3");
    EXPECT_TRUE(std::ranges::all_of(cards, [](auto const& card) { return card.height == 18; }));
    EXPECT_TRUE(std::ranges::none_of(cards, [](auto const& card) { return card.duration.has_value(); }));
    EXPECT_EQ(rowsOf<Platform::MoreRow>(view),
              (std::vector<Platform::MoreRow>{{.text = "+2 more", .count = 2, .padding = 5}}));
}

TEST(ScheduleWidgetViewTests, aLargeFaceListsAllDayMeetsAboveEightCards) {
    auto meetings = timedMeets(10);
    meetings.push_back(allDayMeet("Holiday"));
    meetings.push_back(allDayMeet("Trip"));
    auto const rows = viewOf(meetings).layout().rows;
    ASSERT_EQ(rows.size(), 14U);
    EXPECT_TRUE(std::holds_alternative<Platform::HeaderRow>(rows[0]));
    EXPECT_EQ(std::get<Platform::LabelRow>(rows[1]).text, "All day");
    EXPECT_EQ(std::get<Platform::BarRow>(rows[2]).name, "Holiday");
    EXPECT_EQ(std::get<Platform::BarRow>(rows[3]).name, "Trip");
    EXPECT_EQ(std::get<Platform::SpaceRow>(rows[4]).height, 15);
    EXPECT_EQ(std::get<Platform::CardRow>(rows[5]).name, "Meet 1");
    EXPECT_EQ(std::get<Platform::CardRow>(rows[12]).name, "Meet 8");
    EXPECT_EQ(std::get<Platform::MoreRow>(rows[13]).text, "+2 more");
}

TEST(ScheduleWidgetViewTests, asManyMeetsAsCardsAreNotCounted) {
    EXPECT_TRUE(rowsOf<Platform::MoreRow>(viewOf(timedMeets(8))).empty());
    EXPECT_EQ(viewOf(timedMeets(8)).overflowCount(), 0);
    EXPECT_EQ(viewOf(timedMeets(9)).overflowCount(), 1);
    EXPECT_EQ(viewOf(timedMeets(9), WidgetFamily::systemExtraLarge).overflowCount(), 2);
}

TEST(ScheduleWidgetViewTests, allDayMeetsNeverCountTowardsTheOverflow) {
    auto meetings = timedMeets(3);
    for (int number = 0; number < 9; ++number)
        meetings.push_back(allDayMeet("Holiday"));
    EXPECT_EQ(viewOf(meetings, WidgetFamily::systemMedium).overflowCount(), 0);
}

TEST(ScheduleWidgetViewTests, aSmallOrMediumFaceOfOnlyAllDayMeetsIsAnEmptyOne) {
    for (auto const family : {WidgetFamily::systemSmall, WidgetFamily::systemMedium}) {
        auto const view = viewOf({allDayMeet("Holiday")}, family);
        EXPECT_FALSE(view.showsAllDaySection());
        EXPECT_EQ(view.layout().rows.size(), 2U);
        EXPECT_EQ(lineTextsOf(view), Names{"No events"});
    }
}

TEST(ScheduleWidgetViewTests, onALargeFaceTheEmptyMessageStandsUnderTheAllDayMeets) {
    auto const rows = viewOf({allDayMeet("Holiday")}).layout().rows;
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(std::get<Platform::BarRow>(rows[2]).name, "Holiday");
    EXPECT_EQ(std::get<Platform::LineRow>(rows[4]),
              (Platform::LineRow{.kind = Platform::LineRow::Kind::emptyState, .text = "No events"}));
}

TEST(ScheduleWidgetViewTests, deniedAccessReplacesTheEmptyMessage) {
    auto view = viewOf({});
    view.entry.hasAccessError = true;
    EXPECT_EQ(rowsOf<Platform::LineRow>(view),
              (std::vector<Platform::LineRow>{
                  {.kind = Platform::LineRow::Kind::noPermission, .text = "No access to your calendars"}}));
}

TEST(ScheduleWidgetViewTests, theSpanishFaceSpeaksSpanish) {
    EXPECT_EQ(lineTextsOf(viewOf({}, WidgetFamily::systemLarge, "es")), Names{"Sin eventos"});
    auto const full = viewOf(timedMeets(10), WidgetFamily::systemLarge, "es");
    EXPECT_EQ(rowsOf<Platform::MoreRow>(full).front().text, "+2 más");
    auto const allDay = viewOf({allDayMeet("Fiesta")}, WidgetFamily::systemLarge, "es");
    EXPECT_EQ(rowsOf<Platform::LabelRow>(allDay).front().text, "Todo el día");
}

TEST(ScheduleWidgetViewTests, meetsWithTheSameIdentityAreSeparateRows) {
    auto const same = timedMeet(0);
    auto const cards = rowsOf<Platform::CardRow>(viewOf({same, same, allDayMeet("a"), allDayMeet("a")}));
    ASSERT_EQ(cards.size(), 2U);
    EXPECT_EQ(cards[0].identifier, cards[1].identifier);
    EXPECT_EQ(rowsOf<Platform::BarRow>(viewOf({allDayMeet("a"), allDayMeet("a")})).size(), 2U);
}

TEST(ScheduleWidgetViewTests, aLanguageFromRightToLeftMirrorsTheFace) {
    auto view = viewOf({});
    EXPECT_FALSE(view.layout().isRightToLeft);
    view.locale = {.identifier = "ar_EG"};
    EXPECT_TRUE(view.layout().isRightToLeft);
}

} // namespace
} // namespace WidgetExtension
