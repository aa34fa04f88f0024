#pragma once

#include "Platform/EventStore/ICalendar/ComponentText.h"
#include "Platform/EventStore/ICalendar/SeriesTimes.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace Platform::ICalendar {

/// Which times of a list stay, by what they mean on the master's clock; a bare day of a timed series is one.
using KeepsTime = std::function<bool(std::int64_t local, bool isDay)>;

/// Takes out of the EXDATEs or RDATEs of `event` what `keeps` does not want, and moves the rest. A line of
/// which nothing goes and nothing moves is not touched. `owner` is the event that the text was made of.
void rewriteTimeLists(ComponentText& event, std::string_view name, ClockedEvent const& owner,
                      SeriesTimes const& times, KeepsTime const& keeps, TimeMapping const& mapping);

} // namespace Platform::ICalendar
