#include "CalendarProviders/EnabledCalendarProvidersStore.h"

#include "CalendarProviders/AccountProviderSetFile.h"

#include <optional>
#include <string_view>

namespace CalendarProviders::EnabledCalendarProvidersStore {
namespace {

constexpr std::string_view folderName = "Quillora";
constexpr std::string_view fileName = "enabledCalendarProviders.json";

std::optional<std::filesystem::path> fileURL(Platform::FileManager const& files) {
    auto const applicationSupport = files.applicationSupportDirectory();
    if (!applicationSupport) return std::nullopt;
    auto const folder = *applicationSupport / folderName;
    // A folder that cannot be made shows in the read or write that follows, which stays silent.
    static_cast<void>(files.createDirectory(folder));
    return folder / fileName;
}

void clearQuarantine(Platform::FileManager const& files, std::filesystem::path const& path) {
    static_cast<void>(files.clearQuarantineProperties(path));
}

} // namespace

std::set<AccountProviderEnum> load(Platform::FileManager const& files) {
    auto const path = fileURL(files);
    if (!path) return {};
    return AccountProviderSetFile::load(files, *path);
}

void save(Platform::FileManager const& files, std::set<AccountProviderEnum> const& providers) {
    auto const path = fileURL(files);
    if (!path) return;
    AccountProviderSetFile::save(files, *path, providers);
    clearQuarantine(files, *path);
}

} // namespace CalendarProviders::EnabledCalendarProvidersStore
