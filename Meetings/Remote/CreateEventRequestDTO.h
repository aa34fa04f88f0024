#pragma once

#include "Meetings/Remote/EventRequestFields.h"

namespace Meetings {

/// Body of the request that creates an event.
struct CreateEventRequestDTO : EventRequestFields {
    explicit CreateEventRequestDTO(MeetEntity const& meet) : EventRequestFields(of(meet)) {}
};

} // namespace Meetings
