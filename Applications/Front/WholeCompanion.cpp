#include "Applications/Front/WholeCompanion.h"

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace Front {

namespace {

constexpr auto ownExecutable = "/proc/self/exe";

Companion::CommandError cannotStart(std::filesystem::path const& path, std::error_code const& failure) {
    return Companion::CommandError::failed(
        Companion::Texts::partIsMissing(Companion::shownPath(path), failure.message()));
}

} // namespace

std::filesystem::path wholeCompanion(std::filesystem::path const& folder) {
    return folder.parent_path() / "libexec" / "quillora" / "quillora-companion";
}

void becomeWholeCompanion(char* const* words) {
    // Not the name it was started under: that may be a link in any folder, or a bare name.
    std::error_code failure;
    auto const executable = std::filesystem::read_symlink(ownExecutable, failure);
    if (failure) throw cannotStart(ownExecutable, failure);
    auto const program = wholeCompanion(executable.parent_path());
    ::execv(program.c_str(), words);
    throw cannotStart(program, std::error_code(errno, std::generic_category()));
}

} // namespace Front
