#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Foundation {

/// Sixteen bytes in the text form of RFC 4122; any bytes are allowed, no version or variant is implied.
struct UUID {
    std::array<std::uint8_t, 16> bytes;

    /// A fresh random one (version 4) from the system's random source.
    static UUID random();

    /// Reads the 8-4-4-4-12 form, either letter case. Absent for anything else.
    static std::optional<UUID> fromText(std::string_view text);

    /// Upper-case 8-4-4-4-12 hexadecimal.
    [[nodiscard]] std::string uuidString() const;

    friend auto operator<=>(UUID const&, UUID const&) = default;
};

} // namespace Foundation
