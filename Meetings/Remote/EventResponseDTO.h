#pragma once

#include "Foundation/Date.h"
#include "Foundation/JSON.h"
#include "Meetings/MeetEntity.h"
#include "Platform/Appearance/Appearance.h"

#include <cstdint>
#include <expected>
#include <string>

namespace Meetings {

/// One event as the backend returns it.
struct EventResponseDTO {
    std::string evtId;
    std::string evtTitle;
    Foundation::Date evtSchedule;
    std::int64_t evtDurationMinutes;
    std::string evtDescription;
    std::string evtRepeat;
    std::string evtCustomRepeat;

    /// Every key must be there with a value of its type.
    static std::expected<EventResponseDTO, Foundation::JSON::DecodeFailure>
    decode(Foundation::JSON::Value const& value);

    /// The meet; the same event always gives the same `metId`. It bears the default colour of `appearance`
    /// and stands in the product's own calendar. Minutes beyond 64 bits of seconds are a fatal error.
    [[nodiscard]] MeetEntity toMeetEntity(Platform::Appearance const& appearance) const;

    bool operator==(EventResponseDTO const&) const = default;
};

} // namespace Meetings
