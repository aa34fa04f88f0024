#pragma once

#include "Applications/Companion/Console.h"
#include "Platform/Logging/Logger.h"

#include <cstddef>
#include <memory>
#include <mutex>

namespace Companion {

/// Tells the person at once what the calendar store could not read. The journal gets every record beside.
class ConsoleLogSink final : public Platform::LogSink {
public:
    ConsoleLogSink(Console const& console, Foundation::Environment const& environment);

    /// Says how many further problems were not told one by one.
    ~ConsoleLogSink() override;

    void write(Platform::LogRecord const& record) override;

private:
    Console const& console;
    bool showsProblems;
    std::shared_ptr<Platform::LogSink> journal; ///< Null where none listens.
    std::mutex mutex;
    std::size_t problems = 0;
};

} // namespace Companion
