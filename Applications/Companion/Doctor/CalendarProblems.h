#pragma once

#include "Applications/Composition/LiveServices.h"
#include "Platform/Logging/Logger.h"

#include <mutex>
#include <string>
#include <vector>

namespace Companion::Doctor {

/// Keeps what the calendar store could not show, instead of logging it.
class CalendarProblems final : public Platform::LogSink {
public:
    void write(Platform::LogRecord const& record) override {
        bool const isProblem = record.level == Platform::LogLevel::error &&
                               record.category == Composition::calendarStoreLogCategory;
        if (!isProblem) return;
        std::scoped_lock const lock(mutex);
        kept.push_back(record.message);
    }

    [[nodiscard]] std::vector<std::string> messages() const {
        std::scoped_lock const lock(mutex);
        return kept;
    }

private:
    mutable std::mutex mutex;
    std::vector<std::string> kept;
};

} // namespace Companion::Doctor
