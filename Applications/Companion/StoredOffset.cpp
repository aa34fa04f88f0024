#include "Applications/Companion/StoredOffset.h"

#include "Applications/Companion/UnsavedFiles.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <memory>

namespace Companion {

WidgetExtension::ScheduleWidgetServices withStoredOffset(WidgetExtension::ScheduleWidgetServices services,
                                                         std::int64_t offset) {
    auto const files = std::make_shared<UnsavedFiles>(services.files);
    WidgetExtension::ScheduleWidgetDayOffsetStore::save(*files, offset);
    services.files = files;
    return services;
}

} // namespace Companion
