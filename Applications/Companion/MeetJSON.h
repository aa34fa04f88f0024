#pragma once

#include "Foundation/JSON.h"
#include "Meetings/MeetEntity.h"

namespace Companion {

/// A meet for programs: the record's fields by their names, absent ones left out, instants in UTC. The texts
/// are the calendar's own.
Foundation::JSON::Object meetJSON(Meetings::MeetEntity const& meet);

} // namespace Companion
