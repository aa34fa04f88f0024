#pragma once

#include <string>
#include <string_view>

namespace Companion {

/// A text as one word of a shell's command line, so that a command that is shown can be copied: quoted where
/// it needs to be, and without what could break the line, which no shell could be told this way.
std::string shellWord(std::string_view text);

} // namespace Companion
