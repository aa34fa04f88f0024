#include "Networking/NetworkLogger.h"

#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Logging/RecordingConsoleOutput.h"

#include <gtest/gtest.h>

namespace {

class NetworkLoggerTests : public testing::Test {
protected:
    Networking::NetworkLogger logger(bool isEnabled) {
        return Networking::NetworkLogger(
            isEnabled, {.files = files, .console = console, .clock = clock, .region = region});
    }

    std::optional<std::string> logged() { return files->content("/data/Quillora/Logs/network.log"); }

    Platform::URLRequest request{.url = {.absoluteString = "https://h/v0/events"}};
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::RecordingConsoleOutput> console =
        std::make_shared<Platform::RecordingConsoleOutput>();
    std::shared_ptr<Platform::FixedClock> clock =
        std::make_shared<Platform::FixedClock>(Foundation::Date{.secondsSince1970 = 1700000000.9});
    std::shared_ptr<Platform::FixedRegionSettings> region = std::make_shared<Platform::FixedRegionSettings>(
        Foundation::Calendar(*Foundation::TimeZone::named("America/New_York")),
        Foundation::Locale{.identifier = "ar_EG"});
};

constexpr std::string_view firstRecord = "[2023-11-14 17:13:20]\n"
                                         "endpoint: GET https://h/v0/events\n"
                                         "request: -\n"
                                         "response: 200 []\n";

TEST_F(NetworkLoggerTests, aRecordGoesToTheFileAndWithOneMoreLineFeedToTheConsole) {
    logger(true).log("GET https://h/v0/events", request, "200 []");
    EXPECT_EQ(logged(), firstRecord);
    EXPECT_EQ(console->printed, std::string(firstRecord) + "\n");
}

TEST_F(NetworkLoggerTests, aSecondRecordFollowsTheFirst) {
    auto const log = logger(true);
    log.log("GET https://h/v0/events", request, "200 []");
    request.httpBody = "{\"a\":1}";
    log.log("POST https://h/v0/events", request, "201 {\n}");
    EXPECT_EQ(logged(), std::string(firstRecord) + "[2023-11-14 17:13:20]\n"
                                                   "endpoint: POST https://h/v0/events\n"
                                                   "request: {\"a\":1}\n"
                                                   "response: 201 {\n}\n");
}

TEST_F(NetworkLoggerTests, aBodyThatIsNotUTF8IsADash) {
    request.httpBody = "\xFF\xFE";
    logger(true).log("POST https://h", request, "200 x");
    EXPECT_EQ(logged(), "[2023-11-14 17:13:20]\nendpoint: POST https://h\nrequest: -\nresponse: 200 x\n");
}

TEST_F(NetworkLoggerTests, anEmptyBodyIsAnEmptyLineAndNotADash) {
    request.httpBody = "";
    logger(true).log("POST https://h", request, "200 x");
    EXPECT_EQ(logged(), "[2023-11-14 17:13:20]\nendpoint: POST https://h\nrequest: \nresponse: 200 x\n");
}

TEST_F(NetworkLoggerTests, whenDisabledNothingIsPrintedOrWritten) {
    logger(false).log("GET https://h", request, "200 []");
    EXPECT_EQ(console->printed, "");
    EXPECT_EQ(logged(), std::nullopt);
}

TEST_F(NetworkLoggerTests, withoutADataHomeItOnlyPrints) {
    files->withoutApplicationSupport();
    logger(true).log("GET https://h/v0/events", request, "200 []");
    EXPECT_EQ(console->printed, std::string(firstRecord) + "\n");
    EXPECT_TRUE(files->files().empty());
}

TEST_F(NetworkLoggerTests, aFullDiskIsSilent) {
    files->failsAfter(0);
    logger(true).log("GET https://h/v0/events", request, "200 []");
    EXPECT_EQ(console->printed, std::string(firstRecord) + "\n");
    EXPECT_EQ(logged(), std::nullopt);
}

TEST_F(NetworkLoggerTests, aRecordThatIsNotUTF8IsNotAppended) {
    logger(true).log("GET https://h", request, "200 \xFF");
    EXPECT_EQ(logged(), std::nullopt);
}

} // namespace
