#include "Platform/Resources/ColorsFile.h"

#include "Foundation/JSON.h"

#include <charconv>
#include <cstdint>

namespace Platform {
namespace {

using Foundation::JSON::Object;
using Foundation::JSON::Value;

std::optional<ColorsFile::Color> colorFrom(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdefABCDEF";
    if (text.size() != 7 || !text.starts_with('#')) return std::nullopt;
    text.remove_prefix(1);
    if (text.find_first_not_of(digits) != std::string_view::npos) return std::nullopt;
    std::uint32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number, 16);
    auto const channel = [number](unsigned shift) { return ((number >> shift) & 0xFFU) / 255.0; };
    return ColorsFile::Color{channel(16), channel(8), channel(0)};
}

// The colour of one scheme; a problem where it is missing or no colour.
std::optional<ColorsFile::Color> schemeOf(std::string const& name, Value const& schemes,
                                          std::string_view scheme, std::vector<std::string>& problems) {
    auto const place = "\"" + name + "\" in " + std::string(scheme);
    auto const* const value = schemes.member(scheme);
    if (value == nullptr) {
        problems.push_back(place + " is missing");
        return std::nullopt;
    }
    auto const* const text = std::get_if<std::string>(&value->storage);
    auto const color = text == nullptr ? std::nullopt : colorFrom(*text);
    if (!color) problems.push_back(place + " is not \"#\" and six hexadecimal digits; colour skipped");
    return color;
}

} // namespace

ColorsFile ColorsFile::parse(std::string_view document) {
    ColorsFile file;
    auto const parsed = Foundation::JSON::parse(document);
    auto const* const entries = parsed ? std::get_if<Object>(&parsed->storage) : nullptr;
    if (entries == nullptr) {
        file.problems.emplace_back("not a JSON object; no colour is read");
        return file;
    }
    for (auto const& [name, value] : *entries) {
        if (!std::holds_alternative<Object>(value.storage)) {
            file.problems.push_back("\"" + name + "\" is not an object of colours; skipped");
            continue;
        }
        Schemes const schemes{.light = schemeOf(name, value, "light", file.problems),
                              .dark = schemeOf(name, value, "dark", file.problems)};
        file.colors.emplace(name, schemes);
    }
    return file;
}

std::optional<ColorsFile::Color> ColorsFile::find(std::string_view name, ColorScheme scheme) const {
    auto const entry = colors.find(name);
    if (entry == colors.end()) return std::nullopt;
    return scheme == ColorScheme::dark ? entry->second.dark : entry->second.light;
}

} // namespace Platform
