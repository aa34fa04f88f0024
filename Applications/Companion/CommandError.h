#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace Companion {

/// How a command ended. The numbers are part of the interface: scripts rely on them.
enum class ExitCode : std::uint8_t {
    done = 0,
    failed = 1,   ///< What was asked for could not be done; one line on standard error says why.
    wrongUse = 2, ///< The command line or what it names makes no sense; nothing was changed.
};

/// Ends a command early with a code and one line for the person.
class CommandError final : public std::runtime_error {
public:
    CommandError(ExitCode code, std::string const& message) : std::runtime_error(message), exitCode(code) {}

    static CommandError failed(std::string const& message) { return {ExitCode::failed, message}; }
    static CommandError wrongUse(std::string const& message) { return {ExitCode::wrongUse, message}; }

    [[nodiscard]] ExitCode code() const { return exitCode; }

private:
    ExitCode exitCode;
};

} // namespace Companion
