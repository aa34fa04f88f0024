#include "Platform/EventStore/Folder/StoreProblem.h"

#include "Foundation/Text.h"

#include <fmt/format.h>

namespace Platform {

std::string describe(StoreProblem const& problem) {
    auto const path = Foundation::Text::sanitizedUTF8(problem.path.string());
    if (problem.line == 0) return fmt::format("{}: {}", path, problem.reason);
    return fmt::format("{}:{}: {}", path, problem.line, problem.reason);
}

} // namespace Platform
