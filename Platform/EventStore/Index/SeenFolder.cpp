#include "Platform/EventStore/Index/SeenFolder.h"

#include "Platform/EventStore/Index/IndexFile.h"
#include "Platform/EventStore/Index/Mixing.h"

#include <cstddef>
#include <fcntl.h>
#include <span>
#include <unistd.h>

namespace Platform {

namespace {

constexpr std::uint64_t magic = 0x6E65'6573'6C69'7551U;

struct Record {
    std::uint64_t magic;
    std::uint64_t folder; // Stands for its path.
    SeenFolder seen;
    std::uint64_t checksum; // Of all before it.
};

std::uint64_t checksumOf(Record const& record) {
    return hashOf(std::as_bytes(std::span(&record, 1)).first(offsetof(Record, checksum)), magic);
}

} // namespace

SeenFolderFile::SeenFolderFile(std::filesystem::path const& indexFile, std::uint64_t folder)
    : file(indexFile),
      folder(folder) {
    file.replace_extension(suffix);
}

std::optional<SeenFolder> SeenFolderFile::load() const {
    auto const descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return std::nullopt;
    Record record{};
    auto const length = ::read(descriptor, &record, sizeof record);
    ::close(descriptor);
    bool const isWhole = length == sizeof record && record.magic == magic && record.folder == folder &&
                         record.checksum == checksumOf(record);
    return isWhole ? std::optional(record.seen) : std::nullopt;
}

void SeenFolderFile::save(SeenFolder const& seen) const {
    Record record{.magic = magic, .folder = folder, .seen = seen, .checksum = 0};
    record.checksum = checksumOf(record);
    if (writeIndex(file, std::as_bytes(std::span(&record, 1)))) remove();
}

void SeenFolderFile::remove() const {
    ::unlink(file.c_str());
}

} // namespace Platform
