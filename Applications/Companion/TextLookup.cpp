#include "Applications/Companion/TextLookup.h"

namespace Companion {

extern std::string_view const englishTable; // Built in from Resources/en.lproj.

namespace Texts {

Composition::ProgramTexts& words() {
    static constexpr char marker = 0;
    static Composition::ProgramTexts texts("Companion_Companion", &marker, englishTable);
    return texts;
}

void useLanguages(std::vector<std::string> const& languages) {
    words().useLanguages(languages);
    Composition::Texts::useLanguages(languages);
}

std::string text(std::string_view key) {
    return words().text(key);
}

} // namespace Texts
} // namespace Companion
