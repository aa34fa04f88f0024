#pragma once

#include <array>
#include <csignal>
#include <string>

namespace Companion {

/// While this lives, Ctrl-C and SIGTERM end the program on the spot, with a line on standard error that says
/// what was done, and with ExitCode::interrupted or ExitCode::terminated. A signal that the process ignores
/// stays ignored. One may live within another, and its line counts until it ends; only on one thread.
class EndingSignals {
public:
    /// `words` say what was done; the program's name goes before them.
    explicit EndingSignals(std::string const& words);
    ~EndingSignals();
    EndingSignals(EndingSignals const&) = delete;
    EndingSignals& operator=(EndingSignals const&) = delete;

    /// What was done has changed: these are the words from now on.
    void say(std::string const& words);

private:
    static constexpr std::array signals = {SIGINT, SIGTERM};
    std::array<struct sigaction, signals.size()> before = {};
    std::string const* lineBefore;
};

} // namespace Companion
