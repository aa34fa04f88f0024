#pragma once

#include <string>
#include <string_view>

namespace Platform::ICalendar {

/// `text` as a TEXT value (RFC 5545 §3.3.11). Every kind of line break becomes `\n`; control characters,
/// which the format cannot hold, are left out, and what is no UTF-8 becomes U+FFFD.
std::string escapedText(std::string_view text);

/// `text` as a URI value: without blanks and control characters at its ends, and without those inside that
/// would break the line.
std::string uriText(std::string_view text);

/// `value` as a parameter's value: quoted where it must be, with the escapes of RFC 6868.
std::string parameterText(std::string_view value);

/// A content line with its break, folded so that no physical line is longer than 75 bytes (RFC 5545 §3.1) and
/// no character is cut. `parameters` begin with ";" unless they are empty.
std::string contentLine(std::string_view name, std::string_view parameters, std::string_view value,
                        std::string_view lineBreak);

} // namespace Platform::ICalendar
