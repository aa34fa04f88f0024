#include "Platform/EventStore/Folder/TerminalConsentPrompt.h"

#include "Foundation/Text.h"

#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

namespace Platform {

namespace {

constexpr int attempts = 3;

bool writeAll(int output, std::string_view text) {
    while (!text.empty()) {
        auto const written = ::write(output, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// One line without its end; absent when the input ends before one.
std::optional<std::string> readLine(int input) {
    std::string line;
    for (;;) {
        char character = 0;
        auto const count = ::read(input, &character, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return std::nullopt;
        if (character == '\n') return line;
        line += character;
    }
}

} // namespace

Foundation::Task<ConsentAnswer> TerminalConsentPrompt::ask() {
    co_return askNow();
}

ConsentAnswer TerminalConsentPrompt::askNow() const {
    if (::isatty(input) != 1 || ::isatty(output) != 1) return ConsentAnswer::unavailable;
    if (!writeAll(output, texts.question)) return ConsentAnswer::unavailable;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        auto const line = readLine(input);
        if (!line) {
            writeAll(output, "\n"); // Ctrl-D leaves the question's line open.
            return ConsentAnswer::unavailable;
        }
        auto const isYes = texts.yesOrNo(Foundation::Text::trimmingWhitespacesAndNewlines(*line));
        if (isYes) return *isYes ? ConsentAnswer::yes : ConsentAnswer::no;
        if (attempt < attempts && !writeAll(output, texts.again)) return ConsentAnswer::unavailable;
    }
    return ConsentAnswer::unavailable;
}

} // namespace Platform
