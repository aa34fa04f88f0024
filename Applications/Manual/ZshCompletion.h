#pragma once

#include <string>

namespace Manual {

/// The completion for zsh, for a file named "_quillora" on its function path.
std::string zshCompletion();

} // namespace Manual
