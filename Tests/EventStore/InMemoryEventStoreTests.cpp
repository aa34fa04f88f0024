#include "Platform/EventStore/FailingEventStore.h"
#include "Platform/EventStore/InMemoryEventStore.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Platform;

namespace {

EKCalendar calendar(std::string identifier) {
    return {.calendarIdentifier = std::move(identifier),
            .title = "A calendar",
            .cgColor = {.components = std::nullopt},
            .sourceIdentifier = "s",
            .allowsContentModifications = true};
}

EKSource source(std::vector<EKCalendar> calendars) {
    return {.sourceIdentifier = "s",
            .title = "A source",
            .sourceType = EKSourceType::local,
            .calendars = std::move(calendars)};
}

EKEvent occurrence(std::string identifier, double start, std::optional<std::string> key = std::nullopt) {
    return {.eventIdentifier = std::move(identifier),
            .title = "Stand-up",
            .startDate = Foundation::Date{start},
            .endDate = Foundation::Date{start + 900},
            .calendar = std::make_shared<EKCalendar const>(calendar("c")),
            .recurrenceRules = {{.frequency = EKRecurrenceFrequency::daily}},
            .occurrenceKey = std::move(key)};
}

// Three days of a series and a single event between them.
std::shared_ptr<InMemoryEventStore> storeWithSeries() {
    auto single = occurrence("c:single", 90'000);
    single.recurrenceRules.clear();
    return std::make_shared<InMemoryEventStore>(
        std::vector{source({calendar("c"), calendar("d")})},
        std::vector{occurrence("c:series", 0, "19700101T000000Z"),
                    occurrence("c:series", 86'400, "19700102T000000Z"), single,
                    occurrence("c:series", 172'800, "19700103T000000Z")});
}

std::vector<double> starts(InMemoryEventStore const& store) {
    std::vector<double> values;
    for (auto const& event : store.events())
        values.push_back(event.startDate->secondsSince1970);
    return values;
}

std::string refusalOf(std::function<void()> const& change) {
    try {
        change();
    } catch (EKError const& error) {
        return error.what();
    }
    return "nothing was refused";
}

} // namespace

TEST(InMemoryEventStoreTests, queriesAreKeptInTheirOrder) {
    auto const store = storeWithSeries();
    (void)store->eventsMatching({.start = {0}, .end = {1}, .calendars = std::nullopt});
    (void)store->eventsMatching({.start = {2}, .end = {3}, .calendars = {{"c"}}});
    auto const queries = store->queries();
    ASSERT_EQ(queries.size(), 2U);
    EXPECT_EQ(queries[0].end, Foundation::Date{1});
    EXPECT_EQ(queries[0].calendars, std::nullopt);
    EXPECT_EQ(queries[1].start, Foundation::Date{2});
    EXPECT_EQ(queries[1].calendars, (std::vector<std::string>{"c"}));
}

TEST(InMemoryEventStoreTests, aNewEventGetsItsIdentifiersWhenItIsSaved) {
    auto const store = storeWithSeries();
    auto event = store->makeEvent();
    event.calendar = std::make_shared<EKCalendar const>(calendar("d"));
    event.startDate = Foundation::Date{10};
    event.endDate = Foundation::Date{20};
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(event.eventIdentifier, "d:new-1");
    EXPECT_EQ(event.calendarItemIdentifier, "new-1");
    EXPECT_EQ(store->eventWithIdentifier("d:new-1")->startDate, Foundation::Date{10});
    ASSERT_EQ(store->saves().size(), 1U);
    EXPECT_EQ(store->saves()[0].event.eventIdentifier, std::nullopt);
    EXPECT_EQ(store->saves()[0].span, EKSpan::thisEvent);
}

TEST(InMemoryEventStoreTests, savingThisOccurrenceChangesItAloneAndDropsItsRules) {
    auto const store = storeWithSeries();
    auto event = occurrence("c:series", 86'400, "19700102T000000Z");
    event.startDate = Foundation::Date{90'400};
    event.endDate = Foundation::Date{91'000};
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(starts(*store), (std::vector<double>{0, 90'400, 90'000, 172'800}));
    EXPECT_TRUE(store->events()[1].recurrenceRules.empty());
    EXPECT_EQ(store->events()[3].recurrenceRules.size(), 1U);
}

TEST(InMemoryEventStoreTests, savingFutureOccurrencesMovesTheLaterOnesAlongUnderANewIdentifier) {
    auto const store = storeWithSeries();
    auto event = occurrence("c:series", 86'400, "19700102T000000Z");
    event.startDate = Foundation::Date{86'400 + 60};
    event.endDate = Foundation::Date{86'400 + 660};
    event.title = "Later";
    store->save(event, EKSpan::futureEvents);
    EXPECT_EQ(starts(*store), (std::vector<double>{0, 86'460, 90'000, 172'860}));
    EXPECT_EQ(store->events()[0].eventIdentifier, "c:series");
    EXPECT_EQ(store->events()[1].eventIdentifier, "c:new-1");
    EXPECT_EQ(store->events()[3].eventIdentifier, "c:new-1");
    EXPECT_EQ(store->events()[3].title, "Later");
    EXPECT_EQ(store->events()[3].endDate, Foundation::Date{172'860 + 600});
}

TEST(InMemoryEventStoreTests, removingThisOccurrenceLeavesTheOthers) {
    auto const store = storeWithSeries();
    store->remove(occurrence("c:series", 86'400, "19700102T000000Z"), EKSpan::thisEvent);
    EXPECT_EQ(starts(*store), (std::vector<double>{0, 90'000, 172'800}));
}

TEST(InMemoryEventStoreTests, removingFutureOccurrencesLeavesTheEarlierOnesAndOtherEvents) {
    auto const store = storeWithSeries();
    store->remove(occurrence("c:series", 86'400, "19700102T000000Z"), EKSpan::futureEvents);
    EXPECT_EQ(starts(*store), (std::vector<double>{0, 90'000}));
}

TEST(InMemoryEventStoreTests, removingFutureOccurrencesFromTheFirstRemovesTheSeries) {
    auto const store = storeWithSeries();
    store->remove(*store->eventWithIdentifier("c:series"), EKSpan::futureEvents);
    EXPECT_EQ(starts(*store), (std::vector<double>{90'000}));
    ASSERT_EQ(store->removals().size(), 1U);
    EXPECT_EQ(store->removals()[0].span, EKSpan::futureEvents);
}

TEST(InMemoryEventStoreTests, whatCannotBeKeptIsRefusedAndChangesNothing) {
    struct Row {
        char const* name;
        std::function<void(EKEvent&)> spoil;
        char const* text;
    };
    std::vector<Row> const rows{
        {"no calendar", [](EKEvent& event) { event.calendar = nullptr; },
         "The event has no calendar; it was not saved."},
        {"a calendar from elsewhere",
         [](EKEvent& event) { event.calendar = std::make_shared<EKCalendar const>(calendar("x")); },
         "The calendar \"A calendar\" is no longer there; the event was not saved."},
        {"no end", [](EKEvent& event) { event.endDate = std::nullopt; },
         "The event has no start or no end; it was not saved."},
        {"weekday 0",
         [](EKEvent& event) {
             event.recurrenceRules = {
                 {.frequency = EKRecurrenceFrequency::weekly, .daysOfTheWeek = {{.dayOfTheWeek = 0}}}};
         },
         "The event repeats on a weekday outside 1…7; it was not saved."},
        {"weekday 8",
         [](EKEvent& event) {
             event.recurrenceRules = {
                 {.frequency = EKRecurrenceFrequency::weekly, .daysOfTheWeek = {{.dayOfTheWeek = 8}}}};
         },
         "The event repeats on a weekday outside 1…7; it was not saved."},
        {"an event that has gone", [](EKEvent& event) { event.eventIdentifier = "c:gone"; },
         "The event is no longer in the store; it was not saved."},
    };
    for (auto const& row : rows) {
        auto const store = storeWithSeries();
        auto event = occurrence("c:single", 5);
        row.spoil(event);
        EXPECT_EQ(refusalOf([&] { store->save(event, EKSpan::thisEvent); }), row.text) << row.name;
        EXPECT_EQ(starts(*store), (std::vector<double>{0, 86'400, 90'000, 172'800})) << row.name;
    }
}

TEST(InMemoryEventStoreTests, removingAnUnknownEventIsRefused) {
    auto const store = storeWithSeries();
    EXPECT_EQ(refusalOf([&] { store->remove(occurrence("c:gone", 0), EKSpan::thisEvent); }),
              "The event is no longer in the store; nothing was removed.");
}

TEST(InMemoryEventStoreTests, changesAreRefusedAfterTheNumberGiven) {
    auto const store = storeWithSeries();
    store->refuseChanges("The disk is full.", 1);
    store->remove(occurrence("c:series", 0, "19700101T000000Z"), EKSpan::thisEvent);
    EXPECT_EQ(refusalOf([&] { store->remove(occurrence("c:single", 90'000), EKSpan::thisEvent); }),
              "The disk is full.");
    EXPECT_EQ(starts(*store), (std::vector<double>{86'400, 90'000, 172'800}));
    EXPECT_EQ(store->removals().size(), 2U);
}

TEST(InMemoryEventStoreTests, theAccessRequestIsAnsweredAsGiven) {
    struct Row {
        char const* name;
        AccessAnswer answer;
        bool granted;
        EKAuthorizationStatus after;
    };
    std::vector<Row> const rows{
        {"granted", AccessAnswer::granted, true, EKAuthorizationStatus::fullAccess},
        {"not granted", AccessAnswer::notGranted, false, EKAuthorizationStatus::denied},
        {"nobody to ask", AccessAnswer::unavailable, false, EKAuthorizationStatus::notDetermined},
    };
    for (auto const& row : rows) {
        InMemoryEventStore store;
        store.setAuthorizationStatus(EKAuthorizationStatus::notDetermined);
        store.setAccessAnswer(row.answer);
        EXPECT_EQ(Foundation::runTask(store.requestFullAccessToEvents()), row.granted) << row.name;
        EXPECT_EQ(store.authorizationStatus(), row.after) << row.name;
        EXPECT_EQ(store.accessRequests(), 1) << row.name;
    }
}

TEST(InMemoryEventStoreTests, anAccessRequestMayFail) {
    InMemoryEventStore store;
    store.setAccessAnswer(AccessAnswer::failing);
    EXPECT_EQ(refusalOf([&] { Foundation::runTask(store.requestFullAccessToEvents()); }),
              "The access request failed.");
}

TEST(InMemoryEventStoreTests, theDefaultCalendarIsTheOneGiven) {
    auto const store = storeWithSeries();
    EXPECT_EQ(store->defaultCalendarForNewEvents(), std::nullopt);
    store->setDefaultCalendar("d");
    EXPECT_EQ(store->defaultCalendarForNewEvents(), calendar("d"));
    store->setDefaultCalendar("gone");
    EXPECT_EQ(store->defaultCalendarForNewEvents(), std::nullopt);
}

TEST(FailingEventStoreTests, operationsFailAfterTheNumberGivenAndTheAuthorisationNever) {
    FailingEventStore store(storeWithSeries(), "The bus has gone.", 2);
    EXPECT_EQ(store.sources().size(), 1U);
    EXPECT_TRUE(store.eventWithIdentifier("c:single").has_value());
    EXPECT_EQ(
        refusalOf([&] { (void)store.eventsMatching({.start = {0}, .end = {1}, .calendars = std::nullopt}); }),
        "The bus has gone.");
    EXPECT_EQ(store.authorizationStatus(), EKAuthorizationStatus::fullAccess);
}
