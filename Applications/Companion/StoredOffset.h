#pragma once

#include "WidgetExtension/ScheduleWidgetServices.h"

#include <cstdint>

namespace Companion {

/// The same services, with `offset` as though it were stored; nothing is.
WidgetExtension::ScheduleWidgetServices withStoredOffset(WidgetExtension::ScheduleWidgetServices services,
                                                         std::int64_t offset);

} // namespace Companion
