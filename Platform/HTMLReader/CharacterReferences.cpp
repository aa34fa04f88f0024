#include "Platform/HTMLReader/CharacterReferences.h"

#include <algorithm>
#include <cstdint>

namespace Platform {

namespace {

struct NamedReference {
    std::string_view name; ///< Without "&", with its semicolon unless it may go without.
    char32_t first;
    char32_t second = 0;
};

// The names that the HTML standard knows, in the order of their bytes.
constexpr NamedReference namedReferences[] = {
#include "Platform/HTMLReader/NamedReferences.inc"
};
static_assert(std::ranges::is_sorted(namedReferences, {}, &NamedReference::name));

constexpr std::size_t longestName = 32;
constexpr std::size_t longestNameWithoutSemicolon = 6;
constexpr std::size_t shortestName = 2;

constexpr char32_t replacement = 0xFFFD;

// Numbers 128 to 159 are read as that old code page, as pages have always meant them.
constexpr std::array<char32_t, 32> windows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t characterNumbered(char32_t number) {
    if (number >= 0x80 && number < 0x80 + windows1252.size()) return windows1252[number - 0x80];
    bool const isSurrogate = number >= 0xD800 && number <= 0xDFFF;
    if (number == 0 || number > 0x10FFFF || isSurrogate) return replacement;
    return number;
}

// The digit's value; `base` when the character is none.
unsigned digitValue(char character, unsigned base) {
    unsigned value = base;
    if (character >= '0' && character <= '9') value = static_cast<unsigned>(character - '0');
    if (character >= 'a' && character <= 'f') value = static_cast<unsigned>(character - 'a') + 10;
    if (character >= 'A' && character <= 'F') value = static_cast<unsigned>(character - 'A') + 10;
    return std::min(value, base);
}

std::optional<CharacterReference> numberedReferenceAt(std::string_view text) {
    bool const isHexadecimal = text.size() > 2 && (text[2] == 'x' || text[2] == 'X');
    unsigned const base = isHexadecimal ? 16 : 10;
    std::size_t const firstDigit = isHexadecimal ? 3 : 2;
    std::size_t position = firstDigit;
    char32_t number = 0;
    for (; position < text.size(); ++position) {
        auto const digit = digitValue(text[position], base);
        if (digit == base) break;
        // Far past the last character already; more digits change nothing.
        if (number <= 0x10FFFF) number = number * base + digit;
    }
    if (position == firstDigit) return std::nullopt;
    if (position < text.size() && text[position] == ';') ++position;
    return CharacterReference{.scalars = {characterNumbered(number), 0}, .length = position};
}

std::optional<CharacterReference> named(std::string_view name) {
    auto const* const found = std::ranges::lower_bound(namedReferences, name, {}, &NamedReference::name);
    if (found == std::end(namedReferences) || found->name != name) return std::nullopt;
    return CharacterReference{.scalars = {found->first, found->second}, .length = name.size() + 1};
}

bool isLetterOrDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
}

std::optional<CharacterReference> namedReferenceAt(std::string_view text) {
    auto const candidate = text.substr(1, longestName);
    auto const letters =
        static_cast<std::size_t>(std::ranges::find_if_not(candidate, isLetterOrDigit) - candidate.begin());
    if (letters < candidate.size() && candidate[letters] == ';') {
        if (auto const found = named(candidate.substr(0, letters + 1))) return found;
    }
    for (auto length = std::min(letters, longestNameWithoutSemicolon); length >= shortestName; --length) {
        if (auto const found = named(candidate.substr(0, length))) return found;
    }
    return std::nullopt;
}

} // namespace

std::optional<CharacterReference> characterReferenceAt(std::string_view text) {
    if (text.size() < 2 || text[0] != '&') return std::nullopt;
    return text[1] == '#' ? numberedReferenceAt(text) : namedReferenceAt(text);
}

} // namespace Platform
