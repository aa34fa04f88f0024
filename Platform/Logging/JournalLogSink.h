#pragma once

#include "Platform/Logging/Logger.h"

#include "Foundation/Environment.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace Platform {

/// Writes records to the system's journal with the fields MESSAGE, PRIORITY, SUBSYSTEM and CATEGORY. Where no
/// journal listens they go to standard error: errors only, or from the level that `QUILLORA_LOG` names
/// ("debug", "info", "error"). When that variable is set, standard error gets them beside the journal too.
class JournalLogSink final : public LogSink {
public:
    explicit JournalLogSink(Foundation::Environment const& environment,
                            std::filesystem::path const& journalSocket = "/run/systemd/journal/socket");

    void write(LogRecord const& record) override;

    /// Whether a program listens on that datagram socket. The journal's own library drops records silently
    /// where nobody does.
    static bool isListening(std::filesystem::path const& socket);

    /// The journal's fields of a record, "NAME=value" each; priorities as syslog numbers them.
    static std::vector<std::string> journalFields(LogRecord const& record);

    /// The record as one line for a terminal, line feed included: control characters of foreign texts do not
    /// reach it.
    static std::string terminalLine(LogRecord const& record);

private:
    bool hasJournal;
    std::optional<LogLevel> lowestOnStandardError;
};

} // namespace Platform
