#pragma once

#include "Foundation/Date.h"
#include "Foundation/JSON.h"
#include "Meetings/MeetEntity.h"

#include <cstdint>
#include <string>

namespace Meetings {

/// What both requests that carry an event send, in the order of the keys.
struct EventRequestFields {
    std::string evtTitle;
    Foundation::Date evtSchedule;    ///< Start; sent as ISO 8601.
    std::int64_t evtDurationMinutes; ///< Whole minutes, truncated.
    bool evtHasAlarm;                ///< Always false, on purpose: a meet carries no alarm flag.
    std::string evtDescription;
    std::string evtRepeat;
    std::string evtCustomRepeat;

    /// A duration that is not finite, or beyond 64 bits of minutes, is a fatal error.
    static EventRequestFields of(MeetEntity const& meet);

    [[nodiscard]] Foundation::JSON::Value encode() const;

    bool operator==(EventRequestFields const&) const = default;
};

} // namespace Meetings
