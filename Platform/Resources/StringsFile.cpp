#include "Platform/Resources/StringsFile.h"

#include "Foundation/Locale.h"
#include "Foundation/Text.h"

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <utility>

namespace Platform {
namespace {

void appendUTF8(std::string& text, std::uint32_t scalar) {
    auto const byte = [](std::uint32_t value) { return static_cast<char>(value); };
    if (scalar < 0x80) {
        text += byte(scalar);
    } else if (scalar < 0x800) {
        text += {byte(0xC0 | scalar >> 6), byte(0x80 | (scalar & 0x3F))};
    } else if (scalar < 0x10000) {
        text += {byte(0xE0 | scalar >> 12), byte(0x80 | (scalar >> 6 & 0x3F)), byte(0x80 | (scalar & 0x3F))};
    } else {
        text += {byte(0xF0 | scalar >> 18), byte(0x80 | (scalar >> 12 & 0x3F)),
                 byte(0x80 | (scalar >> 6 & 0x3F)), byte(0x80 | (scalar & 0x3F))};
    }
}

// Reads entry by entry; every step says what it missed.
class Reader {
public:
    explicit Reader(std::string_view content) : rest(content) {}

    StringsFile read() {
        StringsFile file;
        while (true) {
            if (auto const blanks = skipBlanks(); !blanks) {
                file.problems.push_back({.line = line, .reason = blanks.error()});
                return file;
            }
            if (rest.empty()) return file;
            auto const entryLine = line;
            auto entry = readEntry();
            if (!entry) {
                file.problems.push_back({.line = entryLine, .reason = entry.error() + "; entry skipped"});
                skipEntry();
                continue;
            }
            auto const key = entry->first;
            if (!file.texts.insert(*std::move(entry)).second) {
                auto const reason = "\"" + key + "\" is there already; the first text stays";
                file.problems.push_back({.line = entryLine, .reason = reason});
            }
        }
    }

private:
    using Failure = std::unexpected<std::string>;

    char take() {
        char const character = rest.front();
        rest.remove_prefix(1);
        if (character == '\n') ++line;
        return character;
    }

    bool accept(char character) {
        if (!rest.starts_with(character)) return false;
        take();
        return true;
    }

    // Blanks, line breaks and comments.
    std::expected<void, std::string> skipBlanks() {
        while (!rest.empty()) {
            if (rest.starts_with("/*")) {
                auto const end = rest.find("*/", 2);
                if (end == std::string_view::npos)
                    return Failure("a comment has no end; the rest is skipped");
                for (auto count = end + 2; count > 0; --count)
                    take();
            } else if (rest.starts_with("//")) {
                while (!rest.empty() && rest.front() != '\n')
                    take();
            } else if (rest.front() == ' ' || (rest.front() >= '\t' && rest.front() <= '\r')) {
                take();
            } else {
                return {};
            }
        }
        return {};
    }

    std::expected<std::pair<std::string, std::string>, std::string> readEntry() {
        auto key = readText("a key");
        if (!key) return Failure(std::move(key).error());
        if (auto const blanks = skipBlanks(); !blanks) return Failure(blanks.error());
        if (!accept('=')) return Failure("no \"=\" after the key \"" + *key + "\"");
        if (auto const blanks = skipBlanks(); !blanks) return Failure(blanks.error());
        auto value = readText("the text of \"" + *key + "\"");
        if (!value) return Failure(std::move(value).error());
        if (auto const blanks = skipBlanks(); !blanks) return Failure(blanks.error());
        if (!accept(';')) return Failure("no \";\" after the text of \"" + *key + "\"");
        return std::pair(*std::move(key), *std::move(value));
    }

    std::expected<std::string, std::string> readText(std::string const& what) {
        if (!accept('"')) return Failure(what + " in quotes is missing");
        std::string text;
        while (!rest.empty()) {
            char const character = take();
            if (character == '"') return text;
            if (character != '\\') {
                text += character;
                continue;
            }
            if (rest.empty()) break;
            if (!readEscape(text)) return Failure(what + " has an unknown escape");
        }
        return Failure(what + " has no closing quote");
    }

    bool readEscape(std::string& text) {
        switch (take()) {
        case 'n': text += '\n'; return true;
        case 't': text += '\t'; return true;
        case 'r': text += '\r'; return true;
        case '"': text += '"'; return true;
        case '\'': text += '\''; return true;
        case '\\': text += '\\'; return true;
        case 'u':
        case 'U': return readUnicodeEscape(text);
        default: return false;
        }
    }

    bool readUnicodeEscape(std::string& text) {
        auto const unit = readHexadecimal();
        if (!unit) return false;
        bool const isHigh = *unit >= 0xD800 && *unit <= 0xDBFF;
        bool const isLow = *unit >= 0xDC00 && *unit <= 0xDFFF;
        if (isLow) return false;
        if (!isHigh) {
            appendUTF8(text, *unit);
            return true;
        }
        if (!rest.starts_with("\\u") && !rest.starts_with("\\U")) return false;
        rest.remove_prefix(2);
        auto const low = readHexadecimal();
        if (!low || *low < 0xDC00 || *low > 0xDFFF) return false;
        appendUTF8(text, 0x10000 + ((*unit - 0xD800) << 10) + (*low - 0xDC00));
        return true;
    }

    std::optional<std::uint32_t> readHexadecimal() {
        if (rest.size() < 4) return std::nullopt;
        std::uint32_t value = 0;
        for (char const digit : rest.substr(0, 4)) {
            value <<= 4;
            if (digit >= '0' && digit <= '9')
                value |= static_cast<std::uint32_t>(digit - '0');
            else if (digit >= 'a' && digit <= 'f')
                value |= static_cast<std::uint32_t>(digit - 'a' + 10);
            else if (digit >= 'A' && digit <= 'F')
                value |= static_cast<std::uint32_t>(digit - 'A' + 10);
            else
                return std::nullopt;
        }
        rest.remove_prefix(4);
        return value;
    }

    // To behind the semicolon or the end of the line, whichever comes first.
    void skipEntry() {
        while (!rest.empty()) {
            char const character = take();
            if (character == ';' || character == '\n') return;
        }
    }

    std::string_view rest;
    std::size_t line = 1;
};

} // namespace

StringsFile StringsFile::parse(std::string_view content) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (content.starts_with(byteOrderMark)) content.remove_prefix(byteOrderMark.size());
    if (Foundation::Text::isValidUTF8(content)) return Reader(content).read();

    auto file = Reader(Foundation::Text::sanitizedUTF8(content)).read();
    file.problems.insert(file.problems.begin(),
                         {.line = 1, .reason = "not UTF-8 throughout; the other bytes became U+FFFD"});
    return file;
}

std::optional<std::string> StringsFile::find(std::string_view key) const {
    auto const entry = texts.find(key);
    if (entry == texts.end()) return std::nullopt;
    return entry->second;
}

std::optional<std::string> StringsFile::findCounted(std::string_view key, std::int64_t count,
                                                    std::string const& language) const {
    auto const category = Foundation::Locale{.identifier = language}.pluralCategory(count);
    if (auto text = find(std::string(key) + "." + category)) return text;
    return find(std::string(key) + ".other");
}

} // namespace Platform
