#include "Meetings/EventKit/EventKitMeetMapper.h"

#include "Meetings/EventKit/LiveEventKitStore.h"
#include "Platform/Appearance/FixedAppearance.h"
#include "Platform/EventStore/InMemoryEventStore.h"
#include "Platform/Resources/TableTextProvider.h"
#include "Tests/Meetings/EventKit/EventFixtures.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <vector>

namespace Meetings {
namespace {

using EventKitMeetMapper::RecurrenceInfo;
using Platform::EKEvent;
using Platform::EKRecurrenceFrequency;
using Platform::EKRecurrenceRule;
using Weekdays = std::set<std::int64_t>;

constexpr double friday = 1700215200; // 2023-11-17T10:00:00Z

MeetEntity meetOf(EKEvent const& event, Platform::FixedAppearance const& desktop = {}) {
    Platform::TableTextProvider const texts({{"eventkit-meet-untitled", "Sin título"}});
    return EventKitMeetMapper::toMeetEntity(event, MeetRecurrenceFrequency::none, {}, texts, desktop);
}

RecurrenceInfo infoOf(std::vector<EKRecurrenceRule> rules) {
    auto event = eventAt(friday);
    event.recurrenceRules = std::move(rules);
    return EventKitMeetMapper::recurrenceInfo(event);
}

std::vector<EKRecurrenceRule> rulesAfter(MeetRecurrenceFrequency frequency, Weekdays const& weekdays,
                                         EKEvent event = eventAt(friday),
                                         Foundation::Calendar const& calendar = utcCalendar()) {
    EventKitMeetMapper::applyRecurrence(frequency, weekdays, event, calendar);
    return event.recurrenceRules;
}

TEST(EventKitMeetMapperTests, theStableIdIsMadeOfIdentifierAndStart) {
    auto event = eventAt(1700000000);
    event.eventIdentifier = "ABC123:XYZ";
    EXPECT_EQ(EventKitMeetMapper::stableId(event).uuidString(), "85583367-F295-B450-C81A-265B6269B44F");
}

TEST(EventKitMeetMapperTests, twoFetchesOfOneOccurrenceAreTheSameMeet) {
    EXPECT_EQ(meetOf(eventAt(friday)).metId, meetOf(eventAt(friday)).metId);
}

TEST(EventKitMeetMapperTests, twoOccurrencesOfASeriesAreTwoMeetsOfOneEvent) {
    auto const first = meetOf(eventAt(friday));
    auto const second = meetOf(eventAt(friday + 86400));
    EXPECT_NE(first.metId, second.metId);
    EXPECT_EQ(first.metOriginalIdentifier, "a1/work:u1");
    EXPECT_EQ(second.metOriginalIdentifier, "a1/work:u1");
}

TEST(EventKitMeetMapperTests, halfASecondMakesAnotherMeet) {
    EXPECT_NE(meetOf(eventAt(friday)).metId, meetOf(eventAt(friday + 0.5)).metId);
}

TEST(EventKitMeetMapperTests, onlyAnAbsentEventIdentifierGivesWayToTheItemIdentifier) {
    auto event = eventAt(friday);
    event.eventIdentifier = std::nullopt;
    EXPECT_EQ(meetOf(event).metOriginalIdentifier, "u1");
    event.eventIdentifier = "";
    EXPECT_EQ(meetOf(event).metOriginalIdentifier, "");
}

TEST(EventKitMeetMapperTests, everyFieldOfTheMeetComesFromTheEvent) {
    auto event = eventAt(friday);
    event.notes = "<b>Agenda</b>";
    event.location = "Room 1";
    event.url = Foundation::URL{.absoluteString = "https://example.com/1"};
    event.isAllDay = true;
    Platform::TableTextProvider const texts;
    Platform::FixedAppearance const desktop;
    auto const meet =
        EventKitMeetMapper::toMeetEntity(event, MeetRecurrenceFrequency::weekly, {6}, texts, desktop);
    MeetEntity const expected = {
        .metId = EventKitMeetMapper::stableId(event),
        .metName = "Planning",
        .metDate = {.secondsSince1970 = friday},
        .metDescription = "<b>Agenda</b>",
        .metDuration = 5400,
        .metColor = {.hexValue = "#336699"},
        .metIsAllDay = true,
        .metLocation = "Room 1",
        .metUrl = Foundation::URL{.absoluteString = "https://example.com/1"},
        .metCalendarName = "Work",
        .metCalendarIdentifier = "a1/work",
        .metRecurrenceFrequency = MeetRecurrenceFrequency::weekly,
        .metRecurringWeekdays = {6},
        .metOriginalIdentifier = "a1/work:u1",
        .metSource = MeetSource::eventKit,
    };
    EXPECT_EQ(meet, expected);
}

TEST(EventKitMeetMapperTests, whatAnEventLacksStaysAbsentAndMissingNotesAreEmpty) {
    auto const meet = meetOf(eventAt(friday));
    EXPECT_EQ(meet.metDescription, "");
    EXPECT_EQ(meet.metLocation, std::nullopt);
    EXPECT_EQ(meet.metUrl, std::nullopt);
}

TEST(EventKitMeetMapperTests, onlyAnEventWithoutATitleGetsTheUntitledText) {
    auto event = eventAt(friday);
    event.title = std::nullopt;
    EXPECT_EQ(meetOf(event).metName, "Sin título");
    event.title = "";
    EXPECT_EQ(meetOf(event).metName, "");
}

TEST(EventKitMeetMapperTests, theDurationIsNotRounded) {
    auto event = eventAt(0);
    event.endDate = Foundation::Date{.secondsSince1970 = 59.25};
    EXPECT_EQ(meetOf(event).metDuration, 59.25);
}

TEST(EventKitMeetMapperTests, aCalendarWithoutColourTakesTheDesktopsDefault) {
    auto calendar = someCalendar();
    calendar.cgColor = {.components = std::nullopt};
    auto event = eventAt(friday);
    event.calendar = std::make_shared<Platform::EKCalendar const>(calendar);
    EXPECT_EQ(meetOf(event, Platform::FixedAppearance(Platform::ColorScheme::dark)).metColor.hexValue,
              "#4FA8AC");
}

TEST(EventKitMeetMapperDeathTest, anEventThatIsNotWholeEndsTheProcess) {
    auto event = eventAt(friday);
    event.startDate = std::nullopt;
    EXPECT_DEATH(meetOf(event), "the calendar store gave an event without a start");
    event = eventAt(friday);
    event.endDate = std::nullopt;
    EXPECT_DEATH(meetOf(event), "the calendar store gave an event without an end");
    event = eventAt(friday);
    event.calendar = nullptr;
    EXPECT_DEATH(meetOf(event), "the calendar store gave an event without a calendar");
}

TEST(EventKitMeetMapperTests, anEventWithoutRulesDoesNotRepeat) {
    EXPECT_EQ(infoOf({}), (RecurrenceInfo{.frequency = MeetRecurrenceFrequency::none, .weekdays = {}}));
}

TEST(EventKitMeetMapperTests, everyRhythmIsReadAsAMeetKnowsIt) {
    EXPECT_EQ(infoOf({{.frequency = EKRecurrenceFrequency::daily, .interval = 3}}),
              (RecurrenceInfo{.frequency = MeetRecurrenceFrequency::daily, .weekdays = {}}));
    EXPECT_EQ(infoOf({{.frequency = EKRecurrenceFrequency::weekly,
                       .daysOfTheWeek = {{.dayOfTheWeek = 4}, {.dayOfTheWeek = 2}}}}),
              (RecurrenceInfo{.frequency = MeetRecurrenceFrequency::weekly, .weekdays = {2, 4}}));
    EXPECT_EQ(infoOf({{.frequency = EKRecurrenceFrequency::weekly}}),
              (RecurrenceInfo{.frequency = MeetRecurrenceFrequency::weekly, .weekdays = {}}));
    EXPECT_EQ(infoOf({{.frequency = EKRecurrenceFrequency::monthly,
                       .daysOfTheWeek = {{.dayOfTheWeek = 2, .weekNumber = 1}}}}),
              (RecurrenceInfo{.frequency = MeetRecurrenceFrequency::monthly, .weekdays = {}}));
}

TEST(EventKitMeetMapperTests, aYearlyOrUnknownRhythmCountsAsNone) {
    RecurrenceInfo const none = {.frequency = MeetRecurrenceFrequency::none, .weekdays = {}};
    EXPECT_EQ(infoOf({{.frequency = EKRecurrenceFrequency::yearly}}), none);
    EXPECT_EQ(infoOf({{.frequency = EKRecurrenceFrequency::other}}), none);
}

TEST(EventKitMeetMapperTests, onlyTheFirstRuleCounts) {
    EXPECT_EQ(
        infoOf({{.frequency = EKRecurrenceFrequency::daily}, {.frequency = EKRecurrenceFrequency::weekly}}),
        (RecurrenceInfo{.frequency = MeetRecurrenceFrequency::daily, .weekdays = {}}));
}

TEST(EventKitMeetMapperTests, noneAddsNoRule) {
    EXPECT_TRUE(rulesAfter(MeetRecurrenceFrequency::none, {2}).empty());
}

TEST(EventKitMeetMapperTests, aWrittenRuleHasIntervalOneAndNoEnd) {
    EKRecurrenceRule const daily = {
        .frequency = EKRecurrenceFrequency::daily,
        .interval = 1,
        .daysOfTheWeek = {},
        .daysOfTheMonth = {},
        .occurrenceCount = std::nullopt,
        .endDate = std::nullopt,
    };
    EXPECT_EQ(rulesAfter(MeetRecurrenceFrequency::daily, {2}), std::vector{daily});
}

TEST(EventKitMeetMapperTests, weekdaysAreWrittenInAscendingOrderForEveryWeek) {
    EKRecurrenceRule const mondayAndWednesday = {
        .frequency = EKRecurrenceFrequency::weekly,
        .daysOfTheWeek = {{.dayOfTheWeek = 2, .weekNumber = 0}, {.dayOfTheWeek = 4, .weekNumber = 0}},
    };
    EXPECT_EQ(rulesAfter(MeetRecurrenceFrequency::weekly, {4, 2}), std::vector{mondayAndWednesday});
}

TEST(EventKitMeetMapperTests, weekdaysArePassedOnUnchecked) {
    auto const rules = rulesAfter(MeetRecurrenceFrequency::weekly, {-1, 9});
    ASSERT_EQ(rules.size(), 1U);
    EXPECT_EQ(rules.front().daysOfTheWeek,
              (std::vector<Platform::EKRecurrenceDayOfWeek>{{.dayOfTheWeek = -1}, {.dayOfTheWeek = 9}}));
}

TEST(EventKitMeetMapperTests, weeklyWithoutWeekdaysTakesTheDayOfTheStart) {
    auto const rules = rulesAfter(MeetRecurrenceFrequency::weekly, {});
    ASSERT_EQ(rules.size(), 1U);
    EXPECT_EQ(rules.front().daysOfTheWeek, std::vector<Platform::EKRecurrenceDayOfWeek>{{.dayOfTheWeek = 6}});
}

TEST(EventKitMeetMapperTests, monthlyTakesTheDayOfTheMonthOfTheStart) {
    EKRecurrenceRule const expected = {.frequency = EKRecurrenceFrequency::monthly, .daysOfTheMonth = {17}};
    EXPECT_EQ(rulesAfter(MeetRecurrenceFrequency::monthly, {2}), std::vector{expected});
}

TEST(EventKitMeetMapperTests, theDayOfTheStartIsThatOfTheGivenCalendar) {
    // 2023-11-17T20:00Z is Saturday the 18th in Tokyo.
    auto const event = eventAt(friday + 36000);
    auto const tokyo = calendarIn("Asia/Tokyo");
    EXPECT_EQ(rulesAfter(MeetRecurrenceFrequency::weekly, {}, event, tokyo).front().daysOfTheWeek,
              std::vector<Platform::EKRecurrenceDayOfWeek>{{.dayOfTheWeek = 7}});
    EXPECT_EQ(rulesAfter(MeetRecurrenceFrequency::monthly, {}, event, tokyo).front().daysOfTheMonth,
              std::vector<std::int64_t>{18});
}

TEST(EventKitMeetMapperTests, rulesThatTheEventHasStay) {
    auto event = eventAt(friday);
    event.recurrenceRules = {{.frequency = EKRecurrenceFrequency::yearly}};
    auto const rules = rulesAfter(MeetRecurrenceFrequency::daily, {}, event);
    ASSERT_EQ(rules.size(), 2U);
    EXPECT_EQ(rules[0].frequency, EKRecurrenceFrequency::yearly);
    EXPECT_EQ(rules[1].frequency, EKRecurrenceFrequency::daily);
}

TEST(EventKitMeetMapperTests, accountsAndCalendarsKeepTheStoresOrder) {
    auto grey = someCalendar("a2/z", "Z");
    grey.cgColor = {.components = std::vector{0.5, 1.0}};
    auto const store = std::make_shared<Platform::InMemoryEventStore>(std::vector<Platform::EKSource>{
        {.sourceIdentifier = "a2",
         .title = "Mail",
         .sourceType = Platform::EKSourceType::calDAV,
         .calendars = {grey, someCalendar("a2/a", "A")}},
        {.sourceIdentifier = "a1",
         .title = "Empty",
         .sourceType = Platform::EKSourceType{6},
         .calendars = {}},
    });
    auto const accounts = EventKitMeetMapper::buildAccountCalendars(LiveEventKitStore(store).sources(),
                                                                    Platform::FixedAppearance());
    EXPECT_EQ(
        accounts,
        (std::vector<EventKitAccountCalendarsEntity>{
            {.eacId = "a2",
             .eacAccountTitle = "Mail",
             .eacAccountType = "CalDAV",
             .eacCalendars = {{.eciId = "a2/z", .eciTitle = "Z", .eciColorHex = "#5CC2C6"},
                              {.eciId = "a2/a", .eciTitle = "A", .eciColorHex = "#336699"}}},
            {.eacId = "a1", .eacAccountTitle = "Empty", .eacAccountType = "Desconocido", .eacCalendars = {}},
        }));
}

} // namespace
} // namespace Meetings
