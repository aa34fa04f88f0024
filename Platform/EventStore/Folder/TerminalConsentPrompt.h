#pragma once

#include "Platform/EventStore/ConsentPrompt.h"

namespace Platform {

/// Asks on a terminal. Unavailable unless both ends are one, so that a script is never held up, and when the
/// input ends or three answers were neither yes nor no. The calling thread waits for the answer.
class TerminalConsentPrompt final : public ConsentPrompt {
public:
    /// The file descriptors to read the answer from and to write the question to; they are not closed.
    TerminalConsentPrompt(int input, int output) : input(input), output(output) {}

    Foundation::Task<ConsentAnswer> ask() override;

private:
    [[nodiscard]] ConsentAnswer askNow() const;

    int input;
    int output;
};

} // namespace Platform
