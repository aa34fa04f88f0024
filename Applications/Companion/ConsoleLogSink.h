#pragma once

#include "Applications/Companion/Console.h"
#include "Platform/Logging/Logger.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

namespace Companion {

/// Tells the person at once what the calendar store could not read, and which preference files are damaged.
/// The journal gets every record beside.
class ConsoleLogSink final : public Platform::LogSink {
public:
    /// Whether it tells what the calendar store could not read; a command may show that itself.
    enum class CalendarProblems : std::uint8_t { told, leftToTheCommand };

    ConsoleLogSink(Console const& console, Foundation::Environment const& environment,
                   CalendarProblems calendarProblems = CalendarProblems::told);

    /// Says how many further problems were not told one by one.
    ~ConsoleLogSink() override;

    void write(Platform::LogRecord const& record) override;

private:
    [[nodiscard]] bool tells(Platform::LogRecord const& record) const;

    Console const& console;
    bool isLogWanted; ///< On standard error, by the environment.
    CalendarProblems calendarProblems;
    std::shared_ptr<Platform::LogSink> journal; ///< Null where none listens.
    std::mutex mutex;
    std::size_t problems = 0;
};

} // namespace Companion
