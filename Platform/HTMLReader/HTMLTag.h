#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Platform {

/// A start or end tag, with the little of it that the visible text depends on.
struct HTMLTag {
    std::string name; ///< In lower case; of an over-long one only the beginning.
    bool isEnd = false;
    bool isSelfClosing = false;         ///< Ends in "/>".
    bool isHidden = false;              ///< By the attribute "hidden" or by a style of "display: none".
    std::optional<std::int32_t> number; ///< The attribute "start" or "value", whichever comes first.
    std::size_t length = 0;             ///< Bytes from "<" to ">".
};

/// The tag that `text` begins with: "<" or "</", a letter, and so on to a ">" outside quotes. Absent when it
/// has no end.
std::optional<HTMLTag> tagAt(std::string_view text);

} // namespace Platform
