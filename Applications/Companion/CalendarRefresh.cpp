#include "Applications/Companion/CalendarRefresh.h"

#include "Platform/Processes/ChildProgram.h"

#include <filesystem>
#include <system_error>

namespace Companion {

CalendarRefresh::~CalendarRefresh() {
    if (!isDue) return;
    std::error_code failure;
    auto const program = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure) return;
    Platform::ChildProgram::startApart(program, {"sources", "refresh", refreshInBackground}, environment);
}

} // namespace Companion
