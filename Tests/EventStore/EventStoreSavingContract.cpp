#include "Tests/EventStore/EventStoreContract.h"

#include <algorithm>
#include <cstddef>
#include <set>

using namespace Platform;

namespace {

constexpr double hour = 3600;
constexpr double day = 86'400;
constexpr double seriesStart = 1773154800; // 2026-03-10 15:00 UTC, the first of three days

EKEventPredicate everything() {
    return {.start = at(dayStart - 30 * day), .end = at(dayEnd + 30 * day), .calendars = std::nullopt};
}

// A new event of an hour, not saved yet.
EKEvent newEvent(EKEventStore& store, std::string_view calendar, std::string title, double start) {
    auto event = store.makeEvent();
    event.calendar = std::make_shared<EKCalendar const>(
        store.calendarWithIdentifier(identifierOf(store, calendar)).value());
    event.title = std::move(title);
    event.startDate = at(start);
    event.endDate = at(start + hour);
    return event;
}

// The events of that title, by start.
std::vector<EKEvent> eventsTitled(EKEventStore& store, std::string_view title) {
    auto events = store.eventsMatching(everything());
    std::erase_if(events, [&](EKEvent const& event) { return event.title != title; });
    std::ranges::sort(events, {}, [](EKEvent const& event) { return event.startDate->secondsSince1970; });
    return events;
}

std::vector<double> startsOf(std::vector<EKEvent> const& events) {
    std::vector<double> starts;
    for (auto const& event : events)
        starts.push_back(event.startDate->secondsSince1970);
    return starts;
}

EKEvent only(std::vector<EKEvent> const& events) {
    EXPECT_EQ(events.size(), 1U);
    return events.at(0);
}

// The text of the refusal.
std::string refusalOf(std::function<void()> const& change) {
    try {
        change();
    } catch (EKError const& error) {
        return error.what();
    }
    return "nothing was refused";
}

std::shared_ptr<EKCalendar const> calendarOf(EKEventStore& store, std::string const& title) {
    return std::make_shared<EKCalendar const>(
        store.calendarWithIdentifier(identifierOf(store, title)).value());
}

using Starts = std::vector<double>;

} // namespace

TEST_P(EventStoreContract, aNewEventIsThereAfterItWasSaved) {
    auto const store = GetParam().make();
    auto event = newEvent(*store, "alpha", "New; with, all\\of it\nand more", dayStart + 10 * hour);
    event.notes = "Notes – “quoted”\n\n  second, third; line  ";
    event.location = "Room 5";
    event.url = Foundation::URL::fromText("https://example.org/a;b,c?d=e");
    store->save(event, EKSpan::thisEvent);
    ASSERT_TRUE(event.eventIdentifier.has_value());
    EXPECT_EQ(event.eventIdentifier,
              identifierOf(*store, "alpha") + ":" + event.calendarItemIdentifier.value_or("absent"));

    auto const found = store->eventWithIdentifier(*event.eventIdentifier);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->title, "New; with, all\\of it\nand more");
    EXPECT_EQ(found->notes, "Notes – “quoted”\n\n  second, third; line  ");
    EXPECT_EQ(found->location, "Room 5");
    EXPECT_EQ(found->url, event.url);
    EXPECT_EQ(found->startDate, at(dayStart + 10 * hour));
    EXPECT_EQ(found->endDate, at(dayStart + 11 * hour));
    EXPECT_FALSE(found->isAllDay);
    EXPECT_EQ(found->occurrenceKey, std::nullopt);
    EXPECT_EQ(found->calendar->title, "alpha");
    EXPECT_EQ(eventsTitled(*store, "New; with, all\\of it\nand more").size(), 1U);
}

TEST_P(EventStoreContract, everyNewEventHasAnIdentifierOfItsOwn) {
    auto const store = GetParam().make();
    std::set<std::string> identifiers;
    for (int number = 0; number < 3; ++number) {
        auto event = newEvent(*store, "alpha", "Same", dayStart);
        store->save(event, EKSpan::thisEvent);
        identifiers.insert(event.eventIdentifier.value());
    }
    EXPECT_EQ(identifiers.size(), 3U);
    EXPECT_EQ(eventsTitled(*store, "Same").size(), 3U);
}

TEST_P(EventStoreContract, aNewAllDayEventIsTheViewersDays) {
    auto const store = GetParam().make();
    auto event = newEvent(*store, "alpha", "Fair", dayStart);
    event.isAllDay = true;
    event.endDate = at(dayStart + 2 * day);
    store->save(event, EKSpan::thisEvent);
    auto const found = only(eventsTitled(*store, "Fair"));
    EXPECT_TRUE(found.isAllDay);
    EXPECT_EQ(found.startDate, at(dayStart));
    EXPECT_EQ(found.endDate, at(dayStart + 2 * day));
}

TEST_P(EventStoreContract, aChangedEventIsTheSameEvent) {
    auto const store = GetParam().make();
    auto event = only(eventsTitled(*store, "Meeting"));
    auto const identifier = event.eventIdentifier;
    event.title = "Moved";
    event.notes = "Because";
    event.startDate = event.startDate->addingTimeInterval(2 * hour);
    event.endDate = event.startDate->addingTimeInterval(hour / 2);
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(event.eventIdentifier, identifier);
    EXPECT_TRUE(eventsTitled(*store, "Meeting").empty());
    auto const found = only(eventsTitled(*store, "Moved"));
    EXPECT_EQ(found.eventIdentifier, identifier);
    EXPECT_EQ(found.notes, "Because");
    EXPECT_EQ(found.startDate, at(1773219600 + 2 * hour));
    EXPECT_EQ(found.endDate, at(1773219600 + 2.5 * hour));
    EXPECT_EQ(titlesIn(*store, dayStart, dayEnd),
              (std::vector<std::string>{"Holiday", "Instant", "Moved", "Series"}));
}

TEST_P(EventStoreContract, aRemovedEventIsGoneAndNoOther) {
    auto const store = GetParam().make();
    auto const event = only(eventsTitled(*store, "Meeting"));
    store->remove(event, EKSpan::thisEvent);
    EXPECT_FALSE(store->eventWithIdentifier(*event.eventIdentifier).has_value());
    EXPECT_EQ(titlesIn(*store, dayStart, dayEnd), (std::vector<std::string>{"Holiday", "Instant", "Series"}));
}

TEST_P(EventStoreContract, aSingleEventWithARuleIsASeries) {
    auto const store = GetParam().make();
    auto event = newEvent(*store, "alpha", "Weekly", dayStart + hour);
    EKRecurrenceRule const rule{.frequency = EKRecurrenceFrequency::weekly,
                                .daysOfTheWeek = {{.dayOfTheWeek = 4}}};
    store->save(event, EKSpan::thisEvent);
    event.recurrenceRules = {rule};
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(event.recurrenceRules, std::vector{rule});
    auto const found = store->eventWithIdentifier(*event.eventIdentifier);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->recurrenceRules, std::vector{rule});
    EXPECT_EQ(found->startDate, at(dayStart + hour));
}

TEST_P(EventStoreContract, anOccurrenceSavedAloneLeavesTheSeriesAsItWas) {
    auto const store = GetParam().make();
    auto event = eventsTitled(*store, "Series").at(1);
    auto const rules = event.recurrenceRules;
    auto const identifier = event.eventIdentifier;
    auto const key = event.occurrenceKey;
    event.title = "Special";
    event.startDate = event.startDate->addingTimeInterval(hour);
    event.endDate = event.startDate->addingTimeInterval(hour);
    // Whatever rules it carries: they are not the series' any more.
    event.recurrenceRules = {{.frequency = EKRecurrenceFrequency::monthly}};
    store->save(event, EKSpan::thisEvent);
    EXPECT_TRUE(event.recurrenceRules.empty());

    auto const others = eventsTitled(*store, "Series");
    EXPECT_EQ(startsOf(others), (Starts{seriesStart, seriesStart + 2 * day}));
    EXPECT_EQ(others.at(0).recurrenceRules, rules);
    auto const special = only(eventsTitled(*store, "Special"));
    EXPECT_EQ(special.startDate, at(seriesStart + day + hour));
    EXPECT_EQ(special.endDate, at(seriesStart + day + 2 * hour));
    EXPECT_TRUE(special.recurrenceRules.empty());
    EXPECT_EQ(special.eventIdentifier, identifier);
    EXPECT_EQ(special.occurrenceKey, key);
}

TEST_P(EventStoreContract, anOccurrenceMayBeSavedAloneTwice) {
    auto const store = GetParam().make();
    auto event = eventsTitled(*store, "Series").at(1);
    event.title = "Special";
    store->save(event, EKSpan::thisEvent);
    event.title = "Very special";
    event.startDate = event.startDate->addingTimeInterval(-hour);
    store->save(event, EKSpan::thisEvent);
    EXPECT_EQ(eventsTitled(*store, "Series").size(), 2U);
    EXPECT_TRUE(eventsTitled(*store, "Special").empty());
    EXPECT_EQ(only(eventsTitled(*store, "Very special")).startDate, at(seriesStart + day - hour));
}

TEST_P(EventStoreContract, anOccurrenceRemovedAloneLeavesTheOthers) {
    auto const store = GetParam().make();
    store->remove(eventsTitled(*store, "Series").at(1), EKSpan::thisEvent);
    EXPECT_EQ(startsOf(eventsTitled(*store, "Series")), (Starts{seriesStart, seriesStart + 2 * day}));
}

TEST_P(EventStoreContract, aChangedOccurrenceCanBeRemovedAlone) {
    auto const store = GetParam().make();
    auto event = eventsTitled(*store, "Series").at(1);
    event.title = "Special";
    store->save(event, EKSpan::thisEvent);
    store->remove(event, EKSpan::thisEvent);
    EXPECT_TRUE(eventsTitled(*store, "Special").empty());
    EXPECT_EQ(startsOf(eventsTitled(*store, "Series")), (Starts{seriesStart, seriesStart + 2 * day}));
}

TEST_P(EventStoreContract, aSeriesWhoseOccurrencesAreAllRemovedIsGone) {
    auto const store = GetParam().make();
    auto const occurrences = eventsTitled(*store, "Series");
    for (auto const& occurrence : occurrences)
        store->remove(occurrence, EKSpan::thisEvent);
    EXPECT_FALSE(store->eventWithIdentifier(*occurrences.at(0).eventIdentifier).has_value());
}

TEST_P(EventStoreContract, whatCannotBeSavedIsRefusedAndChangesNothing) {
    struct Row {
        char const* name;
        std::function<void(EKEvent&)> spoil;
        std::string text;
    };
    auto const weekday = [](std::int64_t number) {
        return [number](EKEvent& event) {
            event.recurrenceRules = {
                {.frequency = EKRecurrenceFrequency::weekly, .daysOfTheWeek = {{.dayOfTheWeek = number}}}};
        };
    };
    for (auto const& row : std::vector<Row>{
             {"no calendar", [](EKEvent& event) { event.calendar = nullptr; },
              "The event has no calendar; it was not saved."},
             {"a vanished calendar",
              [](EKEvent& event) {
                  auto calendar = *event.calendar;
                  calendar.calendarIdentifier += "-gone";
                  event.calendar = std::make_shared<EKCalendar const>(calendar);
              },
              "The calendar \"alpha\" is no longer there; the event was not saved."},
             {"no start", [](EKEvent& event) { event.startDate = std::nullopt; },
              "The event has no start or no end; it was not saved."},
             {"no end", [](EKEvent& event) { event.endDate = std::nullopt; },
              "The event has no start or no end; it was not saved."},
             {"an end before the start",
              [](EKEvent& event) { event.endDate = event.startDate->addingTimeInterval(-1); },
              "The event ends before it starts; it was not saved."},
             {"weekday 0", weekday(0), "The event repeats on a weekday outside 1…7; it was not saved."},
             {"weekday 8", weekday(8), "The event repeats on a weekday outside 1…7; it was not saved."},
             {"an event that has gone",
              [](EKEvent& event) {
                  event.eventIdentifier = event.calendar->calendarIdentifier + ":gone";
                  event.calendarItemIdentifier = "gone";
              },
              "The event is no longer in the store; it was not saved."},
         }) {
        auto const store = GetParam().make();
        auto event = newEvent(*store, "alpha", "New", dayStart);
        row.spoil(event);
        EXPECT_EQ(refusalOf([&] { store->save(event, EKSpan::thisEvent); }), row.text) << row.name;
        EXPECT_EQ(titlesIn(*store, dayStart, dayEnd),
                  (std::vector<std::string>{"Holiday", "Instant", "Meeting", "Series"}))
            << row.name;
    }
}

TEST_P(EventStoreContract, anEventMovesToAnotherCalendarAndChangesOnTheWay) {
    auto const store = GetParam().make();
    auto event = only(eventsTitled(*store, "Meeting"));
    auto const former = event.eventIdentifier.value();
    event.calendar = calendarOf(*store, "beta");
    event.title = "Moved";
    store->save(event, EKSpan::thisEvent);
    EXPECT_NE(event.eventIdentifier, former);
    EXPECT_TRUE(event.eventIdentifier->starts_with(event.calendar->calendarIdentifier + ":"));
    EXPECT_TRUE(eventsTitled(*store, "Meeting").empty());
    EXPECT_FALSE(store->eventWithIdentifier(former).has_value());
    auto const found = only(eventsTitled(*store, "Moved"));
    EXPECT_EQ(found.calendar->title, "beta");
    EXPECT_EQ(found.eventIdentifier, event.eventIdentifier);
    EXPECT_EQ(found.startDate, event.startDate);
}

TEST_P(EventStoreContract, aSeriesMovesToAnotherCalendarAsAWhole) {
    auto const store = GetParam().make();
    auto const series = eventsTitled(*store, "Series");
    auto const starts = startsOf(series);
    auto event = series.at(0);
    event.calendar = calendarOf(*store, "alpha");
    store->save(event, EKSpan::futureEvents);
    EXPECT_EQ(event.occurrenceKey, series.at(0).occurrenceKey);
    auto const moved = eventsTitled(*store, "Series");
    EXPECT_EQ(startsOf(moved), starts);
    for (auto const& occurrence : moved) {
        EXPECT_EQ(occurrence.calendar->title, "alpha");
        EXPECT_EQ(occurrence.eventIdentifier, event.eventIdentifier);
    }
}

TEST_P(EventStoreContract, aPartOfASeriesStaysInItsCalendar) {
    auto const store = GetParam().make();
    auto const series = eventsTitled(*store, "Series");
    for (auto const& [place, span] : {std::pair(0, EKSpan::thisEvent), std::pair(1, EKSpan::thisEvent),
                                      std::pair(1, EKSpan::futureEvents)}) {
        auto event = series.at(static_cast<std::size_t>(place));
        auto const calendar = event.calendar->title;
        event.calendar = calendarOf(*store, calendar == "beta" ? "alpha" : "beta");
        EXPECT_EQ(refusalOf([&] { store->save(event, span); }),
                  "A series can only be moved to another calendar as a whole; it was not saved.");
        for (auto const& occurrence : eventsTitled(*store, "Series"))
            EXPECT_EQ(occurrence.calendar->title, calendar);
    }
}

TEST_P(EventStoreContract, whatHasGoneCannotBeRemoved) {
    auto const store = GetParam().make();
    auto const meeting = only(eventsTitled(*store, "Meeting"));
    auto const occurrence = eventsTitled(*store, "Series").at(1);
    store->remove(meeting, EKSpan::thisEvent);
    store->remove(occurrence, EKSpan::thisEvent);
    for (auto const& event : {meeting, occurrence}) {
        EXPECT_EQ(refusalOf([&] { store->remove(event, EKSpan::thisEvent); }),
                  "The event is no longer in the store; nothing was removed.");
        EXPECT_EQ(refusalOf([&] { store->remove(event, EKSpan::futureEvents); }),
                  "The event is no longer in the store; nothing was removed.");
    }
    EXPECT_EQ(startsOf(eventsTitled(*store, "Series")), (Starts{seriesStart, seriesStart + 2 * day}));
}

TEST_P(EventStoreContract, futureOccurrencesSavedAreASeriesOfTheirOwn) {
    auto const store = GetParam().make();
    auto event = eventsTitled(*store, "Series").at(1);
    auto const identifier = event.eventIdentifier;
    event.title = "Later";
    event.startDate = event.startDate->addingTimeInterval(hour);
    event.endDate = event.startDate->addingTimeInterval(2 * hour);
    store->save(event, EKSpan::futureEvents);
    EXPECT_NE(event.eventIdentifier, identifier);

    auto const before = only(eventsTitled(*store, "Series"));
    EXPECT_EQ(before.eventIdentifier, identifier);
    EXPECT_EQ(before.startDate, at(seriesStart));
    auto const after = eventsTitled(*store, "Later");
    EXPECT_EQ(startsOf(after), (Starts{seriesStart + day + hour, seriesStart + 2 * day + hour}));
    for (auto const& occurrence : after) {
        EXPECT_EQ(occurrence.eventIdentifier, event.eventIdentifier);
        EXPECT_EQ(occurrence.endDate->timeIntervalSince(*occurrence.startDate), 2 * hour);
    }
}

TEST_P(EventStoreContract, futureOccurrencesFromTheFirstOnAreTheWholeSeries) {
    auto const store = GetParam().make();
    auto event = eventsTitled(*store, "Series").at(0);
    auto const identifier = event.eventIdentifier;
    event.title = "All";
    event.startDate = event.startDate->addingTimeInterval(-hour);
    event.endDate = event.startDate->addingTimeInterval(hour);
    store->save(event, EKSpan::futureEvents);
    EXPECT_EQ(event.eventIdentifier, identifier);
    EXPECT_TRUE(eventsTitled(*store, "Series").empty());
    auto const all = eventsTitled(*store, "All");
    EXPECT_EQ(startsOf(all),
              (Starts{seriesStart - hour, seriesStart + day - hour, seriesStart + 2 * day - hour}));
    for (auto const& occurrence : all)
        EXPECT_EQ(occurrence.eventIdentifier, identifier);
}

TEST_P(EventStoreContract, futureOccurrencesRemovedLeaveTheEarlierOnes) {
    auto const store = GetParam().make();
    store->remove(eventsTitled(*store, "Series").at(1), EKSpan::futureEvents);
    EXPECT_EQ(startsOf(eventsTitled(*store, "Series")), (Starts{seriesStart}));
    EXPECT_EQ(eventsTitled(*store, "Meeting").size(), 1U);
}

TEST_P(EventStoreContract, futureOccurrencesRemovedFromTheFirstOnAreTheWholeSeries) {
    auto const store = GetParam().make();
    auto const first = eventsTitled(*store, "Series").at(0);
    store->remove(first, EKSpan::futureEvents);
    EXPECT_FALSE(store->eventWithIdentifier(*first.eventIdentifier).has_value());
    EXPECT_TRUE(eventsTitled(*store, "Series").empty());
}

TEST_P(EventStoreContract, aSingleEventHasNoFutureButItself) {
    auto const store = GetParam().make();
    auto event = only(eventsTitled(*store, "Meeting"));
    event.title = "Changed";
    store->save(event, EKSpan::futureEvents);
    EXPECT_EQ(only(eventsTitled(*store, "Changed")).eventIdentifier, event.eventIdentifier);
    store->remove(event, EKSpan::futureEvents);
    EXPECT_TRUE(eventsTitled(*store, "Changed").empty());
}
