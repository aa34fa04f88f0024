#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace Platform {

enum class LogLevel { debug, info, error };

/// One structured log record.
struct LogRecord {
    LogLevel level;
    std::string subsystem;
    std::string category;
    std::string message;

    bool operator==(LogRecord const&) const = default;
};

/// Where log records go. May be called from any thread; never throws.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void write(LogRecord const& record) = 0;
};

/// Writes records of one subsystem and category. A value.
class Logger {
public:
    Logger(std::shared_ptr<LogSink> sink, std::string subsystem, std::string category)
        : sink(std::move(sink)),
          subsystem(std::move(subsystem)),
          category(std::move(category)) {}

    void debug(std::string message) const { write(LogLevel::debug, std::move(message)); }
    void info(std::string message) const { write(LogLevel::info, std::move(message)); }
    void error(std::string message) const { write(LogLevel::error, std::move(message)); }

private:
    void write(LogLevel level, std::string message) const {
        sink->write(
            {.level = level, .subsystem = subsystem, .category = category, .message = std::move(message)});
    }

    std::shared_ptr<LogSink> sink;
    std::string subsystem;
    std::string category;
};

} // namespace Platform
