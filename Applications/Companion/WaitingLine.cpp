#include "Applications/Companion/WaitingLine.h"

#include "Applications/Companion/BackendTexts.h"
#include "Foundation/Text.h"

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <unistd.h>
#include <utility>

namespace Companion {
namespace {

// Back to the line's start, and nothing left on it (ECMA-48 EL).
constexpr std::string_view emptyLine = "\r\x1b[K";

void writeToErrors(std::string const& text) {
    // A line that cannot be shown is none to miss.
    [[maybe_unused]] auto const written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace

WaitingLine::WaitingLine(std::string what, Foundation::Environment const& environment)
    : what(Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(what))),
      isTerminal(::isatty(STDERR_FILENO) == 1 && environment.value("TERM").value_or("dumb") != "dumb") {}

void WaitingLine::show(std::chrono::seconds elapsed) {
    if (!isTerminal) return;
    writeToErrors(std::string(emptyLine) + Texts::waitingFor(what, elapsed.count()));
    isShown = true;
}

void WaitingLine::clear() {
    if (isShown) writeToErrors(std::string(emptyLine));
    isShown = false;
}

ShownWait::ShownWait(std::string what, Foundation::Environment const& environment)
    : line(std::move(what), environment) {
    if (!line.canBeShown()) return;
    ticker = std::jthread([this](std::stop_token const& stop) {
        std::mutex mutex;
        std::condition_variable_any ended;
        std::unique_lock lock(mutex);
        for (std::chrono::seconds elapsed{1};; ++elapsed) {
            ended.wait_for(lock, stop, std::chrono::seconds(1), [] { return false; });
            if (stop.stop_requested()) return;
            line.show(elapsed);
        }
    });
}

} // namespace Companion
