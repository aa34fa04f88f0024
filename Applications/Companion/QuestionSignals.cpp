#include "Applications/Companion/QuestionSignals.h"

#include "Applications/Companion/SetupTexts.h"

#include <string>
#include <unistd.h>

namespace Companion {
namespace {

// Made before a signal can come: a handler may not make it.
std::string& lastWords() {
    static std::string words;
    return words;
}

std::string const* toWrite = nullptr;

// Only calls that are safe in a handler.
void endHere(int signal) {
    [[maybe_unused]] auto const written = ::write(STDERR_FILENO, toWrite->data(), toWrite->size());
    ::_exit(128 + signal);
}

} // namespace

QuestionSignals::QuestionSignals() {
    lastWords() = "\nquillora: " + Texts::interruptedAtAQuestion() + "\n";
    toWrite = &lastWords();
    for (std::size_t index = 0; index < signals.size(); ++index) {
        struct sigaction ending = {};
        ending.sa_handler = endHere;
        ::sigaction(signals[index], &ending, &before[index]);
    }
}

QuestionSignals::~QuestionSignals() {
    for (std::size_t index = 0; index < signals.size(); ++index)
        ::sigaction(signals[index], &before[index], nullptr);
}

} // namespace Companion
