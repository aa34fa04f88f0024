#include "Applications/Companion/HarmlessConsole.h"

#include "Foundation/Text.h"

#include <utility>

namespace Companion {

namespace Text = Foundation::Text;

std::string harmlessLines(std::string_view text) {
    std::string harmless;
    while (true) {
        auto const end = text.find('\n');
        harmless += Text::neutralized(Text::sanitizedUTF8(text.substr(0, end)));
        if (end == std::string_view::npos) return harmless;
        harmless += '\n';
        text.remove_prefix(end + 1);
    }
}

HarmlessConsole::HarmlessConsole(std::shared_ptr<Platform::ConsoleOutput> output)
    : output(std::move(output)) {}

void HarmlessConsole::print(std::string_view text) {
    output->print(harmlessLines(text));
}

} // namespace Companion
