#include "Applications/Companion/TextLookup.h"

#include "Applications/Composition/Texts.h"
#include "Foundation/Text.h"

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

std::string quoted(std::string_view value) {
    constexpr std::size_t longest = 60;
    auto const harmless = Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(value));
    return text("quoted", Foundation::Text::truncated(harmless, longest));
}

} // namespace Texts
} // namespace Companion
