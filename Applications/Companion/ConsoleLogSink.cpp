#include "Applications/Companion/ConsoleLogSink.h"

#include "Applications/Companion/Texts.h"
#include "Applications/Composition/LiveServices.h"
#include "Platform/Logging/JournalLogSink.h"

namespace Companion {

namespace {

constexpr std::size_t mostProblemsShown = 10;
constexpr auto journalSocket = "/run/systemd/journal/socket";

} // namespace

ConsoleLogSink::ConsoleLogSink(Console const& console, Foundation::Environment const& environment)
    : console(console),
      showsProblems(!environment.value("QUILLORA_LOG")) {
    // Without a journal its sink would write to standard error, where the problems stand already; who asks
    // for the log there gets it, and nothing twice.
    if (!showsProblems || Platform::JournalLogSink::isListening(journalSocket))
        journal = std::make_shared<Platform::JournalLogSink>(environment);
}

ConsoleLogSink::~ConsoleLogSink() {
    if (problems > mostProblemsShown) console.report(Texts::moreProblems(problems - mostProblemsShown));
}

void ConsoleLogSink::write(Platform::LogRecord const& record) {
    if (journal) journal->write(record);
    bool const isProblem =
        record.level == Platform::LogLevel::error && record.category == Composition::calendarStoreLogCategory;
    if (!showsProblems || !isProblem) return;
    std::scoped_lock const lock(mutex);
    if (++problems <= mostProblemsShown) console.report(Texts::told(record.message));
}

} // namespace Companion
