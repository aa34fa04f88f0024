#include "WidgetExtension/HTMLAttributedTextUtil.h"

#include "Foundation/Text.h"

#include <algorithm>
#include <array>
#include <string>

namespace WidgetExtension::HTMLAttributedTextUtil {

namespace {

namespace Text = Foundation::Text;

constexpr std::array<std::string_view, 12> leadingSeparatorCharacters = {"-", "_", "=", "~", "*", "#",
                                                                         "•", "·", ".", "—", "–", "|"};

// Bytes of the separator that `text` begins with; 0 when it begins with something else.
std::size_t leadingSeparatorLength(std::string_view text) {
    auto const begins = [&](std::string_view separator) { return text.starts_with(separator); };
    auto const* const separator = std::ranges::find_if(leadingSeparatorCharacters, begins);
    return separator == leadingSeparatorCharacters.end() ? 0 : separator->size();
}

// A separator takes the marks that sit on it along.
std::string_view droppingLeadingSeparators(std::string_view line) {
    while (auto const length = leadingSeparatorLength(line)) {
        line.remove_prefix(length);
        line.remove_prefix(Text::clusterExtensionLength(line));
    }
    return line;
}

std::string firstMeaningfulLine(std::string_view text) {
    for (auto const& piece : Text::componentsSeparatedByNewlines(text)) {
        auto const trimmed = Text::trimmingWhitespaces(piece);
        auto line = Text::trimmingWhitespaces(droppingLeadingSeparators(trimmed));
        if (Text::containsAlphanumeric(line)) return line;
    }
    return Text::trimmingWhitespacesAndNewlines(text);
}

std::optional<std::string> plainTextOnMainThread(std::string_view html, Platform::HTMLReader const& reader) {
    auto const text = reader.plainText(html);
    if (!text) return std::nullopt;
    return Text::trimmingWhitespacesAndNewlines(*text);
}

} // namespace

std::optional<AttributedString> parse(std::string_view text, Platform::HTMLReader const& reader,
                                      Platform::MainExecutor& mainExecutor) {
    if (text.empty()) return std::nullopt;
    if (!text.contains('<') || !Text::isValidUTF8(text)) return AttributedString{std::string(text)};

    std::optional<std::string> rendered;
    auto const render = [&] { rendered = plainTextOnMainThread(text, reader); };
    if (mainExecutor.isMainThread()) {
        render();
    } else {
        mainExecutor.runAndWait(render);
    }
    return AttributedString{firstMeaningfulLine(rendered ? std::string_view(*rendered) : text)};
}

} // namespace WidgetExtension::HTMLAttributedTextUtil
