#include "Foundation/UUID.h"

#include "Foundation/FatalError.h"

#include <cerrno>
#include <cstddef>

#include <sys/random.h>

namespace Foundation {
namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

bool isDashBefore(std::size_t byteIndex) {
    return byteIndex == 4 || byteIndex == 6 || byteIndex == 8 || byteIndex == 10;
}

std::optional<std::uint8_t> hexValue(char digit) {
    if (digit >= '0' && digit <= '9') return static_cast<std::uint8_t>(digit - '0');
    if (digit >= 'A' && digit <= 'F') return static_cast<std::uint8_t>(digit - 'A' + 10);
    if (digit >= 'a' && digit <= 'f') return static_cast<std::uint8_t>(digit - 'a' + 10);
    return std::nullopt;
}

} // namespace

UUID UUID::random() {
    UUID uuid{};
    ssize_t filled = 0;
    // Sixteen bytes are never given in part, but a signal may come before the pool is ready.
    do {
        filled = ::getrandom(uuid.bytes.data(), uuid.bytes.size(), 0);
    } while (filled < 0 && errno == EINTR);
    if (filled != static_cast<ssize_t>(uuid.bytes.size())) fatalError("the system gives no random bytes");

    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0F) | 0x40);
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3F) | 0x80);
    return uuid;
}

std::optional<UUID> UUID::fromText(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    UUID uuid{};
    std::size_t position = 0;
    for (std::size_t index = 0; index < uuid.bytes.size(); ++index) {
        if (isDashBefore(index) && text[position++] != '-') return std::nullopt;
        auto const high = hexValue(text[position++]);
        auto const low = hexValue(text[position++]);
        if (!high || !low) return std::nullopt;
        uuid.bytes[index] = static_cast<std::uint8_t>(*high << 4 | *low);
    }
    return uuid;
}

std::string UUID::uuidString() const {
    std::string text;
    text.reserve(36);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if (isDashBefore(index)) text += '-';
        text += hexDigits[bytes[index] >> 4];
        text += hexDigits[bytes[index] & 0x0F];
    }
    return text;
}

} // namespace Foundation
