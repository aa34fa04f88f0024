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

TableText text(std::string_view key) {
    return TableText(key);
}

} // namespace Texts

std::string TableText::text() const {
    return Texts::words().text(key);
}

} // namespace Companion
