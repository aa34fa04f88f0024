#include "Foundation/SecretBytes.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include <sys/mman.h>

namespace Foundation {

class SecretBytes::Pages {
public:
    explicit Pages(std::size_t size)
        : size(size),
          start(::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (start == MAP_FAILED) throw std::bad_alloc();
        // Best effort, both: an old kernel or a small limit on locked memory is no reason to have no key.
        ::madvise(start, size, MADV_DONTDUMP);
        ::mlock(start, size);
    }
    ~Pages() {
        ::explicit_bzero(start, size);
        ::munmap(start, size);
    }
    Pages(Pages const&) = delete;
    Pages& operator=(Pages const&) = delete;

    [[nodiscard]] std::span<std::byte> bytes() const { return {static_cast<std::byte*>(start), size}; }

private:
    std::size_t size;
    void* start;
};

SecretBytes::SecretBytes(std::span<std::byte const> bytes)
    : SecretBytes(filledBy(bytes.size(), [bytes](auto place) { std::ranges::copy(bytes, place.begin()); })) {}

SecretBytes SecretBytes::filledBy(std::size_t size, std::function<void(std::span<std::byte>)> const& fill) {
    if (size == 0) return {};
    auto const pages = std::make_shared<Pages const>(size);
    fill(pages->bytes());
    return SecretBytes(pages);
}

std::span<std::byte const> SecretBytes::bytes() const {
    if (!pages) return {};
    return pages->bytes();
}

bool operator==(SecretBytes const& left, SecretBytes const& right) {
    auto const mine = left.bytes();
    auto const theirs = right.bytes();
    if (mine.size() != theirs.size()) return false;
    std::byte difference{};
    for (std::size_t index = 0; index < mine.size(); ++index)
        difference |= mine[index] ^ theirs[index];
    return difference == std::byte{};
}

} // namespace Foundation
