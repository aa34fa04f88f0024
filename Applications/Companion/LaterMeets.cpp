#include "Applications/Companion/LaterMeets.h"

#include <algorithm>
#include <array>
#include <vector>

namespace Companion {

using Platform::EKEvent;

namespace {

// Whether both were read from the same lines of a file.
bool isOfSamePlace(EKEvent const& left, EKEvent const& right) {
    return left.sourceFile == right.sourceFile && left.sourceLine == right.sourceLine;
}

std::vector<EKEvent> othersAround(EKEvent const& event, std::int64_t days, Meetings::EventKitStoring& store,
                                  Foundation::Calendar const& calendar) {
    auto const start = calendar.dateByAddingDays(-days, *event.startDate);
    auto const end = calendar.dateByAddingDays(days, *event.startDate);
    if (!start || !end) return {};
    std::optional<std::vector<Platform::EKCalendar>> calendars;
    if (event.calendar) calendars = {*event.calendar};
    auto found = store.eventsMatching(store.predicateForEvents(*start, *end, calendars));
    std::erase_if(found, [&](EKEvent const& other) {
        return other.eventIdentifier != event.eventIdentifier || other.occurrenceKey == event.occurrenceKey;
    });
    // The next ones first, then from the latest of the earlier ones back.
    std::ranges::sort(found, [&](EKEvent const& left, EKEvent const& right) {
        bool const isLeftLater = *left.startDate > *event.startDate;
        bool const isRightLater = *right.startDate > *event.startDate;
        if (isLeftLater != isRightLater) return isLeftLater;
        return isLeftLater ? *left.startDate < *right.startDate : *left.startDate > *right.startDate;
    });
    return found;
}

template <typename Text>
void follow(Text& own, Text const& before, Text const& after) {
    // What the changed occurrence does not have it takes from nobody, unless that is the change.
    if (after || after != before) own = after;
}

} // namespace

std::optional<EKEvent> unchangedOccurrence(EKEvent const& event, Meetings::EventKitStoring& store,
                                           Foundation::Calendar const& calendar) {
    if (!event.occurrenceKey || !event.recurrenceRules.empty()) return std::nullopt;
    constexpr std::array<std::int64_t, 3> widths{40, 400, 1460};
    for (auto const days : widths) {
        auto const others = othersAround(event, days, store, calendar);
        bool const isOneOfMany =
            std::ranges::any_of(others, [&](EKEvent const& other) { return isOfSamePlace(other, event); });
        if (isOneOfMany) return std::nullopt;
        auto const isUnchanged = [&](EKEvent const& one) {
            // Of a series of single dates no occurrence bears a rule, but several come from one place.
            return !one.recurrenceRules.empty() || std::ranges::count_if(others, [&](EKEvent const& other) {
                                                       return isOfSamePlace(other, one);
                                                   }) > 1;
        };
        auto const found = std::ranges::find_if(others, isUnchanged);
        if (found != others.end()) return *found;
    }
    return std::nullopt;
}

EKEvent followed(EKEvent occurrence, EKEvent const& before, EKEvent const& after) {
    follow(occurrence.title, before.title, after.title);
    follow(occurrence.notes, before.notes, after.notes);
    follow(occurrence.location, before.location, after.location);
    follow(occurrence.url, before.url, after.url);
    if (after.recurrenceRules != before.recurrenceRules) occurrence.recurrenceRules = after.recurrenceRules;
    auto const lengthOf = [](EKEvent const& event) {
        return event.endDate->timeIntervalSince(*event.startDate);
    };
    auto length = lengthOf(occurrence);
    if (lengthOf(after) != lengthOf(before)) length = lengthOf(after);
    auto const moved = after.startDate->timeIntervalSince(*before.startDate);
    occurrence.startDate = occurrence.startDate->addingTimeInterval(moved);
    occurrence.endDate = occurrence.startDate->addingTimeInterval(length);
    return occurrence;
}

} // namespace Companion
