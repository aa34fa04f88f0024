#pragma once

#include "Meetings/Remote/EventRequestFields.h"

namespace Meetings {

/// Body of the request that updates an event.
struct UpdateEventRequestDTO : EventRequestFields {
    explicit UpdateEventRequestDTO(MeetEntity const& meet) : EventRequestFields(of(meet)) {}
};

} // namespace Meetings
