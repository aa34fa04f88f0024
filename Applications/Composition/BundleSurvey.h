#pragma once

#include "Foundation/Environment.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Composition {

/// What became of one of the bundles that a program's texts come from.
struct SurveyedBundle {
    std::string name;
    std::optional<std::filesystem::path> folder; ///< Absent when no place has it.
    std::vector<std::string> problems;           ///< As `Platform::Bundle::problems` has them.
};

/// Looks for every bundle that the companion needs where it looks itself, without ending the process over a
/// missing one.
std::vector<SurveyedBundle> surveyBundles(Foundation::Environment const& environment);

} // namespace Composition
