#include "Applications/Companion/CalendarRefresh.h"

#include "Platform/Processes/ChildProgram.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace Companion {

namespace {

void startRefresh(Foundation::Environment const& environment) {
    std::error_code failure;
    auto const program = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure) return;
    Platform::ChildProgram::startApart(program, {"sources", "refresh", refreshInBackground}, environment);
}

} // namespace

void CalendarRefresh::start() {
    if (std::exchange(hasStarted, true)) return;
    try {
        starter = std::jthread([this] { startRefresh(environment); });
    } catch (std::system_error const&) {
        startRefresh(environment); // As many threads as may be are there already.
    }
}

} // namespace Companion
