#include "Applications/Companion/HarmlessConsole.h"

#include "Foundation/Text.h"

#include <string>
#include <utility>

namespace Companion {

namespace Text = Foundation::Text;

HarmlessConsole::HarmlessConsole(std::shared_ptr<Platform::ConsoleOutput> output)
    : output(std::move(output)) {}

void HarmlessConsole::print(std::string_view text) {
    std::string harmless;
    while (true) {
        auto const end = text.find('\n');
        harmless += Text::neutralized(Text::sanitizedUTF8(text.substr(0, end)));
        if (end == std::string_view::npos) break;
        harmless += '\n';
        text.remove_prefix(end + 1);
    }
    output->print(harmless);
}

} // namespace Companion
