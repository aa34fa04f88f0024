#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Foundation {

class Environment;

/// A language and region as ICU names it ("es_ES", "en"). A value; what depends on it takes it as argument.
struct Locale {
    std::string identifier;

    /// The locale of dates and numbers: `LC_ALL`, else `LC_TIME`, else `LANG`. "C", "POSIX" and what ICU
    /// does not know are English.
    static Locale forFormats(Environment const& environment);

    /// The languages to look a text up in, best first: `LANGUAGE` (a colon-separated list, which
    /// counts in the "C" locale, too), `LC_ALL`, `LC_MESSAGES`, `LANG`; each also without its region
    /// ("es_MX", "es"). Has "en" in every case.
    static std::vector<std::string> textLanguages(Environment const& environment);

    /// Whether its script runs from right to left.
    [[nodiscard]] bool isRightToLeft() const;

    /// Which form of a text goes with `count` in this language, as CLDR names it: "zero", "one", "two",
    /// "few", "many" or "other".
    [[nodiscard]] std::string pluralCategory(std::int64_t count) const;

    friend bool operator==(Locale const&, Locale const&) = default;
};

} // namespace Foundation
