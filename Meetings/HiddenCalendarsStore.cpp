#include "Meetings/HiddenCalendarsStore.h"

#include "Foundation/JSON.h"
#include "Platform/Files/AppGroupFile.h"

#include <filesystem>
#include <vector>

namespace JSON = Foundation::JSON;

namespace Meetings::HiddenCalendarsStore {
namespace {

constexpr std::string_view appGroupIdentifier = "group.quillora";
constexpr std::string_view fileName = "hiddenCalendarIdentifiers.json";

std::filesystem::path fileURL(Platform::FileManager const& files) {
    return Platform::appGroupFile(files, appGroupIdentifier, fileName);
}

} // namespace

std::set<std::string> load(Platform::FileManager const& files) {
    auto const content = files.contents(fileURL(files), Platform::largestPreferenceFile);
    if (!content) return {};
    auto const document = JSON::parse(*content);
    if (!document) return {};
    auto const identifiers = JSON::textList(*document);
    if (!identifiers) return {};
    return {identifiers->begin(), identifiers->end()};
}

void save(Platform::FileManager const& files, Platform::NotificationCenter& notifications,
          std::set<std::string> const& identifiers) {
    auto const document = JSON::serialize(JSON::Array(identifiers.begin(), identifiers.end()));
    if (!document) return;
    // The announcement follows the attempt, on purpose also a failed one: observers read the file again.
    static_cast<void>(files.writeAtomically(fileURL(files), *document));
    notifications.post(hiddenCalendarsDidChange);
}

void clear(Platform::FileManager const& files) {
    static_cast<void>(files.removeItem(fileURL(files)));
}

} // namespace Meetings::HiddenCalendarsStore
