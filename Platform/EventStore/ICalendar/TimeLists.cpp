#include "Platform/EventStore/ICalendar/TimeLists.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace Platform::ICalendar {
namespace {

TimeParameters timeParameters(std::string_view parameters, CalendarFile const& file) {
    TimeParameters result;
    ParameterScanner scanner(parameters);
    while (scanner.next()) {
        if (equalsIgnoringCase(scanner.name(), "VALUE"))
            result.isDate = equalsIgnoringCase(scanner.value(), "DATE");
        if (!equalsIgnoringCase(scanner.name(), "TZID")) continue;
        auto const zone = std::ranges::find(file.zoneNames, decodedParameter(scanner.value()));
        if (zone != file.zoneNames.end())
            result.zone = static_cast<std::uint32_t>(zone - file.zoneNames.begin());
    }
    return result;
}

/// A list of times as it is being rewritten.
struct Rewriting {
    ClockedEvent const& owner;
    SeriesTimes const& times;
    KeepsTime const& keeps;
    TimeMapping const& mapping;

    // The value as it is to be written; absent when it goes.
    [[nodiscard]] std::optional<std::string> value(std::string_view text,
                                                   TimeParameters const& parameters) const {
        auto const date = parseRecurrenceDate(text, parameters);
        // What cannot be read means nothing, and stays where it is.
        if (!date) return mapping.isIdentity() ? std::optional(std::string(text)) : std::nullopt;
        auto const local = times.local(date->start, owner);
        bool const isDay = date->start.form == TimeForm::date && !times.isAllDay();
        if (!keeps(local, isDay)) return std::nullopt;
        if (mapping.isIdentity()) return std::string(text);
        auto written = mapping.written(local).value();
        bool const isPeriod = (date->duration || date->end) && mapping.to.form != TimeForm::date;
        if (isPeriod) written += '/' + lengthOf(*date);
        return written;
    }

    // A period's length as a DURATION, which holds wherever it is moved to.
    static std::string lengthOf(RecurrenceDate const& date) {
        auto const length = date.duration.value_or(CalendarDuration{
            .days = 0, .seconds = date.end ? date.end->localSeconds - date.start.localSeconds : 0});
        std::string text = "P";
        if (length.days != 0) text += std::to_string(length.days) + "D";
        if (length.seconds != 0 || length.days == 0) text += "T" + std::to_string(length.seconds) + "S";
        return text;
    }
};

} // namespace

void rewriteTimeLists(ComponentText& event, std::string_view name, ClockedEvent const& owner,
                      SeriesTimes const& times, KeepsTime const& keeps, TimeMapping const& mapping) {
    Rewriting const rewriting{.owner = owner, .times = times, .keeps = keeps, .mapping = mapping};
    auto const properties = event.properties(name);
    // From the last on: the places of those before it stay.
    for (auto property = properties.rbegin(); property != properties.rend(); ++property) {
        auto const parameters = timeParameters(property->parameters, *owner.clocks->file);
        std::string list;
        bool isWhole = true;
        for (std::string_view rest = property->value; !rest.empty();) {
            auto const comma = std::min(rest.find(','), rest.size());
            auto const text = trimmed(rest.substr(0, comma));
            rest.remove_prefix(std::min(comma + 1, rest.size()));
            auto const value = rewriting.value(text, parameters);
            isWhole = isWhole && value.has_value();
            if (!value) continue;
            if (!list.empty()) list += ',';
            list += *value;
        }
        if (isWhole && mapping.isIdentity()) continue;
        if (list.empty()) {
            event.removeLine(property->line);
        } else if (mapping.isIdentity()) {
            event.replace(property->line, property->parameters, list);
        } else {
            bool const isPeriod = list.find('/') != std::string::npos;
            auto const form = mapping.to.form;
            std::optional<std::string_view> kind;
            if (isPeriod) kind = "PERIOD";
            if (form == TimeForm::date) kind = "DATE";
            std::optional<std::string_view> zone;
            if (form == TimeForm::zoned) zone = mapping.to.zone;
            event.replace(property->line,
                          withParameter(withParameter(property->parameters, "VALUE", kind), "TZID", zone),
                          list);
        }
    }
}

} // namespace Platform::ICalendar
