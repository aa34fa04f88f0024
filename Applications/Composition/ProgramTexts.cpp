#include "Applications/Composition/ProgramTexts.h"

#include "Foundation/Environment.h"
#include "Platform/Resources/BundleLookup.h"
#include "Platform/Resources/TextPlaceholders.h"

#include <utility>

namespace Composition {

ProgramTexts::ProgramTexts(std::string bundleName, void const* marker, std::string_view english)
    : bundleName(std::move(bundleName)),
      marker(marker),
      englishTable(english) {}

void ProgramTexts::useLanguages(std::vector<std::string> chosen) {
    std::scoped_lock const lock(mutex);
    languages = std::move(chosen);
    readBundle.reset();
}

Platform::Bundle const* ProgramTexts::bundle() const {
    std::scoped_lock const lock(mutex);
    if (!languages) return nullptr;
    // The program's own bundle belongs to no package: no variable names another place for it.
    if (!readBundle)
        readBundle = Platform::BundleLookup::findBundle(
            bundleName, Foundation::Environment(), Platform::BundlePlaces::ofProcess(marker), *languages);
    return *readBundle ? &**readBundle : nullptr;
}

Platform::StringsFile const& ProgramTexts::english() const {
    std::scoped_lock const lock(mutex);
    if (!readEnglish) readEnglish = Platform::StringsFile::parse(englishTable);
    return *readEnglish;
}

std::string ProgramTexts::filled(std::string_view key, std::vector<std::string> const& values) const {
    auto const* own = bundle();
    auto found = own != nullptr ? own->find(key) : std::nullopt;
    if (!found) found = english().find(key);
    return Platform::withValues(found.value_or(std::string(key)), values);
}

std::string ProgramTexts::filledCounted(std::string_view key, std::int64_t count,
                                        std::vector<std::string> const& values) const {
    auto const* own = bundle();
    auto found = own != nullptr ? own->findCounted(key, count) : std::nullopt;
    if (!found) found = english().findCounted(key, count, "en");
    return Platform::withValues(found.value_or(std::string(key)), values);
}

std::string ProgramTexts::translated(std::string_view message) const {
    if (auto whole = translatedWhole(message)) return *std::move(whole);
    constexpr std::string_view separator = ": ";
    for (auto at = message.find(separator); at != std::string_view::npos;
         at = message.find(separator, at + 1)) {
        auto const start = at + separator.size();
        if (auto const rest = translatedWhole(message.substr(start)))
            return std::string(message.substr(0, start)) + *rest;
    }
    return std::string(message);
}

std::optional<std::string> ProgramTexts::translatedWhole(std::string_view message) const {
    std::string_view bestKey;
    std::size_t mostWords = 0;
    std::vector<std::string> values;
    for (auto const& [key, text] : english().texts) {
        if (!key.starts_with("said-") && !key.starts_with("errno-")) continue;
        auto found = Platform::valuesIn(text, message);
        if (!found) continue;
        // Of several that fit, the one with the most words of its own says the most.
        auto const words = text.size() - found->size() * std::string_view("%1$@").size();
        if (words <= mostWords) continue;
        mostWords = words;
        bestKey = key;
        values = *std::move(found);
    }
    if (bestKey.empty()) return std::nullopt;
    for (auto& value : values)
        value = translated(value);
    return filled(bestKey, values);
}

std::vector<std::string> ProgramTexts::problems() const {
    auto const* own = bundle();
    return own != nullptr ? own->problems() : std::vector<std::string>();
}

} // namespace Composition
