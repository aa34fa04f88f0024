#include "Platform/EventStore/ICalendar/SeriesParts.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Platform::ICalendar {

SeriesParts::SeriesParts(std::vector<CalendarSource> const& sources, std::string uid, ZoneCatalog& zones)
    : givenSources(sources),
      ownUID(std::move(uid)) {
    clocks.reserve(sources.size());
    for (std::size_t index = 0; index < sources.size(); ++index) {
        auto const& own = clocks.emplace_back(*sources[index].file, zones);
        for (auto const& event : sources[index].file->events) {
            if (event.uid != ownUID) continue;
            parts.push_back({.source = index, .event = {.component = &event, .clocks = &own}});
            counting.add(parts.back().event);
        }
    }
    if (!parts.empty()) counting.settle();
}

SeriesPart const& SeriesParts::partOf(EventComponent const* component) const {
    return *std::ranges::find(parts, component, [](SeriesPart const& part) { return part.event.component; });
}

ComponentText SeriesParts::textOf(SeriesPart const& part) const {
    auto const& component = *part.event.component;
    return ComponentText(
        std::string_view(givenSources[part.source].bytes).substr(component.offset, component.length));
}

std::vector<RuleText> SeriesParts::rules() const {
    std::vector<RuleText> rules;
    if (!counting.master()) return rules;
    for (auto const& property : textOf(master()).properties("RRULE"))
        rules.emplace_back(property.value);
    return rules;
}

} // namespace Platform::ICalendar
