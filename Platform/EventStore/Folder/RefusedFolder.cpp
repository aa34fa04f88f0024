#include "Platform/EventStore/Folder/RefusedFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Platform {

namespace {

std::filesystem::path whatIsClosed(std::filesystem::path const& folder) {
    std::filesystem::path above;
    for (auto const& part : folder.parent_path()) {
        above /= part;
        if (::faccessat(AT_FDCWD, above.c_str(), X_OK, AT_EACCESS) != 0) return above;
    }
    return folder;
}

RefusedFolder refusedFolder(std::filesystem::path const& folder) {
    auto closed = whatIsClosed(folder);
    struct stat status{};
    bool const isClosedByOther = ::stat(closed.c_str(), &status) == 0 && status.st_uid != ::geteuid();
    return {.folder = folder, .closed = std::move(closed), .isClosedByOther = isClosedByOther};
}

} // namespace

bool isRefused(std::filesystem::path const& folder) {
    std::error_code failure;
    std::filesystem::directory_iterator const probe(folder, failure);
    return failure == std::errc::permission_denied;
}

bool hasNativeCalendar(CalendarStorePlaces const& places) {
    std::error_code failure;
    return std::filesystem::is_directory(places.nativeCalendar, failure) ||
           failure == std::errc::permission_denied;
}

std::vector<RefusedFolder> refusedFolders(CalendarStorePlaces const& places,
                                          std::vector<CalendarRoot> const& roots) {
    std::vector<RefusedFolder> refused;
    if (hasNativeCalendar(places) && isRefused(places.nativeCalendar))
        refused.push_back(refusedFolder(places.nativeCalendar));
    for (auto const& root : roots)
        if (root.path.is_absolute() && isRefused(root.path)) refused.push_back(refusedFolder(root.path));
    return refused;
}

} // namespace Platform
