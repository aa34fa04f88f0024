#pragma once

#include "Applications/Companion/CommandTable.h"

#include <string>
#include <string_view>

namespace Manual {

/// The name of a command's page, without its section: "quillora-meet-show"; "quillora" for nullptr.
std::string pageName(Companion::Command const* command);

/// The manual page of a command or group, or of the whole program for nullptr, in the language of the
/// program's texts: roff source with the macros of man(7), UTF-8. `date` as "2026-03-11".
std::string manualPage(Companion::Command const* command, std::string_view version, std::string_view date);

} // namespace Manual
