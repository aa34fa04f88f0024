#include "Platform/EventStore/Folder/TerminalConsentPrompt.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

namespace Platform {

namespace {

constexpr std::string_view question =
    "Quillora shows the events of your calendars and keeps everything on this "
    "computer.\nMay it read and change your calendars? [yes/no] ";
constexpr std::string_view again = "Please answer yes or no: ";
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

std::optional<ConsentAnswer> answerIn(std::string_view line) {
    std::string word;
    for (char const character : line) {
        if (character == ' ' || character == '\t' || character == '\r') continue;
        word += character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    }
    if (word == "y" || word == "yes") return ConsentAnswer::yes;
    if (word == "n" || word == "no") return ConsentAnswer::no;
    return std::nullopt;
}

} // namespace

Foundation::Task<ConsentAnswer> TerminalConsentPrompt::ask() {
    co_return askNow();
}

ConsentAnswer TerminalConsentPrompt::askNow() const {
    if (::isatty(input) != 1 || ::isatty(output) != 1) return ConsentAnswer::unavailable;
    if (!writeAll(output, question)) return ConsentAnswer::unavailable;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        auto const line = readLine(input);
        if (!line) return ConsentAnswer::unavailable;
        if (auto const answer = answerIn(*line)) return *answer;
        if (attempt < attempts && !writeAll(output, again)) return ConsentAnswer::unavailable;
    }
    return ConsentAnswer::unavailable;
}

} // namespace Platform
