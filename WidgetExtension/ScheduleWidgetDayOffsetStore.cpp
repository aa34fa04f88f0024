#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include "Foundation/JSON.h"
#include "Platform/Files/AppGroupFile.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace JSON = Foundation::JSON;

namespace WidgetExtension::ScheduleWidgetDayOffsetStore {
namespace {

constexpr std::string_view appGroupIdentifier = "group.quillora";
constexpr std::string_view fileName = "scheduleWidgetDayOffset.json";

std::filesystem::path fileURL(Platform::FileManager const& files) {
    return Platform::appGroupFile(files, appGroupIdentifier, fileName);
}

} // namespace

std::int64_t load(Platform::FileManager const& files) {
    auto const content = files.contents(fileURL(files), Platform::largestPreferenceFile);
    if (!content) return 0;
    auto const document = JSON::parse(*content);
    if (!document) return 0;
    // Only `save` clamps, on purpose.
    return JSON::integer(*document).value_or(0);
}

void save(Platform::FileManager const& files, std::int64_t offset) {
    auto const clamped = std::clamp(offset, -maxOffset, maxOffset);
    auto const document = JSON::serialize(clamped);
    if (!document) return;
    static_cast<void>(files.writeAtomically(fileURL(files), *document));
}

} // namespace WidgetExtension::ScheduleWidgetDayOffsetStore
