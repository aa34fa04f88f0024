#include "Applications/Companion/PlainJSON.h"

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Text.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>

namespace Companion {

namespace {

// JSON leaves the slash a choice; a path reads better without the escape.
std::string withoutEscapedSlashes(std::string_view document) {
    std::string plain;
    plain.reserve(document.size());
    for (std::size_t index = 0; index < document.size(); ++index) {
        char const character = document[index];
        if (character != '\\') {
            plain += character;
            continue;
        }
        // Escapes are taken pair by pair, so that the end of "\\" is not mistaken for the start of "\/".
        char const escaped = document[++index];
        if (escaped != '/') plain += character;
        plain += escaped;
    }
    return plain;
}

// The scalar as one or two \uXXXX.
std::string escaped(char32_t scalar) {
    constexpr char32_t beyondOneUnit = 0x10000;
    if (scalar < beyondOneUnit) return fmt::format("\\u{:04x}", static_cast<std::uint32_t>(scalar));
    auto const offset = static_cast<std::uint32_t>(scalar - beyondOneUnit);
    return fmt::format("\\u{:04x}\\u{:04x}", 0xD800 + (offset >> 10), 0xDC00 + (offset & 0x3FF));
}

// The bytes of the scalar that begins with this one, in a valid text.
std::size_t scalarLength(char first) {
    auto const lead = static_cast<unsigned char>(first);
    if (lead < 0x80) return 1;
    if (lead < 0xE0) return 2;
    return lead < 0xF0 ? 3 : 4;
}

// A program that reads it gets the same texts; a person who looks at it on a terminal sees no text that moves
// the cursor or turns the direction of writing.
std::string withEscapedControls(std::string_view document) {
    std::string harmless;
    harmless.reserve(document.size());
    while (!document.empty()) {
        auto const scalar = document.substr(0, scalarLength(document.front()));
        bool const isPrintable =
            scalar.size() == 1 ? scalar != "\x7f" : Foundation::Text::neutralized(scalar) == scalar;
        if (isPrintable) {
            harmless += scalar;
        } else {
            harmless += escaped(Foundation::Text::scalars(scalar).front());
        }
        document.remove_prefix(scalar.size());
    }
    return harmless;
}

} // namespace

std::string plainJSON(Foundation::JSON::Value const& value) {
    auto const document = Foundation::JSON::serialize(value);
    if (!document) throw CommandError::failed(Texts::cannotEncodeJSON());
    return withEscapedControls(withoutEscapedSlashes(*document));
}

Foundation::JSON::Value numberValue(double value) {
    constexpr double exactIntegers = 9007199254740992.0; // 2^53
    if (value == std::trunc(value) && std::abs(value) < exactIntegers)
        return static_cast<std::int64_t>(value);
    return value;
}

} // namespace Companion
