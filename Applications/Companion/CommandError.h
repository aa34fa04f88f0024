#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace Companion {

/// How a command ended. The numbers are part of the interface: scripts rely on them.
enum class ExitCode : std::uint8_t {
    done = 0,
    failed = 1,        ///< What was asked for could not be done; one line on standard error says why.
    wrongUse = 2,      ///< The command line or what it names makes no sense; nothing was changed.
    interrupted = 130, ///< By Ctrl-C, as shells count: 128 and SIGINT. Standard error says what was done.
    terminated = 143,  ///< The same by SIGTERM.
};

/// Ends a command early with a code and one line for the person.
class CommandError final : public std::runtime_error {
public:
    CommandError(ExitCode code, std::string const& message) : std::runtime_error(message), exitCode(code) {}

    static CommandError failed(std::string const& message) { return {ExitCode::failed, message}; }
    static CommandError wrongUse(std::string const& message) { return {ExitCode::wrongUse, message}; }

    /// Something that another part of Quillora refused: what was not done, and then, as the last line, that
    /// part's own message exactly as it came.
    static CommandError refused(std::string const& whatWasNotDone, std::string message) {
        auto error = failed(whatWasNotDone);
        error.exactLastLine = std::move(message);
        return error;
    }

    [[nodiscard]] ExitCode code() const { return exitCode; }
    [[nodiscard]] std::optional<std::string> const& lastLine() const { return exactLastLine; }

private:
    ExitCode exitCode;
    std::optional<std::string> exactLastLine;
};

} // namespace Companion
