#include "Platform/EventStore/ICalendar/ExceptionText.h"

#include "Platform/EventStore/ICalendar/PropertyValue.h"

#include <array>
#include <string_view>

namespace Platform::ICalendar {
namespace {

constexpr std::array<std::string_view, 4> textNames{"SUMMARY", "DESCRIPTION", "LOCATION", "URL"};

// When it is, how it repeats, and its version.
constexpr std::array<std::string_view, 13> namesApart{
    "UID",   "DTSTAMP",  "CREATED", "LAST-MODIFIED", "SEQUENCE", "RECURRENCE-ID", "DTSTART",
    "DTEND", "DURATION", "RRULE",   "EXRULE",        "RDATE",    "EXDATE"};

bool readsAlike(std::string_view name, std::string_view left, std::string_view right) {
    if (name == "URL") return PropertyValue(left).uri() == PropertyValue(right).uri();
    return PropertyValue(left).text() == PropertyValue(right).text();
}

} // namespace

void takeTexts(ComponentText& series, ComponentText const& exception) {
    for (auto const name : textNames) {
        auto const own = exception.first(name);
        if (!own) continue;
        auto const known = series.first(name);
        if (!known) {
            series.add(name, own->parameters, own->value);
        } else if (!readsAlike(name, known->value, own->value)) {
            series.replace(known->line, own->parameters, own->value);
        }
    }
}

bool differsFrom(ComponentText const& series, ComponentText const& exception) {
    return series.contentApartFrom(namesApart) != exception.contentApartFrom(namesApart);
}

} // namespace Platform::ICalendar
