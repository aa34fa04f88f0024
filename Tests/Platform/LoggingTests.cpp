#include "Platform/Logging/JournalLogSink.h"
#include "Platform/Logging/RecordingLogSink.h"

#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using namespace Platform;
using Foundation::Environment;

LogRecord record(LogLevel level, std::string message) {
    return {.level = level,
            .subsystem = "com.zentorik.quillora",
            .category = "Tests",
            .message = std::move(message)};
}

// What a sink without a journal writes to standard error for one record of each level.
std::string standardErrorOf(Environment const& environment) {
    TemporaryFolder const folder;
    JournalLogSink sink(environment, folder.path() / "no-journal");
    testing::internal::CaptureStderr();
    for (auto const level : {LogLevel::debug, LogLevel::info, LogLevel::error})
        sink.write(record(level, "text"));
    return testing::internal::GetCapturedStderr();
}

TEST(JournalLogSinkTests, withoutAJournalErrorsAloneGoToStandardError) {
    EXPECT_EQ(standardErrorOf(Environment()), "error Tests: text\n");
    EXPECT_EQ(standardErrorOf(Environment({{"QUILLORA_LOG", "loud"}})), "error Tests: text\n");
}

TEST(JournalLogSinkTests, theVariableLowersTheLevel) {
    EXPECT_EQ(standardErrorOf(Environment({{"QUILLORA_LOG", "info"}})),
              "info Tests: text\nerror Tests: text\n");
    EXPECT_EQ(standardErrorOf(Environment({{"QUILLORA_LOG", "debug"}})),
              "debug Tests: text\ninfo Tests: text\nerror Tests: text\n");
}

TEST(JournalLogSinkTests, aRecordBecomesTheJournalsFields) {
    EXPECT_EQ(JournalLogSink::journalFields(record(LogLevel::error, "no access")),
              (std::vector<std::string>{"MESSAGE=no access", "PRIORITY=3", "SUBSYSTEM=com.zentorik.quillora",
                                        "CATEGORY=Tests"}));
    EXPECT_EQ(JournalLogSink::journalFields(record(LogLevel::info, ""))[1], "PRIORITY=6");
    EXPECT_EQ(JournalLogSink::journalFields(record(LogLevel::debug, ""))[1], "PRIORITY=7");
}

TEST(JournalLogSinkTests, foreignTextsCannotBreakTheLine) {
    EXPECT_EQ(JournalLogSink::terminalLine(record(LogLevel::error, "title \x1B[2J\nerror Tests: forged")),
              "error Tests: title \uFFFD[2J error Tests: forged\n");
}

TEST(JournalLogSinkTests, onlyASocketThatSomebodyReadsIsAJournal) {
    TemporaryFolder const folder;
    auto const path = folder.path() / "socket";
    EXPECT_FALSE(JournalLogSink::isListening(path));

    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.native().size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, path.c_str(), path.native().size() + 1);
    int const listener = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(listener, 0);
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
    EXPECT_TRUE(JournalLogSink::isListening(path));

    ::close(listener);
    EXPECT_FALSE(JournalLogSink::isListening(path));
    EXPECT_FALSE(JournalLogSink::isListening(folder.place("file", "")));
    EXPECT_FALSE(JournalLogSink::isListening("/" + std::string(300, 'x')));
}

TEST(LoggerTests, recordsBearSubsystemAndCategory) {
    auto const sink = std::make_shared<RecordingLogSink>();
    Logger const logger(sink, "com.zentorik.quillora", "Tests");
    logger.info("first");
    logger.error("second");
    EXPECT_EQ(sink->records(),
              (std::vector<LogRecord>{record(LogLevel::info, "first"), record(LogLevel::error, "second")}));
    EXPECT_EQ(sink->messages(), (std::vector<std::string>{"first", "second"}));
}

} // namespace
