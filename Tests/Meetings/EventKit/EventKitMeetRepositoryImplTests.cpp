#include "Meetings/EventKit/EventKitMeetRepositoryImpl.h"

#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/EventKit/LiveEventKitStore.h"
#include "Platform/Appearance/FixedAppearance.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/EventStore/FailingEventStore.h"
#include "Platform/EventStore/InMemoryEventStore.h"
#include "Platform/Logging/RecordingLogSink.h"
#include "Platform/Resources/TableTextProvider.h"
#include "Tests/Meetings/EventKit/EventFixtures.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace Meetings {
namespace {

using Foundation::Date;
using Foundation::runTask;
using Platform::EKAuthorizationStatus;
using Platform::EKEvent;
using Platform::EKRecurrenceFrequency;
using Platform::EKSpan;
using Case = EventKitMeetRepositoryError::Case;

constexpr double friday = 1700215200; // 2023-11-17T10:00:00Z
constexpr double hour = 3600;
constexpr double day = 24 * hour;

template <typename Work>
std::optional<EventKitMeetRepositoryError> errorOf(Work work) {
    try {
        work();
    } catch (EventKitMeetRepositoryError const& error) {
        return error;
    }
    return std::nullopt;
}

class EventKitMeetRepositoryImplTests : public testing::Test {
protected:
    EventKitMeetRepositoryImplTests() { store->setDefaultCalendar("a1/work"); }

    EventKitMeetRepositorySettings settings() const {
        return {.calendar = utcCalendar(), .defaultCalendarIdentifier = std::nullopt};
    }

    EventKitMeetRepositoryImpl repository(EventKitMeetRepositorySettings with) const {
        return repositoryOver(store, std::move(with));
    }
    EventKitMeetRepositoryImpl repository() const { return repository(settings()); }

    EventKitMeetRepositoryImpl repositoryOver(std::shared_ptr<Platform::EKEventStore> platformStore,
                                              EventKitMeetRepositorySettings with) const {
        return {std::make_shared<LiveEventKitStore>(std::move(platformStore)),
                std::move(with),
                {.clock = clock, .texts = texts, .appearance = appearance, .logSink = log}};
    }

    std::optional<EventKitMeetRepositoryError> fetchError() const {
        return errorOf([&] { runTask(repository().fetchAllMeets()); });
    }

    // The meet as a fetch gives it back.
    MeetEntity fetched(EKEvent const& event) {
        store->addEvent(event);
        clock->set(*event.startDate);
        return runTask(repository().fetchAllMeets()).back();
    }

    std::shared_ptr<Platform::InMemoryEventStore> store = std::make_shared<Platform::InMemoryEventStore>(
        std::vector{someSource({someCalendar(), someCalendar("a1/home", "Home")})});
    std::shared_ptr<Platform::FixedClock> clock =
        std::make_shared<Platform::FixedClock>(Date{.secondsSince1970 = friday});
    std::shared_ptr<Platform::TableTextProvider> texts =
        std::make_shared<Platform::TableTextProvider>(std::map<std::string, std::string, std::less<>>{
            {"eventkit-meet-no-default-calendar", "Nowhere to put it"},
            {"eventkit-meet-untitled", "Untitled"}});
    std::shared_ptr<Platform::FixedAppearance> appearance = std::make_shared<Platform::FixedAppearance>();
    std::shared_ptr<Platform::RecordingLogSink> log = std::make_shared<Platform::RecordingLogSink>();
};

EKEvent occurrence(double start, std::string key) {
    auto event = eventAt(start);
    event.occurrenceKey = std::move(key);
    event.recurrenceRules = {{.frequency = EKRecurrenceFrequency::daily}};
    return event;
}

// Access

TEST_F(EventKitMeetRepositoryImplTests, fullAccessIsNotAskedForAgain) {
    EXPECT_EQ(fetchError(), std::nullopt);
    EXPECT_EQ(store->accessRequests(), 0);
    EXPECT_EQ(log->records(),
              (std::vector<Platform::LogRecord>{{.level = Platform::LogLevel::info,
                                                 .subsystem = "com.zentorik.quillora",
                                                 .category = "EventKitMeetRepositoryImpl",
                                                 .message = "Authorization status: fullAccess"}}));
}

TEST_F(EventKitMeetRepositoryImplTests, undeterminedAccessIsAskedForAndGranted) {
    store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
    EXPECT_EQ(fetchError(), std::nullopt);
    EXPECT_EQ(store->accessRequests(), 1);
    EXPECT_EQ(log->messages(), (std::vector<std::string>{"Authorization status: notDetermined",
                                                         "Access request result: true"}));
}

TEST_F(EventKitMeetRepositoryImplTests, accessThatIsNotGrantedIsDenied) {
    store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
    store->setAccessAnswer(Platform::AccessAnswer::notGranted);
    EXPECT_EQ(fetchError(), EventKitMeetRepositoryError::accessDenied());
    EXPECT_EQ(log->messages(), (std::vector<std::string>{"Authorization status: notDetermined",
                                                         "Access request result: false"}));
}

TEST_F(EventKitMeetRepositoryImplTests, anAccessRequestThatFailsIsDenied) {
    store->setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
    store->setAccessAnswer(Platform::AccessAnswer::failing);
    EXPECT_EQ(fetchError(), EventKitMeetRepositoryError::accessDenied());
    EXPECT_EQ(log->messages(), (std::vector<std::string>{"Authorization status: notDetermined",
                                                         "Access request result: false"}));
}

struct RefusedStatus {
    EKAuthorizationStatus status;
    char const* text;
};

class EventKitRefusedStatusTests : public EventKitMeetRepositoryImplTests,
                                   public testing::WithParamInterface<RefusedStatus> {};

TEST_P(EventKitRefusedStatusTests, anyOtherStatusIsDeniedWithoutAsking) {
    store->setAuthorizationStatus(GetParam().status);
    EXPECT_EQ(fetchError(), EventKitMeetRepositoryError::accessDenied());
    EXPECT_EQ(store->accessRequests(), 0);
    auto const records = log->records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].message, std::string("Authorization status: ") + GetParam().text);
    EXPECT_EQ(records[1].level, Platform::LogLevel::error);
    EXPECT_EQ(records[1].message, std::string("Access denied, status: ") + GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(statuses, EventKitRefusedStatusTests,
                         testing::Values(RefusedStatus{EKAuthorizationStatus::restricted, "restricted"},
                                         RefusedStatus{EKAuthorizationStatus::denied, "denied"},
                                         RefusedStatus{EKAuthorizationStatus::writeOnly, "writeOnly"},
                                         RefusedStatus{EKAuthorizationStatus{7}, "unknown(7)"}),
                         [](auto const& test) {
                             return "status" + std::to_string(static_cast<int>(test.param.status));
                         });

TEST_F(EventKitMeetRepositoryImplTests, everyOperationNeedsAccessBeforeItTouchesTheStore) {
    store->setAuthorizationStatus(EKAuthorizationStatus::denied);
    auto repo = repository();
    auto const denied = EventKitMeetRepositoryError::accessDenied();
    EXPECT_EQ(errorOf([&] { runTask(repo.create(someMeet())); }), denied);
    EXPECT_EQ(errorOf([&] { runTask(repo.update(someMeet())); }), denied);
    EXPECT_EQ(errorOf([&] { runTask(repo.deleteMeet(someMeet())); }), denied);
    EXPECT_EQ(errorOf([&] { runTask(repo.listAvailableCalendars()); }), denied);
    EXPECT_TRUE(store->queries().empty());
    EXPECT_TRUE(store->saves().empty());
    EXPECT_TRUE(store->removals().empty());
}

TEST_F(EventKitMeetRepositoryImplTests, theLogCategoryIsTheGivenOne) {
    auto with = settings();
    with.loggerCategory = "Elsewhere";
    runTask(repository(std::move(with)).fetchAllMeets());
    EXPECT_EQ(log->records().front().category, "Elsewhere");
}

// Fetching

TEST_F(EventKitMeetRepositoryImplTests, theRangeIsADayBackAndFourteenAheadToTheSecond) {
    runTask(repository().fetchAllMeets());
    ASSERT_EQ(store->queries().size(), 1U);
    auto const query = store->queries().front();
    EXPECT_EQ(query.start, (Date{.secondsSince1970 = friday - day}));
    EXPECT_EQ(query.end, (Date{.secondsSince1970 = friday + 14 * day}));
    EXPECT_EQ(query.calendars, (std::vector<std::string>{"a1/work", "a1/home"}));
}

TEST_F(EventKitMeetRepositoryImplTests, theRangeKeepsTheWallClockTimeAcrossAChangeOfClocks) {
    auto with = settings();
    with.calendar = calendarIn("America/New_York");
    clock->set({.secondsSince1970 = 1730570820}); // 2024-11-02 14:07, the day before the clocks go back
    with.daysBehind = 0;
    with.daysAhead = 1;
    runTask(repository(std::move(with)).fetchAllMeets());
    EXPECT_EQ(store->queries().front().end, (Date{.secondsSince1970 = 1730660820}));
}

TEST_F(EventKitMeetRepositoryImplTests, negativeDayCountsAreTakenAsGiven) {
    auto with = settings();
    with.daysBehind = -2;
    with.daysAhead = -1;
    runTask(repository(std::move(with)).fetchAllMeets());
    EXPECT_EQ(store->queries().front().start, (Date{.secondsSince1970 = friday + 2 * day}));
    EXPECT_EQ(store->queries().front().end, (Date{.secondsSince1970 = friday - day}));
}

TEST_F(EventKitMeetRepositoryImplTests, aDateThatTheCalendarCannotFormIsNow) {
    auto with = settings();
    with.daysBehind = std::numeric_limits<std::int64_t>::max();
    with.daysAhead = std::numeric_limits<std::int64_t>::max();
    runTask(repository(std::move(with)).fetchAllMeets());
    EXPECT_EQ(store->queries().front().start, (Date{.secondsSince1970 = friday}));
    EXPECT_EQ(store->queries().front().end, (Date{.secondsSince1970 = friday}));

    with = settings();
    with.daysBehind = std::numeric_limits<std::int64_t>::min();
    with.daysAhead = std::numeric_limits<std::int64_t>::min();
    runTask(repository(std::move(with)).fetchAllMeets());
    EXPECT_EQ(store->queries().back().start, (Date{.secondsSince1970 = friday}));
    EXPECT_EQ(store->queries().back().end, (Date{.secondsSince1970 = friday}));
}

TEST_F(EventKitMeetRepositoryImplTests, meetsComeInTheStoresOrderWithTheirRecurrence) {
    auto weekly = eventAt(friday + hour, "u2");
    weekly.recurrenceRules = {
        {.frequency = EKRecurrenceFrequency::weekly, .daysOfTheWeek = {{.dayOfTheWeek = 6}}}};
    store->addEvent(weekly);
    store->addEvent(eventAt(friday, "u1"));
    auto const meets = runTask(repository().fetchAllMeets());
    ASSERT_EQ(meets.size(), 2U);
    EXPECT_EQ(meets[0].metOriginalIdentifier, "a1/work:u2");
    EXPECT_EQ(meets[0].metRecurrenceFrequency, MeetRecurrenceFrequency::weekly);
    EXPECT_EQ(meets[0].metRecurringWeekdays, std::set<std::int64_t>{6});
    EXPECT_EQ(meets[1].metOriginalIdentifier, "a1/work:u1");
    EXPECT_EQ(meets[1].metRecurrenceFrequency, MeetRecurrenceFrequency::none);
}

TEST_F(EventKitMeetRepositoryImplTests, hiddenCalendarsAreNotLookedIn) {
    store->addEvent(eventAt(friday));
    auto with = settings();
    with.hiddenCalendarIdentifiers = {"a1/work"};
    EXPECT_TRUE(runTask(repository(std::move(with)).fetchAllMeets()).empty());
    EXPECT_EQ(store->queries().front().calendars, std::vector<std::string>{"a1/home"});
}

TEST_F(EventKitMeetRepositoryImplTests, withEveryCalendarHiddenNoCalendarIsLookedInAndNotAllOfThem) {
    store->addEvent(eventAt(friday));
    auto with = settings();
    with.hiddenCalendarIdentifiers = {"a1/work", "a1/home"};
    EXPECT_TRUE(runTask(repository(std::move(with)).fetchAllMeets()).empty());
    EXPECT_EQ(store->queries().front().calendars, std::vector<std::string>{});
}

TEST_F(EventKitMeetRepositoryImplTests, aFetchAsksTheDesktopOnceAndOnlyForCalendarsWithoutColour) {
    class CountingAppearance final : public Platform::Appearance {
    public:
        [[nodiscard]] std::optional<Platform::ColorScheme> colorScheme() const override {
            ++questions;
            return std::nullopt;
        }
        [[nodiscard]] std::optional<std::array<double, 3>> accentColor() const override {
            return std::nullopt;
        }
        [[nodiscard]] std::optional<std::string> interfaceFont() const override { return std::nullopt; }
        mutable int questions = 0;
    };
    auto const desktop = std::make_shared<CountingAppearance>();
    EventKitMeetRepositoryImpl repo(std::make_shared<LiveEventKitStore>(store), settings(),
                                    {.clock = clock, .texts = texts, .appearance = desktop, .logSink = log});
    store->addEvent(eventAt(friday, "coloured"));
    runTask(repo.fetchAllMeets());
    EXPECT_EQ(desktop->questions, 0);

    auto colourless = someCalendar();
    colourless.cgColor = {.components = std::nullopt};
    for (auto const* uid : {"u1", "u2", "u3"}) {
        auto event = eventAt(friday, uid);
        event.calendar = std::make_shared<Platform::EKCalendar const>(colourless);
        store->addEvent(event);
    }
    auto const meets = runTask(repo.fetchAllMeets());
    EXPECT_EQ(desktop->questions, 1);
    EXPECT_EQ(meets.back().metColor.hexValue, "#5CC2C6");
    runTask(repo.fetchAllMeets());
    EXPECT_EQ(desktop->questions, 2);
}

TEST_F(EventKitMeetRepositoryImplTests, aReadThatFailsPassesOnAsItIs) {
    auto repo = repositoryOver(std::make_shared<Platform::FailingEventStore>(store, "disk gone"), settings());
    EXPECT_THROW(runTask(repo.fetchAllMeets()), Platform::EKError);
    EXPECT_THROW(runTask(repo.update(someMeet())), Platform::EKError);
}

// Creating

TEST_F(EventKitMeetRepositoryImplTests, aNewMeetIsStoredWithTitleTimesAndNotesAlone) {
    auto meet = meetAt(friday, "Review");
    meet.metIsAllDay = true;
    meet.metCalendarIdentifier = "a1/home";
    meet.metRecurrenceFrequency = MeetRecurrenceFrequency::none;
    auto const stored = runTask(repository().create(meet));

    ASSERT_EQ(store->saves().size(), 1U);
    auto const [event, span] = store->saves().front();
    EXPECT_EQ(span, EKSpan::thisEvent);
    EXPECT_EQ(event.title, "Review");
    EXPECT_EQ(event.startDate, (Date{.secondsSince1970 = friday}));
    EXPECT_EQ(event.endDate, (Date{.secondsSince1970 = friday + 1800}));
    EXPECT_EQ(event.notes, "Notes");
    EXPECT_FALSE(event.isAllDay);
    EXPECT_EQ(event.location, std::nullopt);
    EXPECT_EQ(event.url, std::nullopt);
    EXPECT_EQ(event.calendar->calendarIdentifier, "a1/work");
    EXPECT_TRUE(event.recurrenceRules.empty());
    EXPECT_EQ(stored.metOriginalIdentifier, "a1/work:new-1");
    EXPECT_EQ(stored.metColor.hexValue, "#336699");
    EXPECT_EQ(stored.metSource, MeetSource::eventKit);
}

TEST_F(EventKitMeetRepositoryImplTests, aMeetWithoutNotesIsStoredWithEmptyNotes) {
    auto meet = meetAt(friday);
    meet.metDescription = "";
    runTask(repository().create(meet));
    EXPECT_EQ(store->saves().front().event.notes, "");
}

TEST_F(EventKitMeetRepositoryImplTests, aNewMeetGoesIntoTheConfiguredCalendar) {
    auto with = settings();
    with.defaultCalendarIdentifier = "a1/home";
    runTask(repository(std::move(with)).create(meetAt(friday)));
    EXPECT_EQ(store->saves().front().event.calendar->calendarIdentifier, "a1/home");
}

TEST_F(EventKitMeetRepositoryImplTests, aConfiguredCalendarThatIsGoneGivesWayToTheStoresDefault) {
    auto with = settings();
    with.defaultCalendarIdentifier = "a1/gone";
    runTask(repository(std::move(with)).create(meetAt(friday)));
    EXPECT_EQ(store->saves().front().event.calendar->calendarIdentifier, "a1/work");
}

TEST_F(EventKitMeetRepositoryImplTests, withoutAnyCalendarANewMeetIsRefused) {
    store->setDefaultCalendar(std::nullopt);
    EXPECT_EQ(errorOf([&] { runTask(repository().create(meetAt(friday))); }),
              EventKitMeetRepositoryError::saveFailed("Nowhere to put it"));
    EXPECT_TRUE(store->saves().empty());
}

TEST_F(EventKitMeetRepositoryImplTests, weeklyWithoutDaysComesBackWithTheDayOfTheStart) {
    auto meet = meetAt(friday);
    meet.metRecurringWeekdays = {};
    auto const stored = runTask(repository().create(meet));
    EXPECT_EQ(stored.metRecurrenceFrequency, MeetRecurrenceFrequency::weekly);
    EXPECT_EQ(stored.metRecurringWeekdays, std::set<std::int64_t>{6});
}

TEST_F(EventKitMeetRepositoryImplTests, aRefusedSaveCarriesTheStoresText) {
    store->refuseChanges("The calendar is read-only.");
    EXPECT_EQ(errorOf([&] { runTask(repository().create(meetAt(friday))); }),
              EventKitMeetRepositoryError::saveFailed("The calendar is read-only."));
}

TEST_F(EventKitMeetRepositoryImplTests, aWeekdayThatDoesNotExistIsRefusedByTheStore) {
    auto meet = meetAt(friday);
    meet.metRecurringWeekdays = {8};
    auto const error = errorOf([&] { runTask(repository().create(meet)); });
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code(), Case::saveFailed);
}

// Updating

TEST_F(EventKitMeetRepositoryImplTests, anEditChangesTheEventInItsOwnCalendar) {
    auto event = eventAt(friday);
    event.location = "Room 1";
    auto meet = fetched(event);
    meet.metName = "Renamed";
    meet.metDate = {.secondsSince1970 = friday + 2 * hour};
    meet.metDuration = 600;
    meet.metDescription = "";
    meet.metCalendarIdentifier = "a1/home";
    auto const stored = runTask(repository().update(meet));

    ASSERT_EQ(store->saves().size(), 1U);
    auto const [saved, span] = store->saves().front();
    EXPECT_EQ(span, EKSpan::thisEvent);
    EXPECT_EQ(saved.title, "Renamed");
    EXPECT_EQ(saved.startDate, (Date{.secondsSince1970 = friday + 2 * hour}));
    EXPECT_EQ(saved.endDate, (Date{.secondsSince1970 = friday + 2 * hour + 600}));
    EXPECT_EQ(saved.notes, "");
    EXPECT_EQ(saved.location, "Room 1");
    EXPECT_EQ(saved.calendar->calendarIdentifier, "a1/work");
    EXPECT_EQ(stored.metName, "Renamed");
    EXPECT_EQ(stored.metOriginalIdentifier, meet.metOriginalIdentifier);
}

TEST_F(EventKitMeetRepositoryImplTests, theLookupLooksADayEitherWayInAllCalendars) {
    auto const meet = fetched(eventAt(friday));
    runTask(repository().update(meet));
    auto const query = store->queries().back();
    EXPECT_EQ(query.start, (Date{.secondsSince1970 = friday - day}));
    EXPECT_EQ(query.end, (Date{.secondsSince1970 = friday + day}));
    EXPECT_EQ(query.calendars, std::nullopt);
}

TEST_F(EventKitMeetRepositoryImplTests, theOccurrenceThatStartsInTheSameMinuteIsTheOneThatIsEdited) {
    store->addEvent(occurrence(friday - 20 * hour, "20231116T140000Z"));
    store->addEvent(occurrence(friday, "20231117T100000Z"));
    store->addEvent(occurrence(friday + 20 * hour, "20231118T060000Z"));
    auto meet = meetAt(friday + 59.9);
    runTask(repository().update(meet));
    EXPECT_EQ(store->saves().front().event.occurrenceKey, "20231117T100000Z");
}

TEST_F(EventKitMeetRepositoryImplTests, withoutTheSameMinuteTheFirstOccurrenceNearbyIsEdited) {
    store->addEvent(occurrence(friday - 20 * hour, "20231116T140000Z"));
    store->addEvent(occurrence(friday, "20231117T100000Z"));
    runTask(repository().update(meetAt(friday + 60)));
    EXPECT_EQ(store->saves().front().event.occurrenceKey, "20231116T140000Z");
}

TEST_F(EventKitMeetRepositoryImplTests, anEventOfAnotherIdentifierIsNotEdited) {
    store->addEvent(eventAt(friday, "u2"));
    EXPECT_EQ(errorOf([&] { runTask(repository().update(meetAt(friday))); }),
              EventKitMeetRepositoryError::eventNotFound());
}

TEST_F(EventKitMeetRepositoryImplTests, anEventWithoutIdentifierIsFoundByItsItemIdentifier) {
    auto event = eventAt(friday);
    event.eventIdentifier = std::nullopt;
    auto meet = fetched(event);
    EXPECT_EQ(meet.metOriginalIdentifier, "u1");
    runTask(repository().update(meet));
    EXPECT_EQ(store->saves().size(), 1U);
}

TEST_F(EventKitMeetRepositoryImplTests, anEventThatWasDeletedElsewhereIsNotFound) {
    EXPECT_EQ(errorOf([&] { runTask(repository().update(meetAt(friday))); }),
              EventKitMeetRepositoryError::eventNotFound());
    EXPECT_EQ(errorOf([&] { runTask(repository().deleteMeet(meetAt(friday))); }),
              EventKitMeetRepositoryError::eventNotFound());
    EXPECT_TRUE(store->saves().empty());
    EXPECT_TRUE(store->removals().empty());
}

TEST_F(EventKitMeetRepositoryImplTests, aMeetThatMovesByMoreThanADayIsNotFound) {
    auto meet = fetched(eventAt(friday));
    meet.metDate = {.secondsSince1970 = friday + 3 * day};
    EXPECT_EQ(errorOf([&] { runTask(repository().update(meet)); }),
              EventKitMeetRepositoryError::eventNotFound());
}

TEST_F(EventKitMeetRepositoryImplTests, aDateAtTheEndOfTheCalendarFindsNothing) {
    constexpr double lastDay = 253402300799; // 9999-12-31T23:59:59Z
    store->addEvent(eventAt(lastDay));
    EXPECT_EQ(errorOf([&] { runTask(repository().update(meetAt(lastDay))); }),
              EventKitMeetRepositoryError::eventNotFound());
}

TEST_F(EventKitMeetRepositoryImplTests, anEditReplacesEveryRule) {
    auto event = eventAt(friday);
    event.recurrenceRules = {{.frequency = EKRecurrenceFrequency::yearly},
                             {.frequency = EKRecurrenceFrequency::monthly}};
    auto meet = fetched(event);
    meet.metRecurrenceFrequency = MeetRecurrenceFrequency::daily;
    auto const stored = runTask(repository().update(meet));
    auto const saved = store->saves().front().event;
    ASSERT_EQ(saved.recurrenceRules.size(), 1U);
    EXPECT_EQ(saved.recurrenceRules.front().frequency, EKRecurrenceFrequency::daily);
    EXPECT_EQ(stored.metRecurrenceFrequency, MeetRecurrenceFrequency::daily);
}

TEST_F(EventKitMeetRepositoryImplTests, theEditedOccurrenceOfAYearlyEventBecomesASingleChangedOne) {
    auto yearly = occurrence(friday, "20231117T100000Z");
    yearly.recurrenceRules = {{.frequency = EKRecurrenceFrequency::yearly}};
    auto meet = fetched(yearly);
    EXPECT_EQ(meet.metRecurrenceFrequency, MeetRecurrenceFrequency::none);
    meet.metName = "Moved party";
    runTask(repository().update(meet));
    EXPECT_TRUE(store->saves().front().event.recurrenceRules.empty());
    EXPECT_EQ(store->saves().front().span, EKSpan::thisEvent);
}

TEST_F(EventKitMeetRepositoryImplTests, aRefusedEditCarriesTheStoresText) {
    auto const meet = fetched(eventAt(friday));
    store->refuseChanges("The calendar is read-only.");
    EXPECT_EQ(errorOf([&] { runTask(repository().update(meet)); }),
              EventKitMeetRepositoryError::saveFailed("The calendar is read-only."));
}

// Deleting

TEST_F(EventKitMeetRepositoryImplTests, aSingleEventIsRemovedAlone) {
    auto const meet = fetched(eventAt(friday));
    runTask(repository().deleteMeet(meet));
    ASSERT_EQ(store->removals().size(), 1U);
    EXPECT_EQ(store->removals().front().span, EKSpan::thisEvent);
    EXPECT_TRUE(store->events().empty());
}

TEST_F(EventKitMeetRepositoryImplTests, aRepeatingMeetIsRemovedAsTheSeriesThatItsIdentifierNames) {
    store->addEvent(occurrence(friday - 7 * day, "20231110T100000Z"));
    store->addEvent(occurrence(friday, "20231117T100000Z"));
    runTask(repository().deleteMeet(meetAt(friday)));
    ASSERT_EQ(store->removals().size(), 1U);
    EXPECT_EQ(store->removals().front().span, EKSpan::futureEvents);
    EXPECT_EQ(store->removals().front().event.occurrenceKey, "20231110T100000Z");
    EXPECT_TRUE(store->events().empty());
}

TEST_F(EventKitMeetRepositoryImplTests, aRepeatingEventWithoutIdentifierIsItselfRemoved) {
    auto event = eventAt(friday);
    event.eventIdentifier = std::nullopt;
    event.recurrenceRules = {{.frequency = EKRecurrenceFrequency::daily}};
    auto const meet = fetched(event);
    runTask(repository().deleteMeet(meet));
    ASSERT_EQ(store->removals().size(), 1U);
    EXPECT_EQ(store->removals().front().span, EKSpan::futureEvents);
    EXPECT_EQ(store->removals().front().event.calendarItemIdentifier, "u1");
}

TEST_F(EventKitMeetRepositoryImplTests, aRefusedRemovalCarriesTheStoresText) {
    auto const meet = fetched(eventAt(friday));
    store->refuseChanges("The calendar is read-only.");
    EXPECT_EQ(errorOf([&] { runTask(repository().deleteMeet(meet)); }),
              EventKitMeetRepositoryError::saveFailed("The calendar is read-only."));
}

// Listing

TEST_F(EventKitMeetRepositoryImplTests, theAccountsAreListedWithTheirCalendarsAlsoHiddenOnes) {
    auto with = settings();
    with.hiddenCalendarIdentifiers = {"a1/home"};
    auto const accounts = runTask(repository(std::move(with)).listAvailableCalendars());
    EXPECT_EQ(accounts,
              (std::vector<EventKitAccountCalendarsEntity>{
                  {.eacId = "a1",
                   .eacAccountTitle = "This computer",
                   .eacAccountType = "Local",
                   .eacCalendars = {{.eciId = "a1/work", .eciTitle = "Work", .eciColorHex = "#336699"},
                                    {.eciId = "a1/home", .eciTitle = "Home", .eciColorHex = "#336699"}}}}));
}

TEST(EventKitMeetRepositorySettingsTests, theDefaultsAreThoseOfAnApplicationsScreen) {
    EventKitMeetRepositorySettings const settings = {.calendar = utcCalendar(),
                                                     .defaultCalendarIdentifier = std::nullopt};
    EXPECT_EQ(settings.daysBehind, 1);
    EXPECT_EQ(settings.daysAhead, 14);
    EXPECT_TRUE(settings.hiddenCalendarIdentifiers.empty());
    EXPECT_EQ(settings.loggerCategory, "EventKitMeetRepositoryImpl");
}

TEST(EventKitMeetRepositoryErrorTests, errorsAreEqualByCaseAndMessage) {
    EXPECT_EQ(EventKitMeetRepositoryError::saveFailed("a"), EventKitMeetRepositoryError::saveFailed("a"));
    EXPECT_FALSE(EventKitMeetRepositoryError::saveFailed("a") ==
                 EventKitMeetRepositoryError::saveFailed("b"));
    EXPECT_FALSE(EventKitMeetRepositoryError::saveFailed("") == EventKitMeetRepositoryError::accessDenied());
}

TEST(EventKitMeetRepositoryErrorTests, eachCaseSaysWhatToDo) {
    EXPECT_STREQ(EventKitMeetRepositoryError::saveFailed("The disk is full.").what(), "The disk is full.");
    EXPECT_STREQ(EventKitMeetRepositoryError::accessDenied().what(),
                 "Access to the calendars is not granted. Nothing was read or changed; grant access first.");
    EXPECT_STREQ(EventKitMeetRepositoryError::eventNotFound().what(),
                 "The event is no longer in the calendar. Nothing was changed; load the day again.");
}

} // namespace
} // namespace Meetings
