#include "Applications/Companion/Console.h"

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/QuestionSignals.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Companion {

namespace {

// Answers 0, or the errno of the write that failed.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t const written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

// Reads up to the line feed. Absent when the input ends before anything came.
std::optional<std::string> readLine() {
    std::string line;
    char character = 0;
    for (;;) {
        ssize_t const count = ::read(STDIN_FILENO, &character, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return line.empty() ? std::nullopt : std::optional(line);
        if (character == '\n') return line;
        line.push_back(character);
    }
}

bool hasValue(Foundation::Environment const& environment, std::string_view name) {
    return !environment.value(name).value_or("").empty();
}

} // namespace

Console::Console(Foundation::Environment const& environment)
    : colors(::isatty(STDOUT_FILENO) == 1 && !hasValue(environment, "NO_COLOR") &&
             environment.value("TERM").value_or("dumb") != "dumb") {}

void Console::write(std::string_view bytes) const {
    int const error = writeAll(STDOUT_FILENO, bytes);
    if (error != 0) throw CommandError::failed(Texts::cannotWriteOutput(std::strerror(error)));
}

void Console::writeLine(std::string_view text) const {
    write(std::string(text) + "\n");
}

void Console::confirm(std::string_view lines, std::string_view whatWasDone) const {
    int const error = writeAll(STDOUT_FILENO, lines);
    if (error == 0) return;
    std::string done(Foundation::Text::trimmingWhitespacesAndNewlines(whatWasDone));
    std::ranges::replace(done, '\n', ' ');
    throw CommandError::failed(Texts::cannotWriteWhatIsDone(std::strerror(error), done));
}

void Console::confirmLine(std::string_view whatWasDone) const {
    confirm(std::string(whatWasDone) + "\n", whatWasDone);
}

void Console::report(std::string_view message) const {
    reportExactly("quillora: " + std::string(message));
}

void Console::reportExactly(std::string_view text) const {
    writeAll(STDERR_FILENO, Foundation::Text::neutralized(text) + "\n");
}

void Console::tell(std::string_view text) const {
    writeAll(STDERR_FILENO, text);
}

bool Console::canAsk() const {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

std::optional<bool> Console::ask(std::string_view question) const {
    if (!canAsk()) return std::nullopt;
    QuestionSignals const signals;
    for (;;) {
        writeAll(STDERR_FILENO, std::string(question) + " " + Texts::askHint() + " ");
        auto const line = readLine();
        if (!line) {
            writeAll(STDERR_FILENO, "\n"); // Ctrl-D leaves the question's line open.
            return std::nullopt;
        }
        auto const answer = Foundation::Text::trimmingWhitespacesAndNewlines(*line);
        if (auto const isYes = Texts::yesOrNo(answer)) return isYes;
    }
}

std::optional<std::size_t> Console::columns() const {
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return std::nullopt;
    return size.ws_col;
}

} // namespace Companion
