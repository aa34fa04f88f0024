#pragma once

#include "Platform/Logging/Logger.h"

#include <mutex>
#include <vector>

namespace Platform {

/// Keeps every record for a test to read.
class RecordingLogSink final : public LogSink {
public:
    void write(LogRecord const& record) override {
        std::lock_guard const lock(mutex);
        kept.push_back(record);
    }

    /// The records in the order in which they came.
    [[nodiscard]] std::vector<LogRecord> records() const {
        std::lock_guard const lock(mutex);
        return kept;
    }

    /// Their messages alone.
    [[nodiscard]] std::vector<std::string> messages() const {
        std::vector<std::string> texts;
        for (auto const& record : records())
            texts.push_back(record.message);
        return texts;
    }

private:
    mutable std::mutex mutex;
    std::vector<LogRecord> kept;
};

} // namespace Platform
