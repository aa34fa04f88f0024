#include "Applications/Companion/MeetIdentifier.h"

namespace Companion {

std::optional<std::string> identifierDigits(std::string_view text) {
    std::string digits;
    for (char const character : text) {
        if (character == '-') continue;
        bool const isLower = character >= 'a' && character <= 'f';
        bool const isDigit = (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
        if (!isLower && !isDigit) return std::nullopt;
        digits += isLower ? static_cast<char>(character - 'a' + 'A') : character;
    }
    return digits.empty() ? std::nullopt : std::optional(digits);
}

bool isCalled(Meetings::MeetEntity const& meet, std::string const& digits) {
    return identifierDigits(meet.metId.uuidString()).value_or("").starts_with(digits);
}

} // namespace Companion
