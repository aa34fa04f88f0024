#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace Platform {

/// What a character reference stands for.
struct CharacterReference {
    std::array<char32_t, 2> scalars; ///< The second is 0 for all but a few names.
    std::size_t length;              ///< Bytes of the reference, its "&" included.
};

/// The reference that `text` begins with: decimal, hexadecimal or named as the HTML standard reads them,
/// which knows some names without their semicolon. A number that is no character stands for U+FFFD. Absent
/// when the
/// "&" is an ordinary character.
std::optional<CharacterReference> characterReferenceAt(std::string_view text);

} // namespace Platform
