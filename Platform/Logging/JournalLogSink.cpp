#include "Platform/Logging/JournalLogSink.h"

#include "Foundation/Text.h"

// The call site would be this file's for every record: leave those fields out.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

namespace Platform {
namespace {

std::string_view name(LogLevel level) {
    switch (level) {
    case LogLevel::debug: return "debug";
    case LogLevel::info: return "info";
    case LogLevel::error: return "error";
    }
    return {};
}

char syslogPriority(LogLevel level) {
    switch (level) {
    case LogLevel::debug: return '7';
    case LogLevel::info: return '6';
    case LogLevel::error: return '3';
    }
    return '3';
}

std::optional<LogLevel> levelNamed(std::string_view text) {
    for (auto const level : {LogLevel::debug, LogLevel::info, LogLevel::error}) {
        if (name(level) == text) return level;
    }
    return std::nullopt;
}

bool sendToJournal(std::vector<std::string>& fields) {
    std::vector<iovec> vectors;
    for (auto& field : fields)
        vectors.push_back({.iov_base = field.data(), .iov_len = field.size()});
    return sd_journal_sendv(vectors.data(), static_cast<int>(vectors.size())) == 0;
}

void writeToStandardError(std::string_view line) {
    while (!line.empty()) {
        auto const written = ::write(STDERR_FILENO, line.data(), line.size());
        if (written < 0 && errno == EINTR) continue;
        // A log that cannot be written is nobody's business to fail over.
        if (written <= 0) return;
        line.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace

JournalLogSink::JournalLogSink(Foundation::Environment const& environment,
                               std::filesystem::path const& journalSocket)
    : hasJournal(isListening(journalSocket)) {
    auto const wanted = environment.value("QUILLORA_LOG");
    if (wanted) lowestOnStandardError = levelNamed(*wanted);
    if (!lowestOnStandardError && !hasJournal) lowestOnStandardError = LogLevel::error;
}

void JournalLogSink::write(LogRecord const& record) {
    bool isKept = false;
    if (hasJournal) {
        auto fields = journalFields(record);
        isKept = sendToJournal(fields);
    }
    bool const isLostError = hasJournal && !isKept && record.level == LogLevel::error;
    bool const isWanted = lowestOnStandardError && record.level >= *lowestOnStandardError;
    if (isWanted || isLostError) writeToStandardError(terminalLine(record));
}

bool JournalLogSink::isListening(std::filesystem::path const& socket) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    auto const& text = socket.native();
    if (text.size() >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, text.c_str(), text.size() + 1);

    int const probe = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (probe < 0) return false;
    bool const connected = ::connect(probe, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
    ::close(probe);
    return connected;
}

std::vector<std::string> JournalLogSink::journalFields(LogRecord const& record) {
    return {"MESSAGE=" + record.message, std::string("PRIORITY=") + syslogPriority(record.level),
            "SUBSYSTEM=" + record.subsystem, "CATEGORY=" + record.category};
}

std::string JournalLogSink::terminalLine(LogRecord const& record) {
    return std::string(name(record.level)) + " " + Foundation::Text::neutralized(record.category) + ": " +
           Foundation::Text::neutralized(record.message) + "\n";
}

} // namespace Platform
