#include "Platform/EventStore/Folder/FileRights.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace Platform {
namespace {

constexpr std::string_view accessList = "system.posix_acl_access";
constexpr mode_t groupBits = 0070;
constexpr mode_t otherBits = 0007;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

bool isKept(std::string_view name) {
    return name.starts_with("user.") || name == accessList;
}

// What cannot be read is as good as not there: a file system without such notes, or another's.
std::optional<std::string> attribute(std::filesystem::path const& file, std::string const& name) {
    auto const size = ::lgetxattr(file.c_str(), name.c_str(), nullptr, 0);
    if (size < 0) return std::nullopt;
    std::string value(static_cast<std::size_t>(size), '\0');
    auto const length = ::lgetxattr(file.c_str(), name.c_str(), value.data(), value.size());
    if (length < 0) return std::nullopt;
    value.resize(static_cast<std::size_t>(length));
    return value;
}

std::vector<std::pair<std::string, std::string>> attributesOf(std::filesystem::path const& file) {
    std::vector<std::pair<std::string, std::string>> found;
    auto const size = ::llistxattr(file.c_str(), nullptr, 0);
    if (size <= 0) return found;
    std::string names(static_cast<std::size_t>(size), '\0');
    auto const length = ::llistxattr(file.c_str(), names.data(), names.size());
    if (length <= 0) return found;
    names.resize(static_cast<std::size_t>(length));
    for (std::size_t start = 0; start < names.size();) {
        std::string const name(names.c_str() + start);
        start += name.size() + 1;
        if (!isKept(name)) continue;
        if (auto value = attribute(file, name)) found.emplace_back(name, *std::move(value));
    }
    return found;
}

bool isRoomMissing(int error) {
    return error == ENOSPC || error == EDQUOT;
}

} // namespace

std::expected<FileRights, std::error_code> FileRights::of(std::filesystem::path const& file) {
    struct stat status{};
    if (::stat(file.c_str(), &status) != 0) return std::unexpected(lastError());
    return FileRights{.mode = status.st_mode & 0777,
                      .owner = status.st_uid,
                      .group = status.st_gid,
                      .attributes = attributesOf(file)};
}

std::error_code FileRights::giveTo(int descriptor) const {
    struct stat status{};
    if (::fstat(descriptor, &status) != 0) return lastError();
    auto given = mode;
    bool const hasGroup =
        !group || *group == status.st_gid || ::fchown(descriptor, static_cast<uid_t>(-1), *group) == 0;
    // Who was of the group is one of the others now, and must not gain by it.
    if (!hasGroup) given &= ~groupBits & ~(otherBits & ~((mode & groupBits) >> 3U));
    for (auto const& [name, value] : attributes) {
        bool const isList = name == accessList;
        if (isList && !hasGroup) continue;
        if (::fsetxattr(descriptor, name.c_str(), value.data(), value.size(), 0) == 0) continue;
        if (isRoomMissing(errno)) return lastError();
        // With a list the group's bits stand for the most that anybody named in it may do.
        if (isList) given &= ~groupBits;
    }
    // Also for a new file: the process's mask may have taken away more than is asked for.
    if (::fchmod(descriptor, given) != 0) return lastError();
    bool const hasOwner = !owner || *owner == status.st_uid;
    if (!hasOwner) static_cast<void>(::fchown(descriptor, *owner, static_cast<gid_t>(-1)) == 0);
    return {};
}

std::error_code FileRights::whyNotToBeChanged(std::filesystem::path const& file) const {
    constexpr mode_t anybodysWriting = 0222;
    if ((mode & anybodysWriting) == 0) return std::make_error_code(std::errc::permission_denied);
    if (::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0) return {};
    return errno == EACCES || errno == EPERM || errno == EROFS ? lastError() : std::error_code();
}

} // namespace Platform
