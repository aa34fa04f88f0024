#pragma once

#include "Platform/EventStore/ConsentPrompt.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Platform {

/// What is written, without a line feed after it, and what counts as an answer.
struct TerminalConsentTexts {
    std::string question;
    std::string again; ///< After an answer that was neither.
    /// Whether a typed line, white space around it left out, is a yes or a no.
    std::function<std::optional<bool>(std::string_view)> yesOrNo;
};

/// Asks on a terminal. Unavailable unless both ends are one, so that a script is never held up, and when the
/// input ends or three answers were neither yes nor no. The calling thread waits for the answer.
class TerminalConsentPrompt final : public ConsentPrompt {
public:
    /// The file descriptors to read the answer from and to write the question to; they are not closed.
    TerminalConsentPrompt(int input, int output, TerminalConsentTexts texts)
        : input(input),
          output(output),
          texts(std::move(texts)) {}

    Foundation::Task<ConsentAnswer> ask() override;

private:
    [[nodiscard]] ConsentAnswer askNow() const;

    int input;
    int output;
    TerminalConsentTexts texts;
};

} // namespace Platform
