#pragma once

#include "Foundation/JSON.h"
#include "Platform/Face/FaceLayout.h"
#include "Platform/WidgetHost/Timeline.h"
#include "WidgetExtension/ScheduleWidgetEntry.h"

namespace Companion {

/// The day as version 1 of the machine-readable form: the entry with all its meets, when to ask again, and
/// the face's rows. Instants are in UTC; what is absent is left out.
Foundation::JSON::Value dayJSON(WidgetExtension::ScheduleWidgetEntry const& entry,
                                Platform::TimelineReloadPolicy const& policy,
                                Platform::FaceLayout const& layout);

} // namespace Companion
