#include "Foundation/Locale.h"

#include "Foundation/Environment.h"

#include <unicode/locid.h>
#include <unicode/plurrule.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>
#include <set>
#include <string_view>

namespace Foundation {
namespace {

constexpr std::string_view english = "en";

// POSIX: a variable set to nothing counts as unset.
std::optional<std::string> nonEmpty(Environment const& environment, std::string_view name) {
    auto value = environment.value(name);
    if (value && value->empty()) return std::nullopt;
    return value;
}

// The languages that ICU has data for.
bool isKnownLanguage(std::string_view language) {
    static std::set<std::string, std::less<>> const known = [] {
        std::set<std::string, std::less<>> languages;
        std::int32_t count = 0;
        auto const* available = icu::Locale::getAvailableLocales(count);
        for (std::int32_t index = 0; index < count; ++index)
            languages.insert(available[index].getLanguage());
        return languages;
    }();
    return known.contains(language);
}

// ICU's name of a POSIX locale name, language[_territory][.codeset][@modifier]; absent for "C", "POSIX" and
// what ICU does not know.
std::optional<std::string> icuName(std::string_view posixName) {
    auto const at = posixName.find('@');
    auto const modifier = at == std::string_view::npos ? std::string_view() : posixName.substr(at + 1);
    auto const base = posixName.substr(0, std::min(posixName.find('.'), at));
    bool const plausible =
        base.size() >= 2 && base.size() <= 32 && std::ranges::all_of(base, [](char letter) {
            return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                   (letter >= '0' && letter <= '9') || letter == '_' || letter == '-';
        });
    if (!plausible || base == "POSIX") return std::nullopt;

    auto const locale = icu::Locale::createCanonical(std::string(base).c_str());
    if (locale.isBogus() || !isKnownLanguage(locale.getLanguage())) return std::nullopt;
    std::string name = locale.getLanguage();
    std::string script = locale.getScript();
    if (modifier == "latin") script = "Latn";
    if (modifier == "cyrillic") script = "Cyrl";
    if (!script.empty()) name += "_" + script;
    if (locale.getCountry()[0] != '\0') name += std::string("_") + locale.getCountry();
    return name;
}

void appendOnce(std::vector<std::string>& languages, std::string language) {
    if (std::ranges::find(languages, language) == languages.end()) languages.push_back(std::move(language));
}

// The locale and what is left of it without its last parts: "zh_Hant_TW", "zh_Hant", "zh".
void appendWithParents(std::vector<std::string>& languages, std::string_view posixName) {
    auto name = icuName(posixName).value_or(std::string(english));
    while (true) {
        appendOnce(languages, name);
        auto const underscore = name.rfind('_');
        if (underscore == std::string::npos) return;
        name.resize(underscore);
    }
}

} // namespace

Locale Locale::forFormats(Environment const& environment) {
    for (std::string_view const name : {"LC_ALL", "LC_TIME", "LANG"}) {
        // The first one that is set decides, even when it names nothing that we know.
        if (auto const value = nonEmpty(environment, name))
            return {.identifier = icuName(*value).value_or(std::string(english))};
    }
    return {.identifier = std::string(english)};
}

std::vector<std::string> Locale::textLanguages(Environment const& environment) {
    std::vector<std::string> posixNames;
    for (std::string_view const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (auto value = nonEmpty(environment, name)) posixNames.push_back(*std::move(value));
    }

    std::vector<std::string> languages;
    if (auto const list = nonEmpty(environment, "LANGUAGE")) {
        std::string_view rest = *list;
        while (!rest.empty()) {
            auto const colon = std::min(rest.find(':'), rest.size());
            auto const entry = rest.substr(0, colon);
            rest.remove_prefix(std::min(colon + 1, rest.size()));
            // An unknown name in the list is passed over, so that the next one counts.
            if (icuName(entry)) appendWithParents(languages, entry);
        }
    }
    for (auto const& posixName : posixNames)
        appendWithParents(languages, posixName);
    appendOnce(languages, std::string(english));
    return languages;
}

bool Locale::isRightToLeft() const {
    return icu::Locale(identifier.c_str()).isRightToLeft() != 0;
}

std::string Locale::pluralCategory(std::int64_t count) const {
    UErrorCode failure = U_ZERO_ERROR;
    std::unique_ptr<icu::PluralRules> const rules(
        icu::PluralRules::forLocale(icu::Locale(identifier.c_str()), failure));
    if (U_FAILURE(failure) != 0 || !rules) return "other";
    std::string category;
    // No category is sensitive to a number's sign, and those beyond a double's whole numbers are all alike.
    rules->select(static_cast<double>(count)).toUTF8String(category);
    return category;
}

} // namespace Foundation
