#include "Platform/HTMLReader/VisibleText.h"

#include "Platform/HTMLReader/ScrubbedHTML.h"

#include <algorithm>

namespace Platform {

namespace {

constexpr std::string_view blanks = " \t\n";
constexpr std::string_view bullet = "•";

// Appends with the characters that stand for markup turned back.
void appendRestored(std::string& output, std::string_view text) {
    static_assert(scrubbedLessThan.size() == scrubbedAmpersand.size());
    constexpr char firstByte = scrubbedLessThan[0];
    for (auto found = text.find(firstByte); found != std::string_view::npos; found = text.find(firstByte)) {
        output += text.substr(0, found);
        text.remove_prefix(found);
        bool const isLessThan = text.starts_with(scrubbedLessThan);
        bool const stands = isLessThan || text.starts_with(scrubbedAmpersand);
        if (stands) {
            output += isLessThan ? '<' : '&';
            text.remove_prefix(scrubbedLessThan.size());
        } else {
            output += text[0];
            text.remove_prefix(1);
        }
    }
    output += text;
}

} // namespace

void VisibleText::startElement(std::string_view name, bool isHidden, std::optional<std::int32_t> number) {
    if (hiddenDepth > 0 || isHidden) {
        ++hiddenDepth;
        return;
    }
    if (name == "span") return;
    if (name == "br") return writeLineBreak();
    if (name == "td") {
        // The cells of a row share its line.
        hasPendingBlank = true;
        return;
    }
    breakLine();
    if (name == "li") return startListItem(number);
    if (name == "ul" || name == "ol") {
        lists.push_back({.isOrdered = name == "ol", .next = number.value_or(1)});
    } else if (name == "pre") {
        ++preformattedDepth;
        isAtPreformattedStart = true;
    }
}

void VisibleText::endElement(std::string_view name) {
    if (hiddenDepth > 0) {
        --hiddenDepth;
        return;
    }
    if (name == "span" || name == "br") return;
    if (name == "td") {
        hasPendingBlank = true;
        return;
    }
    breakLine();
    if (name == "li") {
        pendingMarker.clear();
    } else if (name == "ul" || name == "ol") {
        if (!lists.empty()) lists.pop_back();
    } else if (name == "pre" && preformattedDepth > 0) {
        --preformattedDepth;
    }
}

void VisibleText::startListItem(std::optional<std::int32_t> number) {
    if (lists.empty() || !lists.back().isOrdered) {
        pendingMarker = bullet;
        return;
    }
    auto& next = lists.back().next;
    if (number) next = *number;
    pendingMarker = std::to_string(next) + ".";
    ++next;
}

void VisibleText::characters(std::string_view text) {
    if (hiddenDepth > 0 || text.empty()) return;
    if (preformattedDepth > 0) return writePreformatted(text);
    writeCollapsed(text);
}

void VisibleText::writePreformatted(std::string_view text) {
    // A line break right behind the tag is only there for whoever wrote it.
    if (isAtPreformattedStart && text.starts_with('\n')) text.remove_prefix(1);
    isAtPreformattedStart = false;
    if (text.empty()) return;
    beginWriting();
    appendRestored(output, text);
    isLineEmpty = text.ends_with('\n');
}

void VisibleText::writeCollapsed(std::string_view text) {
    while (!text.empty()) {
        auto const length = std::min(text.find_first_of(blanks), text.size());
        if (length > 0) writeWord(text.substr(0, length));
        text.remove_prefix(length);
        auto const blankLength = std::min(text.find_first_not_of(blanks), text.size());
        if (blankLength > 0) hasPendingBlank = true;
        text.remove_prefix(blankLength);
    }
}

void VisibleText::writeWord(std::string_view word) {
    beginWriting();
    appendRestored(output, word);
    isLineEmpty = false;
}

void VisibleText::writeLineBreak() {
    hasPendingBlank = false;
    beginWriting();
    output += '\n';
    isLineEmpty = true;
}

void VisibleText::beginWriting() {
    if (hasPendingBreak && !isLineEmpty) {
        output += '\n';
        isLineEmpty = true;
    }
    if (!pendingMarker.empty()) {
        output += pendingMarker;
        pendingMarker.clear();
        output += ' ';
        isLineEmpty = false;
    } else if (hasPendingBlank && !isLineEmpty) {
        output += ' ';
    }
    hasPendingBreak = false;
    hasPendingBlank = false;
}

} // namespace Platform
