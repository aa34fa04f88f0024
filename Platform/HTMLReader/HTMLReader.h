#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Platform {

/// Reads HTML as a person would see it, with the pictures and the styling taken away.
class HTMLReader {
public:
    virtual ~HTMLReader() = default;

    /// The visible text of `html`, which is UTF-8 bytes. Blocks stand on lines of their own; nothing is
    /// trimmed at the ends. Absent when the bytes are not UTF-8 or the reader cannot work at all; malformed
    /// HTML is read as far as it makes sense.
    [[nodiscard]] virtual std::optional<std::string> plainText(std::string_view html) const = 0;
};

} // namespace Platform
