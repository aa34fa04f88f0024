#include "Platform/EventStore/ICalendar/ExpansionWindow.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <algorithm>
#include <cmath>

namespace Platform::ICalendar {

std::optional<ExpansionWindow> expansionWindow(Foundation::Date from, Foundation::Date to) {
    if (std::isnan(from.secondsSince1970) || std::isnan(to.secondsSince1970)) return std::nullopt;
    auto const clamped = [](double seconds) {
        return std::clamp(seconds, static_cast<double>(firstSecond - secondsPerDay),
                          static_cast<double>(lastSecond + secondsPerDay));
    };
    return ExpansionWindow{.from = from.secondsSince1970,
                           .to = to.secondsSince1970,
                           .firstSecond =
                               static_cast<std::int64_t>(std::floor(clamped(from.secondsSince1970))),
                           .lastSecond = static_cast<std::int64_t>(std::ceil(clamped(to.secondsSince1970)))};
}

} // namespace Platform::ICalendar
