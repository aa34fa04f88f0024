#include "CalendarProviders/EnabledCalendarAccountsStore.h"

#include "CalendarProviders/AccountProviderSetFile.h"
#include "Platform/Files/AppGroupFile.h"

#include <string_view>

namespace CalendarProviders::EnabledCalendarAccountsStore {
namespace {

constexpr std::string_view appGroupIdentifier = "group.quillora";
constexpr std::string_view fileName = "enabledCalendarAccounts.json";

} // namespace

std::filesystem::path fileURL(Platform::FileManager const& files) {
    return Platform::appGroupFile(files, appGroupIdentifier, fileName);
}

std::set<AccountProviderEnum> load(Platform::FileManager const& files) {
    return AccountProviderSetFile::load(files, fileURL(files));
}

void save(Platform::FileManager const& files, std::set<AccountProviderEnum> const& providers) {
    AccountProviderSetFile::save(files, fileURL(files), providers);
}

void clear(Platform::FileManager const& files) {
    static_cast<void>(files.removeItem(fileURL(files)));
}

} // namespace CalendarProviders::EnabledCalendarAccountsStore
