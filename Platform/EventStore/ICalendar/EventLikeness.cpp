#include "Platform/EventStore/ICalendar/EventLikeness.h"

#include "Foundation/Text.h"

#include <string>

namespace Platform::ICalendar {
namespace {

std::string titleOf(ClockedEvent const& event) {
    auto const& summary = event.component->summary;
    return summary ? Foundation::Text::trimmingWhitespacesAndNewlines(summary->text()) : std::string();
}

// On one clock for both, the viewer being anywhere.
bool beginTogether(ClockedEvent const& left, ClockedEvent const& right) {
    auto const& one = left.component->start;
    auto const& other = right.component->start;
    if ((one.form == TimeForm::date) != (other.form == TimeForm::date)) return false;
    EventZone const utc(Foundation::TimeZone::utc());
    return left.instant(one, utc) == right.instant(other, utc);
}

} // namespace

bool areAlike(ClockedEvent const& left, ClockedEvent const& right) {
    return titleOf(left) == titleOf(right) && beginTogether(left, right);
}

} // namespace Platform::ICalendar
