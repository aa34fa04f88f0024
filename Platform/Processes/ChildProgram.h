#pragma once

#include "Foundation/Environment.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Other programs, run without a terminal.
namespace Platform::ChildProgram {

/// The program of that name in the first folder of PATH that has one. A relative folder is passed over: what
/// it names depends on where this program was started.
std::optional<std::filesystem::path> find(Foundation::Environment const& environment, std::string_view name);

/// Runs it with these arguments in this environment, its standard streams on /dev/null, and yields its exit
/// code. Absent when it does not start, is ended by a signal, or is not done in time: then it is ended.
std::optional<int> run(std::filesystem::path const& program, std::vector<std::string> const& arguments,
                       Foundation::Environment const& environment, std::chrono::milliseconds patience);

/// Starts it in the same way, in the root folder and in a session of its own that outlives this program, and
/// waits for nothing, not even for the program to be loaded. Yields whether there is a process for it; that
/// one ends by itself where the program cannot be run.
bool startApart(std::filesystem::path const& program, std::vector<std::string> const& arguments,
                Foundation::Environment const& environment);

} // namespace Platform::ChildProgram
