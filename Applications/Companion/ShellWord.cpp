#include "Applications/Companion/ShellWord.h"

#include "Foundation/Text.h"

#include <algorithm>

namespace Companion {

namespace {

// Bytes that no shell reads as anything but themselves; "~" does only at the beginning of a word.
bool isPlain(char byte) {
    bool const isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    return isLetter || (byte >= '0' && byte <= '9') || std::string_view("/._-+:@%,=").contains(byte);
}

} // namespace

std::string shellWord(std::string_view text) {
    auto const harmless = Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(text));
    if (!harmless.empty() && std::ranges::all_of(harmless, isPlain)) return harmless;
    std::string quoted = "'";
    for (char const byte : harmless)
        quoted += byte == '\'' ? std::string("'\\''") : std::string(1, byte);
    return quoted + "'";
}

} // namespace Companion
