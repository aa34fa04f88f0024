#include "Foundation/Text.h"

#include "Foundation/FatalError.h"

#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

namespace Foundation::Text {
namespace {

constexpr char32_t replacement = 0xFFFD;

// ICU counts in 32 bits. No text of that size gets here: every reader bounds its input far below.
std::int32_t icuLength(std::string_view text) {
    if (text.size() > INT32_MAX) fatalError("a text of more than 2 GiB cannot be processed");
    return static_cast<std::int32_t>(text.size());
}

std::uint8_t const* unsignedBytes(std::string_view text) {
    return reinterpret_cast<std::uint8_t const*>(text.data());
}

// The scalar at `position`, which moves past it; negative for a maximal ill-formed subsequence.
UChar32 nextScalar(std::string_view text, std::int32_t length, std::int32_t& position) {
    auto const* bytes = unsignedBytes(text);
    UChar32 scalar = 0;
    U8_NEXT(bytes, position, length, scalar);
    return scalar;
}

UChar32 previousScalar(std::string_view text, std::int32_t start, std::int32_t& position) {
    auto const* bytes = unsignedBytes(text);
    UChar32 scalar = 0;
    U8_PREV(bytes, start, position, scalar);
    return scalar;
}

void append(std::string& text, char32_t scalar) {
    std::array<char, U8_MAX_LENGTH> bytes{};
    std::int32_t length = 0;
    U8_APPEND_UNSAFE(reinterpret_cast<std::uint8_t*>(bytes.data()), length, scalar);
    text.append(bytes.data(), static_cast<std::size_t>(length));
}

// Length of the ASCII text at the beginning, found eight bytes at a time.
std::size_t asciiPrefix(std::string_view text) {
    std::size_t position = 0;
    for (; position + 8 <= text.size(); position += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, text.data() + position, sizeof eight);
        if ((eight & 0x8080808080808080U) != 0) break;
    }
    while (position < text.size() && static_cast<unsigned char>(text[position]) < 0x80)
        ++position;
    return position;
}

bool isWhitespace(UChar32 scalar) {
    switch (scalar) {
    case 0x09:
    case 0x20:
    case 0xA0:
    case 0x1680:
    case 0x202F:
    case 0x205F:
    case 0x3000: return true;
    // U+200B is no blank of Unicode any more, yet people paste it: it counts.
    default: return scalar >= 0x2000 && scalar <= 0x200B;
    }
}

bool isNewline(UChar32 scalar) {
    return (scalar >= 0x0A && scalar <= 0x0D) || scalar == 0x85 || scalar == 0x2028 || scalar == 0x2029;
}

bool isWhitespaceOrNewline(UChar32 scalar) {
    return isWhitespace(scalar) || isNewline(scalar);
}

// From both ends: what lies between, most of a long text, is not looked at.
std::string trimming(std::string_view text, bool (*isTrimmed)(UChar32)) {
    auto const length = icuLength(text);
    std::int32_t first = 0;
    for (auto next = first; next < length; first = next)
        if (!isTrimmed(nextScalar(text, length, next))) break;
    auto end = length;
    for (auto previous = end; previous > first; end = previous)
        if (!isTrimmed(previousScalar(text, first, previous))) break;
    return std::string(text.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(end - first)));
}

// The boundaries of the grapheme clusters of one text. The iterator is costly to make and keeps state, so
// each thread has its own.
class GraphemeClusters {
public:
    explicit GraphemeClusters(std::string_view text) : text(text) {
        UErrorCode status = U_ZERO_ERROR;
        utext_openUTF8(&view, text.data(), icuLength(text), &status);
        iterator().setText(&view, status);
        if (U_FAILURE(status)) fatalError("the text library cannot read a text");
        iterator().first();
    }
    ~GraphemeClusters() { utext_close(&view); }
    GraphemeClusters(GraphemeClusters const&) = delete;
    GraphemeClusters& operator=(GraphemeClusters const&) = delete;

    // The next cluster; empty at the end.
    std::string_view next() {
        auto const boundary = iterator().next();
        if (boundary == icu::BreakIterator::DONE) return {};
        auto const start = std::exchange(position, static_cast<std::size_t>(boundary));
        return text.substr(start, position - start);
    }

private:
    static icu::BreakIterator& iterator() {
        thread_local std::unique_ptr<icu::BreakIterator> const shared = [] {
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<icu::BreakIterator> made(
                icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
            if (U_FAILURE(status) || !made) fatalError("the text library has no rules for grapheme clusters");
            return made;
        }();
        return *shared;
    }

    std::string_view text;
    UText view = UTEXT_INITIALIZER;
    std::size_t position = 0;
};

bool extendsCluster(UChar32 scalar) {
    auto const value = u_getIntPropertyValue(scalar, UCHAR_GRAPHEME_CLUSTER_BREAK);
    return value == U_GCB_EXTEND || value == U_GCB_ZWJ || value == U_GCB_SPACING_MARK;
}

bool takesNoColumn(UChar32 scalar) {
    auto const mask = U_GET_GC_MASK(scalar);
    return (mask & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK | U_GC_CC_MASK)) != 0;
}

std::size_t clusterWidth(std::string_view cluster) {
    std::size_t width = 0;
    auto const length = icuLength(cluster);
    for (std::int32_t position = 0; position < length;) {
        auto const scalar = nextScalar(cluster, length, position);
        constexpr UChar32 emojiVariationSelector = 0xFE0F;
        if (scalar == emojiVariationSelector) return 2;
        if (scalar < 0 || takesNoColumn(scalar)) {
            if (scalar < 0) width = std::max<std::size_t>(width, 1);
            continue;
        }
        auto const eastAsianWidth = u_getIntPropertyValue(scalar, UCHAR_EAST_ASIAN_WIDTH);
        bool const wide = eastAsianWidth == U_EA_WIDE || eastAsianWidth == U_EA_FULLWIDTH ||
                          u_hasBinaryProperty(scalar, UCHAR_REGIONAL_INDICATOR);
        width = std::max<std::size_t>(width, wide ? 2 : 1);
    }
    return width;
}

bool isDirectionalControl(UChar32 scalar) {
    return (scalar >= 0x202A && scalar <= 0x202E) || (scalar >= 0x2066 && scalar <= 0x2069);
}

// Letters without a shape: each orders what stands beside it as a letter of its direction would, and no more.
bool isDirectionMark(UChar32 scalar) {
    return scalar == 0x200E || scalar == 0x200F || scalar == 0x061C;
}

bool hasRightToLeftLetter(std::string_view text) {
    auto const length = icuLength(text);
    for (std::int32_t position = 0; position < length;) {
        auto const scalar = nextScalar(text, length, position);
        if (scalar < 0 || isDirectionMark(scalar)) continue;
        auto const direction = u_charDirection(scalar);
        if (direction == U_RIGHT_TO_LEFT || direction == U_RIGHT_TO_LEFT_ARABIC) return true;
    }
    return false;
}

} // namespace

bool isValidUTF8(std::string_view bytes) {
    bytes.remove_prefix(asciiPrefix(bytes));
    while (!bytes.empty()) {
        auto const length = static_cast<std::int32_t>(std::min<std::size_t>(bytes.size(), 64));
        std::int32_t position = 0;
        if (nextScalar(bytes, length, position) < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(position));
        bytes.remove_prefix(asciiPrefix(bytes));
    }
    return true;
}

std::string sanitizedUTF8(std::string_view bytes) {
    if (isValidUTF8(bytes)) return std::string(bytes);
    std::string text;
    text.reserve(bytes.size() + 16);
    auto const length = icuLength(bytes);
    for (std::int32_t position = 0; position < length;) {
        auto const scalar = nextScalar(bytes, length, position);
        append(text, scalar < 0 ? replacement : static_cast<char32_t>(scalar));
    }
    return text;
}

std::string trimmingWhitespaces(std::string_view text) {
    return trimming(text, isWhitespace);
}

std::string trimmingWhitespacesAndNewlines(std::string_view text) {
    return trimming(text, isWhitespaceOrNewline);
}

std::vector<std::string> componentsSeparatedByNewlines(std::string_view text) {
    std::vector<std::string> pieces;
    auto const length = icuLength(text);
    std::size_t pieceStart = 0;
    for (std::int32_t position = 0; position < length;) {
        auto const start = static_cast<std::size_t>(position);
        if (!isNewline(nextScalar(text, length, position))) continue;
        pieces.emplace_back(text.substr(pieceStart, start - pieceStart));
        pieceStart = static_cast<std::size_t>(position);
    }
    pieces.emplace_back(text.substr(pieceStart));
    return pieces;
}

bool isAlphanumeric(char32_t scalar) {
    if (scalar > UCHAR_MAX_VALUE) return false;
    return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

bool containsAlphanumeric(std::string_view text) {
    auto const length = icuLength(text);
    for (std::int32_t position = 0; position < length;) {
        auto const scalar = nextScalar(text, length, position);
        if (scalar >= 0 && isAlphanumeric(static_cast<char32_t>(scalar))) return true;
    }
    return false;
}

std::string capitalized(std::string_view text) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    // The empty name is the root locale: the user's own would turn "indi" into "İndi" in Turkish.
    icu::CaseMap::utf8ToTitle("", U_TITLECASE_ADJUST_TO_CASED, nullptr,
                              icu::StringPiece(text.data(), icuLength(text)), sink, nullptr, status);
    if (U_FAILURE(status)) fatalError("the text library cannot change the case of a text");
    return result;
}

std::string lowercased(std::string_view text) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8ToLower("", 0, icu::StringPiece(text.data(), icuLength(text)), sink, nullptr, status);
    if (U_FAILURE(status)) fatalError("the text library cannot change the case of a text");
    return result;
}

std::u32string scalars(std::string_view text) {
    std::u32string result;
    result.reserve(text.size());
    auto const length = icuLength(text);
    for (std::int32_t position = 0; position < length;) {
        auto const scalar = nextScalar(text, length, position);
        result += scalar < 0 ? replacement : static_cast<char32_t>(scalar);
    }
    return result;
}

std::size_t firstGraphemeLength(std::string_view text) {
    if (text.empty()) return 0;
    // One cluster is never longer than this, save in texts made to hurt; those are cut.
    constexpr std::size_t longest = 4096;
    return GraphemeClusters(text.substr(0, longest)).next().size();
}

std::size_t clusterExtensionLength(std::string_view text) {
    auto const length = icuLength(text);
    std::int32_t end = 0;
    for (std::int32_t position = 0; position < length; end = position) {
        auto const scalar = nextScalar(text, length, position);
        if (scalar < 0 || !extendsCluster(scalar)) break;
    }
    return static_cast<std::size_t>(end);
}

std::string truncated(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return std::string(text);
    // Ample for letters with marks and for families of emoji; a text made to hurt is cut within a cluster,
    // so that the work has a bound whatever the text.
    constexpr std::size_t bytesPerCluster = 64;
    auto end = text.size() / bytesPerCluster < limit ? text.size() : limit * bytesPerCluster;
    while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    GraphemeClusters clusters(text.substr(0, end));
    std::string kept;
    for (std::size_t count = 0; count < limit; ++count) {
        auto const cluster = clusters.next();
        if (cluster.empty()) break;
        kept += cluster;
    }
    if (kept.size() < text.size()) kept += "…";
    return kept;
}

std::size_t terminalWidth(std::string_view text) {
    GraphemeClusters clusters(text);
    std::size_t width = 0;
    for (auto cluster = clusters.next(); !cluster.empty(); cluster = clusters.next())
        width += clusterWidth(cluster);
    return width;
}

std::string neutralized(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    bool const keepsMarks = hasRightToLeftLetter(text);
    auto const length = icuLength(text);
    for (std::int32_t position = 0; position < length;) {
        auto const scalar = nextScalar(text, length, position);
        // A terminal may draw the soft hyphen as a hyphen in the middle of a word.
        constexpr UChar32 softHyphen = 0xAD;
        if (scalar == softHyphen || (isDirectionMark(scalar) && !keepsMarks)) continue;
        if (scalar < 0 || isDirectionalControl(scalar))
            append(result, replacement);
        else if (scalar == '\t' || isNewline(scalar))
            result += ' ';
        else if (u_charType(scalar) == U_CONTROL_CHAR || U_IS_UNICODE_NONCHAR(scalar))
            append(result, replacement);
        else
            append(result, static_cast<char32_t>(scalar));
    }
    return result;
}

bool startsRightToLeft(std::string_view text) {
    auto const length = icuLength(text);
    std::size_t openIsolates = 0;
    for (std::int32_t position = 0; position < length;) {
        auto const scalar = nextScalar(text, length, position);
        if (scalar < 0) continue;
        switch (u_charDirection(scalar)) {
        case U_LEFT_TO_RIGHT:
            if (openIsolates == 0) return false;
            break;
        case U_RIGHT_TO_LEFT:
        case U_RIGHT_TO_LEFT_ARABIC:
            if (openIsolates == 0) return true;
            break;
        case U_LEFT_TO_RIGHT_ISOLATE:
        case U_RIGHT_TO_LEFT_ISOLATE:
        case U_FIRST_STRONG_ISOLATE: ++openIsolates; break;
        case U_POP_DIRECTIONAL_ISOLATE:
            if (openIsolates > 0) --openIsolates;
            break;
        default: break;
        }
    }
    return false;
}

} // namespace Foundation::Text
