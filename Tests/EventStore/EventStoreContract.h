#pragma once

#include "Platform/EventStore/EKEventStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// An event of the contract's world: `occurrences` of them, a day apart.
struct ContractEvent {
    std::string calendar; ///< The folder's name and the calendar's title.
    std::string uid;
    std::string title;
    std::string start; ///< "20260311T090000Z", or "20260311" for an all-day one.
    std::string end;
    double startSeconds; ///< The same instants since 1970 for a viewer in Europe/Madrid.
    double endSeconds;
    bool isAllDay = false;
    int occurrences = 1;
};

/// The world that every store under the contract is filled with: the source "Here" with the calendars "alpha"
/// and "beta", and these events.
inline std::vector<ContractEvent> contractEvents() {
    return {
        {.calendar = "alpha",
         .uid = "meeting",
         .title = "Meeting",
         .start = "20260311T090000Z",
         .end = "20260311T100000Z",
         .startSeconds = 1773219600,
         .endSeconds = 1773223200},
        {.calendar = "alpha",
         .uid = "instant",
         .title = "Instant",
         .start = "20260311T120000Z",
         .end = "20260311T120000Z",
         .startSeconds = 1773230400,
         .endSeconds = 1773230400},
        {.calendar = "beta",
         .uid = "series",
         .title = "Series",
         .start = "20260310T150000Z",
         .end = "20260310T153000Z",
         .startSeconds = 1773154800,
         .endSeconds = 1773156600,
         .occurrences = 3},
        {.calendar = "beta",
         .uid = "holiday",
         .title = "Holiday",
         .start = "20260311",
         .end = "20260312",
         .startSeconds = 1773183600,
         .endSeconds = 1773270000,
         .isAllDay = true},
    };
}

inline Foundation::Date at(double seconds) {
    return {.secondsSince1970 = seconds};
}

inline constexpr double dayStart = 1773183600; // 2026-03-11 in Madrid
inline constexpr double dayEnd = 1773270000;

/// What a store shows between two instants, in alphabetical order.
inline std::vector<std::string> titlesIn(Platform::EKEventStore& store, double start, double end,
                                         std::optional<std::vector<std::string>> calendars = std::nullopt) {
    std::vector<std::string> titles;
    for (auto const& event :
         store.eventsMatching({.start = at(start), .end = at(end), .calendars = std::move(calendars)})) {
        titles.push_back(event.title.value_or("untitled"));
    }
    std::ranges::sort(titles);
    return titles;
}

/// The identifier of the calendar of that title.
inline std::string identifierOf(Platform::EKEventStore& store, std::string_view title) {
    for (auto const& calendar : store.calendarsForEntityType(Platform::EKEntityType::event)) {
        if (calendar.title == title) return calendar.calendarIdentifier;
    }
    return "no calendar of that title";
}

/// A store of that world, together with whatever keeps it alive. Its consent is not determined, and whoever
/// is asked says yes.
struct ContractSubject {
    std::string name;
    std::function<std::shared_ptr<Platform::EKEventStore>()> make;
};

class EventStoreContract : public testing::TestWithParam<ContractSubject> {};
