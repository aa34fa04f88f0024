#include "Platform/HTMLReader/ScrubbedHTML.h"

#include "Platform/HTMLReader/CharacterReferences.h"
#include "Platform/HTMLReader/HTMLElements.h"
#include "Platform/HTMLReader/HTMLLimits.h"
#include "Platform/HTMLReader/HTMLTag.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace Platform {

namespace {

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

// Bytes at which plain text may not simply be copied: markup, control characters, and the first byte of all
// three-byte characters that may not pass.
constexpr auto isSpecialByte = [] {
    std::array<bool, 256> special{};
    for (unsigned byte = 0; byte < 0x20; ++byte)
        special[byte] = byte != '\t' && byte != '\n';
    for (unsigned const byte : {unsigned{'<'}, unsigned{'&'}, 0x7FU, 0xEFU})
        special[byte] = true;
    return special;
}();

// U+FDD0 to U+FDEF, U+FFFE and U+FFFF are for a program's own use; U+FEFF is a byte order mark or nothing.
bool isDroppedScalar(char32_t scalar) {
    return (scalar >= 0xFDD0 && scalar <= 0xFDEF) || scalar == 0xFFFE || scalar == 0xFFFF || scalar == 0xFEFF;
}

char32_t threeByteScalar(std::string_view text) {
    auto const bits = [&](std::size_t index) { return static_cast<unsigned char>(text[index]) & 0x3FU; };
    return (static_cast<unsigned char>(text[0]) & 0x0FU) << 12U | bits(1) << 6U | bits(2);
}

// Cut so that no character is broken.
std::string_view withinLimit(std::string_view html) {
    if (html.size() <= HTMLLimits::bytes) return html;
    auto length = HTMLLimits::bytes;
    while (length > 0 && (static_cast<unsigned char>(html[length]) & 0xC0U) == 0x80U)
        --length;
    return html.substr(0, length);
}

class Scrubber {
public:
    explicit Scrubber(std::string_view html) : rest(withinLimit(html)) { output.reserve(rest.size() + 64); }

    std::string scrub() && {
        // Given both, libxml2 invents neither, nor a paragraph around plain text.
        output = "<html><body>";
        while (!rest.empty() && writtenTags < HTMLLimits::tags)
            takeNext();
        return std::move(output);
    }

private:
    void takeNext() {
        takePlainText();
        if (rest.empty()) return;
        if (rest[0] == '<') return takeMarkup();
        if (rest[0] == '&') return takeReference();
        takeSpecialCharacter();
    }

    void takePlainText() {
        std::size_t length = 0;
        while (length < rest.size() && !isSpecialByte[static_cast<unsigned char>(rest[length])])
            ++length;
        write(rest.substr(0, length));
        rest.remove_prefix(length);
    }

    void takeSpecialCharacter() {
        if (static_cast<unsigned char>(rest[0]) == 0xEF) {
            if (!isDroppedScalar(threeByteScalar(rest))) write(rest.substr(0, 3));
            rest.remove_prefix(3);
            return;
        }
        writeControl(rest[0], rest.size() > 1 && rest[1] == '\n');
        rest.remove_prefix(1);
    }

    // Line breaks become one kind; other control characters show nothing.
    void writeControl(char character, bool beforeLineFeed) {
        if (character == '\r' && !beforeLineFeed) write("\n");
        if (character == '\f' || character == '\v') write(" ");
    }

    void takeReference() {
        auto const reference = characterReferenceAt(rest);
        if (!reference) {
            write(scrubbedAmpersand);
            rest.remove_prefix(1);
            return;
        }
        for (auto const scalar : reference->scalars)
            writeScalar(scalar);
        rest.remove_prefix(reference->length);
    }

    void writeScalar(char32_t scalar) {
        if (scalar == '<') return write(scrubbedLessThan);
        if (scalar == '&') return write(scrubbedAmpersand);
        if (scalar == 0x7F || isDroppedScalar(scalar)) return;
        if (scalar < 0x20 && scalar != '\t' && scalar != '\n') {
            writeControl(static_cast<char>(scalar), false);
            return;
        }
        auto const byte = [](char32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
        auto const following = [&](unsigned shift) { return byte(0x80U | ((scalar >> shift) & 0x3FU)); };
        if (scalar < 0x80) {
            char const bytes[] = {byte(scalar)};
            write({bytes, 1});
        } else if (scalar < 0x800) {
            char const bytes[] = {byte(0xC0U | scalar >> 6U), following(0)};
            write({bytes, 2});
        } else if (scalar < 0x10000) {
            char const bytes[] = {byte(0xE0U | scalar >> 12U), following(6), following(0)};
            write({bytes, 3});
        } else {
            char const bytes[] = {byte(0xF0U | scalar >> 18U), following(12), following(6), following(0)};
            write({bytes, 4});
        }
    }

    void takeMarkup() {
        char const second = rest.size() > 1 ? rest[1] : '\0';
        char const third = rest.size() > 2 ? rest[2] : '\0';
        if (isLetter(second) || (second == '/' && isLetter(third))) return takeTag();
        if (rest.starts_with("<!--")) return skipComment();
        // An end tag without a name, a declaration, or an instruction: none shows anything.
        if ((second == '/' && rest.size() > 2) || second == '!' || second == '?') return skipPast(">", 2);
        write(scrubbedLessThan);
        rest.remove_prefix(1);
    }

    void skipComment() {
        constexpr std::size_t opening = 4;
        auto const content = rest.substr(opening);
        if (content.starts_with(">") || content.starts_with("->")) return skipPast(">", opening);
        auto const usual = content.find("-->");
        auto const sloppy = content.substr(0, usual).find("--!>");
        if (sloppy != std::string_view::npos) return skipPast("--!>", opening);
        skipPast("-->", opening);
    }

    // To the end when `mark` is missing: what is open there shows nothing.
    void skipPast(std::string_view mark, std::size_t from) {
        auto const found = rest.find(mark, from);
        rest.remove_prefix(found == std::string_view::npos ? rest.size() : found + mark.size());
    }

    void takeTag() {
        auto const tag = tagAt(rest);
        if (!tag) {
            rest = {};
            return;
        }
        rest.remove_prefix(tag->length);
        auto const element = elementNamed(tag->name);
        if (tag->isEnd) return endElement(element);
        startElement(*tag, element);
    }

    void startElement(HTMLTag const& tag, HTMLElement element) {
        switch (element) {
        case HTMLElement::head: isInHead = true; return;
        case HTMLElement::headContent: return;
        case HTMLElement::rawText: return skipRawText(tag.name);
        case HTMLElement::hiddenBlock: return writeStartTag(element, " hidden");
        case HTMLElement::hiddenInline:
            // A picture may be written as one tag.
            if (!tag.isSelfClosing) writeStartTag(element, " hidden");
            return;
        default: break;
        }
        // What cannot stand in a head ends it.
        isInHead = false;
        if (canonicalName(element).empty()) return;
        // Within a line only what is hidden matters, and where that ends.
        bool const isPlain = element == HTMLElement::span && !tag.isHidden;
        if (isPlain && openElements[static_cast<std::size_t>(element)] == 0) return;
        bool const isVoid = element == HTMLElement::lineBreak || element == HTMLElement::rule;
        if (isVoid && tag.isHidden) return;
        std::string attributes = tag.isHidden ? " hidden" : "";
        bool const countsOn = element == HTMLElement::orderedList || element == HTMLElement::listItem;
        if (tag.number && countsOn) attributes += " value=" + std::to_string(*tag.number);
        writeStartTag(element, attributes);
    }

    void endElement(HTMLElement element) {
        if (element == HTMLElement::head) isInHead = false;
        // Browsers take these for whole elements.
        if (element == HTMLElement::lineBreak) return writeStartTag(element, "");
        if (element == HTMLElement::rule) return;
        auto& open = openElements[static_cast<std::size_t>(element)];
        if (open == 0 && element == HTMLElement::paragraph) writeStartTag(element, "");
        if (open == 0) return;
        --open;
        writeTag("</", canonicalName(element), "");
    }

    // A script may hold anything but its own end tag, which takes what follows its name along.
    void skipRawText(std::string_view name) {
        while (true) {
            skipPast("</", 0);
            if (rest.empty()) return;
            if (!beginsWithName(name)) continue;
            skipPast(">", name.size());
            return;
        }
    }

    [[nodiscard]] bool beginsWithName(std::string_view name) const {
        auto const same = [](char character, char lower) { return (character | 0x20) == lower; };
        if (!std::ranges::equal(rest.substr(0, name.size()), name, same)) return false;
        constexpr std::string_view afterName = " \t\n\r\f/>";
        return rest.size() == name.size() || afterName.contains(rest[name.size()]);
    }

    void writeStartTag(HTMLElement element, std::string_view attributes) {
        writeTag("<", canonicalName(element), attributes);
        ++openElements[static_cast<std::size_t>(element)];
    }

    void writeTag(std::string_view opening, std::string_view name, std::string_view attributes) {
        ++writtenTags;
        output += opening;
        output += name;
        output += attributes;
        output += '>';
    }

    void write(std::string_view text) {
        if (!isInHead) output += text;
    }

    std::string_view rest;
    std::string output;
    std::size_t writtenTags = 0;
    bool isInHead = false;
    std::array<std::size_t, static_cast<std::size_t>(HTMLElement::nothing) + 1> openElements{};
};

} // namespace

std::string scrubbedHTML(std::string_view html) {
    return Scrubber(html).scrub();
}

} // namespace Platform
