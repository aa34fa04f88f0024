#include "Applications/Companion/ConsoleLogSink.h"

#include "Applications/Companion/Texts.h"
#include "Applications/Composition/LiveServices.h"
#include "Platform/Logging/JournalLogSink.h"

namespace Companion {

namespace {

constexpr std::size_t mostProblemsShown = 10;
constexpr auto journalSocket = "/run/systemd/journal/socket";

} // namespace

ConsoleLogSink::ConsoleLogSink(Console const& console, Foundation::Environment const& environment,
                               CalendarProblems calendarProblems)
    : console(console),
      isLogWanted(environment.value("QUILLORA_LOG").has_value()),
      calendarProblems(calendarProblems) {
    // Without a journal its sink would write to standard error, where the problems stand already; who asks
    // for the log there gets it, and nothing twice.
    if (isLogWanted || Platform::JournalLogSink::isListening(journalSocket))
        journal = std::make_shared<Platform::JournalLogSink>(environment);
}

ConsoleLogSink::~ConsoleLogSink() {
    if (problems > mostProblemsShown) console.report(Texts::moreProblems(problems - mostProblemsShown));
}

void ConsoleLogSink::write(Platform::LogRecord const& record) {
    if (journal) journal->write(record);
    if (!tells(record)) return;
    std::scoped_lock const lock(mutex);
    if (++problems <= mostProblemsShown) console.report(Texts::told(record.message));
}

bool ConsoleLogSink::tells(Platform::LogRecord const& record) const {
    if (isLogWanted || record.level != Platform::LogLevel::error) return false;
    if (record.category == Composition::calendarStoreLogCategory)
        return calendarProblems == CalendarProblems::told;
    return record.category == Composition::preferencesLogCategory;
}

} // namespace Companion
