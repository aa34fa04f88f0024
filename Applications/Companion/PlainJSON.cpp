#include "Applications/Companion/PlainJSON.h"

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/Texts.h"

#include <cmath>
#include <cstdint>

namespace Companion {

std::string plainJSON(Foundation::JSON::Value const& value) {
    auto const document = Foundation::JSON::serialize(value);
    if (!document) throw CommandError::failed(Texts::cannotEncodeJSON());
    std::string plain;
    plain.reserve(document->size());
    for (std::size_t index = 0; index < document->size(); ++index) {
        char const character = (*document)[index];
        if (character != '\\') {
            plain += character;
            continue;
        }
        // Escapes are taken pair by pair, so that the end of "\\" is not mistaken for the start of "\/".
        char const escaped = (*document)[++index];
        if (escaped != '/') plain += character;
        plain += escaped;
    }
    return plain;
}

Foundation::JSON::Value numberValue(double value) {
    constexpr double exactIntegers = 9007199254740992.0; // 2^53
    if (value == std::trunc(value) && std::abs(value) < exactIntegers)
        return static_cast<std::int64_t>(value);
    return value;
}

} // namespace Companion
