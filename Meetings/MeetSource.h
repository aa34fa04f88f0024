#pragma once

#include "Foundation/RawValue.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace Meetings {

/// Which repository owns a meet: the local calendar store or the remote service.
enum class MeetSource : std::uint8_t { eventKit, backend };

} // namespace Meetings

template <>
inline constexpr auto Foundation::rawValues<Meetings::MeetSource> =
    std::to_array<std::pair<Meetings::MeetSource, std::string_view>>({
        {Meetings::MeetSource::eventKit, "eventKit"},
        {Meetings::MeetSource::backend, "backend"},
    });
