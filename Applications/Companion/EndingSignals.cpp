#include "Applications/Companion/EndingSignals.h"

#include <atomic>
#include <cstddef>
#include <deque>
#include <unistd.h>

namespace Companion {
namespace {

std::atomic<std::string const*> lineToWrite = nullptr;

// Made before a signal can come, since a handler may not make it; and kept, since the handler may be writing
// it, on another thread, while another takes its place.
std::string const* kept(std::string const& words) {
    static std::deque<std::string> lines;
    // Behind the ^C that a terminal shows, or a line that it shows half.
    auto const* const beginning = ::isatty(STDERR_FILENO) == 1 ? "\n" : "";
    return &lines.emplace_back(beginning + ("quillora: " + words + "\n"));
}

// Only calls that are safe in a handler.
void endHere(int signal) {
    auto const* const line = lineToWrite.load();
    [[maybe_unused]] auto const written = ::write(STDERR_FILENO, line->data(), line->size());
    ::_exit(128 + signal);
}

} // namespace

EndingSignals::EndingSignals(std::string const& words) : lineBefore(lineToWrite.exchange(kept(words))) {
    for (std::size_t index = 0; index < signals.size(); ++index) {
        ::sigaction(signals[index], nullptr, &before[index]);
        if (before[index].sa_handler == SIG_IGN) continue;
        struct sigaction ending = {};
        ending.sa_handler = endHere;
        ::sigaction(signals[index], &ending, nullptr);
    }
}

EndingSignals::~EndingSignals() {
    for (std::size_t index = 0; index < signals.size(); ++index)
        ::sigaction(signals[index], &before[index], nullptr);
    lineToWrite = lineBefore;
}

void EndingSignals::say(std::string const& words) {
    lineToWrite = kept(words);
}

} // namespace Companion
