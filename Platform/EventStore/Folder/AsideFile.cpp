#include "Platform/EventStore/Folder/AsideFile.h"

#include "Foundation/MD5.h"
#include "Foundation/UUID.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform {

namespace {

constexpr std::string_view prefix = ".quillora-";
constexpr std::string_view suffix = ".tmp";
constexpr std::size_t digestLength = 16;
constexpr std::size_t randomLength = 8;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

bool isHexadecimal(std::string_view text) {
    return text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

} // namespace

std::string AsideName::digestOf(std::string_view content) {
    auto const digest = Foundation::md5(content);
    std::string text;
    for (std::size_t byte = 0; byte < digestLength / 2; ++byte)
        text += fmt::format("{:02x}", digest[byte]);
    return text;
}

std::string AsideName::digestOfNothing() {
    return std::string(digestLength, '0');
}

std::string AsideName::text() const {
    auto const random = Foundation::UUID::random();
    std::string unique;
    for (std::size_t byte = 0; byte < randomLength / 2; ++byte)
        unique += fmt::format("{:02x}", random.bytes[byte]);
    constexpr std::size_t longestName = 255;
    auto text = fmt::format("{}{}-{}-{}-", prefix, oldDigest, newDigest, unique);
    if (text.size() + fileName.size() + suffix.size() <= longestName) text += fileName;
    text += suffix;
    return text;
}

std::optional<AsideName> AsideName::fromText(std::string_view text) {
    constexpr auto fixed = prefix.size() + 2 * (digestLength + 1) + randomLength + 1;
    bool const isOurs =
        text.size() >= fixed + suffix.size() && text.starts_with(prefix) && text.ends_with(suffix);
    if (!isOurs) return std::nullopt;
    auto const oldDigest = text.substr(prefix.size(), digestLength);
    auto const newDigest = text.substr(prefix.size() + digestLength + 1, digestLength);
    if (!isHexadecimal(oldDigest) || !isHexadecimal(newDigest)) return std::nullopt;
    return AsideName{.oldDigest = std::string(oldDigest),
                     .newDigest = std::string(newDigest),
                     .fileName = std::string(text.substr(fixed, text.size() - fixed - suffix.size()))};
}

AsideFile::AsideFile(std::filesystem::path const& folder, AsideName const& name)
    : file(folder / name.text()) {}

AsideFile::~AsideFile() {
    if (isThere) ::unlink(file.c_str());
}

std::error_code AsideFile::fill(std::string_view content, FileRights const& rights) {
    constexpr mode_t privateMode = 0600;
    FileDescriptor descriptor(
        ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, privateMode));
    if (!descriptor.isOpen()) return lastError();
    isThere = true;
    return write(descriptor, content, rights);
}

std::error_code AsideFile::write(FileDescriptor& descriptor, std::string_view content,
                                 FileRights const& rights) {
    struct stat status{};
    if (::fstat(descriptor.get(), &status) != 0) return lastError();
    ownInode = status.st_ino;
    if (auto const failure = rights.giveTo(descriptor.get())) return failure;
    while (!content.empty()) {
        auto const written = ::write(descriptor.get(), content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return lastError();
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::fsync(descriptor.get()) != 0) return lastError();
    return descriptor.close();
}

} // namespace Platform
