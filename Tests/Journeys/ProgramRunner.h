#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// How a program that was run has ended, and what it wrote.
struct ProgramResult {
    int exitCode;              ///< -1 when a signal ended it.
    std::optional<int> signal; ///< Which, if one did.
    std::string output;
    std::string errors;
    std::int64_t peakMemory = 0;  ///< KiB that it held in memory at most.
    std::string commandLine = {}; ///< Its words as others saw them when it was given its input.
};

/// A program to run to its end.
struct ProgramRun {
    enum class Output : std::uint8_t {
        captured,
        readerGone, ///< A pipe whose reading end is closed.
        fullDevice, ///< /dev/full
        terminal    ///< A terminal of 80 columns, also as input and for errors; all comes as `output`.
    };
    enum class Rights : std::uint8_t {
        usual,
        /// Root without its power over other rights; an ordinary user is without it anyway.
        withoutOverride
    };

    std::string path;
    std::vector<std::string> arguments;
    std::map<std::string, std::string> environment;
    std::string directory = "/";
    std::string input = {};
    /// What the program must have written before it is given the input; a terminal takes Ctrl-C and the like
    /// only from then on. Empty: at once.
    std::string inputAfter = {};
    std::function<void()> beforeInput = {}; ///< What others do while the program waits for its input.
    Output output = Output::captured;
    Rights rights = Rights::usual;
    std::chrono::seconds patience{60};
};

/// Runs the program and waits for it. One that outlasts the patience is killed, which its result shows as
/// signal 9. Throws std::system_error when it cannot be started.
ProgramResult run(ProgramRun const& program);

/// Whether `Rights::withoutOverride` can be had here.
bool canGiveUpOverride();
