#pragma once

#include <filesystem>

namespace Front {

/// The whole companion that belongs to an executable in `folder`: `libexec/quillora/quillora-companion` below
/// the same prefix.
std::filesystem::path wholeCompanion(std::filesystem::path const& folder);

/// Makes this process the whole companion, with the same words, the name it was started under among them, and
/// with all that it inherited. Throws CommandError with ExitCode::failed where there is none to start.
[[noreturn]] void becomeWholeCompanion(char* const* words);

} // namespace Front
