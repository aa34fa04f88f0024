#include "Platform/EventStore/Index/IndexFile.h"

#include "Platform/EventStore/Index/Mixing.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Platform {
namespace {

using IndexFormat::blockSize;
using IndexFormat::Header;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

bool readAll(int descriptor, std::byte* target, std::size_t length, std::uint64_t offset) {
    while (length > 0) {
        auto const count = ::pread(descriptor, target, length, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        auto const done = static_cast<std::size_t>(count);
        target += done;
        length -= done;
        offset += done;
    }
    return true;
}

bool writeAll(int descriptor, std::span<std::byte const> bytes) {
    while (!bytes.empty()) {
        auto const count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace

std::uint64_t IndexFormat::checksumOf(Header const& header, std::span<std::uint64_t const> blockSums) {
    auto const covered = std::as_bytes(std::span(&header, 1)).subspan(offsetof(Header, folder));
    return hashOf(std::as_bytes(blockSums), hashOf(covered, version));
}

IndexFile::Descriptor::~Descriptor() {
    if (number >= 0) ::close(number);
}

std::optional<IndexFile> IndexFile::open(std::filesystem::path const& path, std::uint64_t folder) {
    IndexFile file(Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)));
    struct stat status{};
    if (file.descriptor.number < 0 || ::fstat(file.descriptor.number, &status) != 0) return std::nullopt;
    if (!S_ISREG(status.st_mode) || !file.readHeader(static_cast<std::uint64_t>(status.st_size)))
        return std::nullopt;
    if (file.start.folder != folder) return std::nullopt;
    return file;
}

IndexFile IndexFile::inMemory(std::vector<std::byte> image) {
    IndexFile file(Descriptor(-1));
    std::memcpy(&file.start, image.data(), sizeof file.start);
    file.body = bodyOf(file.start.bodySize);
    std::memcpy(file.body.get(), image.data() + image.size() - file.start.bodySize, file.start.bodySize);
    return file;
}

bool IndexFile::readHeader(std::uint64_t fileSize) {
    if (!readAll(descriptor.number, reinterpret_cast<std::byte*>(&start), sizeof start, 0)) return false;
    if (start.magic != IndexFormat::magic || start.bodySize > fileSize) return false;
    auto const blocks = (start.bodySize + blockSize - 1) / blockSize;
    bodyOffset = sizeof start + blocks * sizeof(std::uint64_t);
    if (fileSize != bodyOffset + start.bodySize) return false;
    sums.resize(blocks);
    auto const sumBytes = std::as_writable_bytes(std::span(sums));
    if (!readAll(descriptor.number, sumBytes.data(), sumBytes.size(), sizeof start)) return false;
    if (start.checksum != IndexFormat::checksumOf(start, sums)) return false;
    isChecked.resize(blocks);
    return true;
}

IndexFile::Body IndexFile::bodyOf(std::uint64_t size) {
    constexpr std::size_t page = 4096;
    Body body(static_cast<std::byte*>(std::aligned_alloc(page, (size / page + 1) * page)));
    if (!body) throw std::bad_alloc();
    return body;
}

void IndexFile::forget() {
    if (descriptor.number < 0) return;
    body.reset();
    isChecked.assign(isChecked.size(), false);
}

std::span<std::byte const> IndexFile::bytes(std::uint64_t offset, std::uint64_t length) {
    if (offset > start.bodySize || length > start.bodySize - offset) throw IndexDamaged();
    if (!body) body = bodyOf(start.bodySize);
    if (length > 0 && !isChecked.empty()) {
        auto const end = (offset + length + blockSize - 1) / blockSize;
        for (auto block = offset / blockSize; block < end; ++block) {
            if (isChecked[block]) continue;
            auto next = block + 1;
            while (next < end && !isChecked[next])
                ++next;
            readBlocks(block, next);
        }
    }
    return {body.get() + offset, length};
}

void IndexFile::readBlocks(std::size_t first, std::size_t end) {
    auto const offset = first * blockSize;
    auto const length = std::min(end * blockSize, start.bodySize) - offset;
    if (!readAll(descriptor.number, body.get() + offset, length, bodyOffset + offset)) throw IndexDamaged();
    for (auto block = first; block < end; ++block) {
        auto const begin = block * blockSize;
        auto const size = std::min<std::uint64_t>(blockSize, start.bodySize - begin);
        if (hashOf(std::span<std::byte const>(body.get() + begin, size), block) != sums[block])
            throw IndexDamaged();
        isChecked[block] = true;
    }
}

std::error_code writeIndex(std::filesystem::path const& path, std::span<std::byte const> image) {
    auto aside = path;
    aside += "." + std::to_string(::getpid()) + ".tmp";
    auto const descriptor =
        ::open(aside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) return lastError();
    bool const isWritten = writeAll(descriptor, image);
    auto failure = isWritten ? std::error_code() : lastError();
    ::close(descriptor);
    if (!failure && ::rename(aside.c_str(), path.c_str()) != 0) failure = lastError();
    if (failure) ::unlink(aside.c_str());
    return failure;
}

} // namespace Platform
