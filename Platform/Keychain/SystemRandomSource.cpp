#include "Platform/Keychain/SystemRandomSource.h"

#include <cerrno>

#include <sys/random.h>

namespace Platform {

std::int32_t SystemRandomSource::copyBytes(std::span<std::byte> buffer) {
    while (!buffer.empty()) {
        auto const count = ::getrandom(buffer.data(), buffer.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        buffer = buffer.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

} // namespace Platform
