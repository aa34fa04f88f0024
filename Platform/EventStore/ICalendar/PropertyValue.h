#pragma once

#include <string>
#include <string_view>

namespace Platform::ICalendar {

/// A property's value as it stands in the file, still folded and escaped; decoded when it is asked for, so
/// that reading a calendar copies no text. Valid as long as the file's bytes are.
class PropertyValue {
public:
    explicit PropertyValue(std::string_view raw);

    /// The bytes after the colon, folds included, without the final line break.
    [[nodiscard]] std::string_view raw() const;

    /// As TEXT (RFC 5545 §3.3.11): unfolded, `\n \N \, \; \\` decoded. Valid UTF-8 without NUL: what is not
    /// becomes U+FFFD.
    [[nodiscard]] std::string text() const;

    /// As URI: unfolded and trimmed, nothing unescaped. Valid UTF-8 without NUL.
    [[nodiscard]] std::string uri() const;

private:
    std::string_view bytes;
};

} // namespace Platform::ICalendar
