#include "Foundation/ZoneRuleText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>

namespace Foundation::ZoneRuleText {
namespace {

bool isLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

// "CET" or "<+05>"; empty when neither begins here.
std::string_view takeName(std::string_view& rest) {
    std::size_t length = 0;
    if (rest.starts_with('<')) {
        auto const end = rest.find('>');
        length = end == std::string_view::npos ? 0 : end + 1;
    } else {
        length = static_cast<std::size_t>(std::ranges::find_if_not(rest, isLetter) - rest.begin());
    }
    auto const name = rest.substr(0, length);
    rest.remove_prefix(length);
    return name;
}

struct Offset {
    std::string_view text;
    std::int32_t secondsWest;
};

// "-1", "5", "+9:30"; hours, minutes and seconds west of UTC, as POSIX counts. Absent without digits.
std::optional<Offset> takeOffset(std::string_view& rest) {
    auto const start = rest;
    bool const negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);

    std::int32_t seconds = 0;
    for (std::int32_t const unit : {3600, 60, 1}) {
        if (rest.empty() || !isDigit(rest.front())) return std::nullopt;
        std::int32_t number = 0;
        for (int count = 0; count < 3 && !rest.empty() && isDigit(rest.front()); ++count) {
            number = number * 10 + (rest.front() - '0');
            rest.remove_prefix(1);
        }
        seconds += number * unit;
        if (!rest.starts_with(':')) break;
        rest.remove_prefix(1);
    }
    return Offset{.text = start.substr(0, start.size() - rest.size()),
                  .secondsWest = negative ? -seconds : seconds};
}

} // namespace

std::optional<std::string> exchangingNegativeSaving(std::string_view rule) {
    auto rest = rule;
    auto const standardName = takeName(rest);
    auto const standard = takeOffset(rest);
    auto const savingName = takeName(rest);
    // Without an offset of its own the saving time is an hour ahead.
    auto const saving = takeOffset(rest);
    if (standardName.empty() || savingName.empty() || !standard || !saving || !rest.starts_with(','))
        return std::nullopt;
    if (saving->secondsWest <= standard->secondsWest) return std::nullopt;

    rest.remove_prefix(1);
    auto const comma = rest.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    auto const start = rest.substr(0, comma);
    auto const end = rest.substr(comma + 1);

    // Each date stays on the clocks that show before it, so nothing has to be converted.
    std::string exchanged;
    for (auto const part : {savingName, saving->text, standardName, standard->text, std::string_view(","),
                            end, std::string_view(","), start})
        exchanged += part;
    return exchanged;
}

std::optional<std::string> ofZoneFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) return std::nullopt;
    std::array<char, 256> buffer;
    auto const size = std::min<std::streamoff>(file.tellg(), buffer.size());
    if (size <= 0) return std::nullopt;
    file.seekg(-size, std::ios::end);
    file.read(buffer.data(), size);
    if (file.gcount() != size) return std::nullopt;

    std::string_view tail(buffer.data(), static_cast<std::size_t>(size));
    if (!tail.ends_with('\n')) return std::nullopt;
    tail.remove_suffix(1);
    auto const start = tail.rfind('\n');
    if (start == std::string_view::npos || start + 1 == tail.size()) return std::nullopt;
    return std::string(tail.substr(start + 1));
}

} // namespace Foundation::ZoneRuleText
