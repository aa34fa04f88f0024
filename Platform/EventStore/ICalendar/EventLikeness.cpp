#include "Platform/EventStore/ICalendar/EventLikeness.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {
namespace {

/// Compares what stands in two files, each of which numbers its zones itself.
class Likeness {
public:
    Likeness(ClockedEvent const& left, ClockedEvent const& right)
        : left(*left.component),
          right(*right.component),
          leftZones(left.clocks->file->zoneNames),
          rightZones(right.clocks->file->zoneNames) {}

    [[nodiscard]] bool isWhole() const { return areTextsAlike() && areTimesAlike(); }

private:
    [[nodiscard]] bool areTextsAlike() const {
        return isSame(left.summary, right.summary) && isSame(left.description, right.description) &&
               isSame(left.location, right.location) && isSame(left.url, right.url);
    }

    [[nodiscard]] bool areTimesAlike() const {
        return isSame(left.start, right.start) && isSame(left.end, right.end) &&
               left.duration == right.duration && left.status == right.status && left.rules == right.rules &&
               left.exceptionRules == right.exceptionRules &&
               areSame(left.exceptionDates, right.exceptionDates) &&
               areSame(left.recurrenceDates, right.recurrenceDates);
    }

    static bool isSame(std::optional<PropertyValue> const& one, std::optional<PropertyValue> const& other) {
        auto const bytes = [](auto const& value) { return value ? value->raw() : std::string_view(); };
        return bytes(one) == bytes(other);
    }

    [[nodiscard]] bool isSame(CalendarTime const& one, CalendarTime const& other) const {
        if (one.form != other.form || one.localSeconds != other.localSeconds) return false;
        return one.form != TimeForm::zoned || leftZones[one.zone] == rightZones[other.zone];
    }

    [[nodiscard]] bool isSame(std::optional<CalendarTime> const& one,
                              std::optional<CalendarTime> const& other) const {
        return one && other ? isSame(*one, *other) : one.has_value() == other.has_value();
    }

    [[nodiscard]] bool isSame(RecurrenceDate const& one, RecurrenceDate const& other) const {
        return isSame(one.start, other.start) && isSame(one.end, other.end) && one.duration == other.duration;
    }

    template <typename Time>
    [[nodiscard]] bool areSame(std::vector<Time> const& some, std::vector<Time> const& others) const {
        return std::ranges::equal(some, others,
                                  [this](Time const& one, Time const& other) { return isSame(one, other); });
    }

    EventComponent const& left;
    EventComponent const& right;
    std::vector<std::string> const& leftZones;
    std::vector<std::string> const& rightZones;
};

} // namespace

bool sayTheSame(ClockedEvent const& left, ClockedEvent const& right) {
    return Likeness(left, right).isWhole();
}

} // namespace Platform::ICalendar
