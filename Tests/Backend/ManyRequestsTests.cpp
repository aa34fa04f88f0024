#include "Meetings/Remote/EventResponseDTO.h"
#include "Networking/APIClient.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Logging/RecordingConsoleOutput.h"
#include "Platform/URLSession/CurlURLSession.h"
#include "Tests/Backend/BackendProcess.h"
#include "Tests/Meetings/MeetFixtures.h"
#include "Tests/Platform/FaultScale.h"

#include <boost/asio/detached.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <malloc.h>

namespace {

namespace asio = boost::asio;

class GivenToken final : public Networking::AuthTokenProvider {
public:
    explicit GivenToken(std::string value) : value(std::move(value)) {}
    Foundation::Task<std::string> token() override { co_return value; }

private:
    std::string value;
};

Networking::APIClient clientFor(BackendProcess const& service,
                                std::shared_ptr<Platform::URLSession> session) {
    Networking::NetworkLoggerServices const services{
        .files = std::make_shared<Platform::InMemoryFileManager>(),
        .console = std::make_shared<Platform::RecordingConsoleOutput>(),
        .clock = std::make_shared<Platform::FixedClock>(Foundation::Date{1700000000}),
        .region = std::make_shared<Platform::FixedRegionSettings>(Meetings::utcCalendar(),
                                                                  Foundation::Locale{.identifier = "en"})};
    return Networking::APIClient({.absoluteString = service.baseURL()},
                                 std::make_shared<GivenToken>(service.token()), std::move(session), false,
                                 services);
}

std::size_t entriesOf(char const* folder) {
    auto const listing = std::filesystem::directory_iterator(folder);
    return static_cast<std::size_t>(std::distance(begin(listing), end(listing)));
}
std::size_t openDescriptors() {
    return entriesOf("/proc/self/fd");
}
std::size_t threads() {
    return entriesOf("/proc/self/task");
}
// Bytes of the heap that are in use. Nothing under a sanitizer, which has a heap and a leak check of its own.
std::size_t usedMemory() {
    auto const usage = ::mallinfo2();
    return usage.uordblks + usage.hblkhd;
}

Foundation::Task<void> list(Networking::APIClient client, std::shared_ptr<int> successes) {
    std::vector<Foundation::URLQueryItem> noQuery;
    auto const events = co_await client.getList<Meetings::EventResponseDTO>("/v0/events", std::move(noQuery));
    if (events) ++*successes;
}

// How many of a hundred requests at a time, for so many rounds, were answered.
int ask(Networking::APIClient const& client, int rounds) {
    auto const successes = std::make_shared<int>(0);
    for (int round = 0; round < rounds; ++round) {
        asio::io_context context(1);
        for (int number = 0; number < 100; ++number)
            asio::co_spawn(context, list(client, successes), asio::detached);
        context.run();
    }
    return *successes;
}

TEST(ManyRequestsTests, aHundredAtATimeLeaveNoDescriptorThreadOrMemoryBehind) {
    BackendProcess const service;
    auto const descriptorsBefore = openDescriptors();
    auto const threadsBefore = threads();
    {
        auto session = std::make_shared<Platform::CurlURLSession>();
        auto const client = clientFor(service, session);
        // The library keeps what it needs again, once.
        ASSERT_EQ(ask(client, 2), 200);
        auto const descriptorsOnceOpen = openDescriptors();
        auto const memoryBefore = usedMemory();

        int const rounds = FaultScale::of(100);
        EXPECT_EQ(ask(client, rounds), rounds * 100);

        // How many of the connections stay open at the end differs from round to round.
        auto const connections =
            static_cast<std::size_t>(Platform::CurlURLSessionLimits().connectionsPerHost);
        EXPECT_LE(openDescriptors(), descriptorsOnceOpen + connections);
        EXPECT_EQ(threads(), threadsBefore);
        // The allocator keeps some freed pieces at hand and counts them. Were the smallest of all pieces, 32
        // bytes, kept of each of ten thousand requests, it would be more than this.
        EXPECT_LE(usedMemory(), memoryBefore + (std::size_t{256} << 10));
    }
    EXPECT_EQ(openDescriptors(), descriptorsBefore);
    EXPECT_EQ(threads(), threadsBefore);
}

TEST(ManyRequestsTests, aConnectionServesTheNextLoopToo) {
    BackendProcess const service;
    auto session = std::make_shared<Platform::CurlURLSession>();
    auto const client = clientFor(service, session);
    auto const successes = std::make_shared<int>(0);
    Foundation::runTask(list(client, successes));
    auto const onceOpen = openDescriptors();
    for (int round = 0; round < 5; ++round)
        Foundation::runTask(list(client, successes));
    EXPECT_EQ(*successes, 6);
    EXPECT_EQ(openDescriptors(), onceOpen);
}

} // namespace
