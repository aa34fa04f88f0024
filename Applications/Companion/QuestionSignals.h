#pragma once

#include <array>
#include <csignal>

namespace Companion {

/// While this lives, Ctrl-C and SIGTERM end the program as they should at a question: with a line on standard
/// error that says what was done, and with ExitCode::interrupted or ExitCode::terminated. Nothing is being
/// written while a person thinks, so that the program may end on the spot. Only one at a time.
class QuestionSignals {
public:
    QuestionSignals();
    ~QuestionSignals();
    QuestionSignals(QuestionSignals const&) = delete;
    QuestionSignals& operator=(QuestionSignals const&) = delete;

private:
    static constexpr std::array signals = {SIGINT, SIGTERM};
    std::array<struct sigaction, signals.size()> before = {};
};

} // namespace Companion
