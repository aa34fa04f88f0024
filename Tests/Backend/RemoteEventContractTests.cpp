#include "Meetings/CompositeMeetRepositoryImpl.h"
#include "Meetings/Remote/RemoteEventRepositoryError.h"
#include "Meetings/Remote/RemoteEventRepositoryImpl.h"
#include "Platform/Appearance/FixedAppearance.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Logging/RecordingConsoleOutput.h"
#include "Platform/URLSession/CurlURLSession.h"
#include "Tests/Backend/BackendProcess.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

namespace {

using namespace Meetings;
using Foundation::runTask;

class GivenToken final : public Networking::AuthTokenProvider {
public:
    explicit GivenToken(std::string value) : value(std::move(value)) {}
    Foundation::Task<std::string> token() override { co_return value; }

private:
    std::string value;
};

// The repository as a program builds it, over real HTTP. `patience` is the time without data after which it
// gives up: short only where a service keeps silent, so that a slow machine is not taken for such a service.
std::shared_ptr<RemoteEventRepositoryImpl>
repositoryFor(std::string const& baseURL, std::string const& token,
              std::chrono::seconds patience = std::chrono::seconds(30)) {
    auto session = std::make_shared<Platform::CurlURLSession>(
        Platform::CurlURLSessionLimits{.timeWithoutData = patience, .responseBytes = std::size_t{4} << 20});
    Networking::NetworkLoggerServices const services{
        .files = std::make_shared<Platform::InMemoryFileManager>(),
        .console = std::make_shared<Platform::RecordingConsoleOutput>(),
        .clock = std::make_shared<Platform::FixedClock>(Foundation::Date{1700000000}),
        .region = std::make_shared<Platform::FixedRegionSettings>(utcCalendar(),
                                                                  Foundation::Locale{.identifier = "en"})};
    Networking::APIClient const client({.absoluteString = baseURL}, std::make_shared<GivenToken>(token),
                                       session, true, services);
    return std::make_shared<RemoteEventRepositoryImpl>(client, std::make_shared<Platform::FixedAppearance>());
}

template <typename T>
std::string failureOf(Foundation::Task<T> task) {
    try {
        runTask(std::move(task));
    } catch (RemoteEventRepositoryError const& error) {
        return error.message();
    }
    return "no failure";
}

TEST(RemoteEventContractTests, aMeetIsCreatedListedChangedAndDeletedOnTheService) {
    BackendProcess const service;
    auto const repository = repositoryFor(service.baseURL(), service.token());
    EXPECT_TRUE(runTask(repository->fetchAllMeets()).empty());

    auto created = runTask(repository->create(someMeet("Ño/a \"b\"")));
    EXPECT_EQ(created.metName, "Ño/a \"b\"");
    EXPECT_EQ(created.metDate.secondsSince1970, 1700000000);
    EXPECT_EQ(created.metDuration, 1800);
    EXPECT_EQ(created.metRecurringWeekdays, (std::set<std::int64_t>{2, 4}));
    EXPECT_EQ(runTask(repository->fetchAllMeets()), std::vector{created});

    created.metName = "Other";
    EXPECT_EQ(runTask(repository->update(created)), created);
    runTask(repository->deleteMeet(created));
    EXPECT_TRUE(runTask(repository->fetchAllMeets()).empty());
    EXPECT_EQ(failureOf(repository->deleteMeet(created)), "evento no encontrado");
    EXPECT_EQ(failureOf(repository->update(created)), "evento no encontrado");
}

TEST(RemoteEventContractTests, listingTwiceYieldsTheSameIdentifiers) {
    BackendProcess const service;
    auto const repository = repositoryFor(service.baseURL(), service.token());
    runTask(repository->create(someMeet("A")));
    runTask(repository->create(someMeet("B")));
    auto const first = runTask(repository->fetchAllMeets());
    ASSERT_EQ(first.size(), 2U);
    EXPECT_NE(first[0].metId, first[1].metId);
    EXPECT_EQ(runTask(repository->fetchAllMeets()), first);
}

TEST(RemoteEventContractTests, eachRefusalOfTheServiceBearsItsText) {
    BackendProcess const service({"--read-only"});
    auto const repository = repositoryFor(service.baseURL(), service.token());
    EXPECT_EQ(failureOf(repository->create(someMeet())), "solo lectura");
    auto const stranger = repositoryFor(service.baseURL(), "wrong");
    EXPECT_EQ(failureOf(stranger->fetchAllMeets()), "no autorizado");
}

TEST(RemoteEventContractTests, theCompositeShowsWhatTheOtherSourcesGiveWhenTheServiceIsGone) {
    auto gone = repositoryFor("http://127.0.0.1:1", "t");
    BackendProcess const service;
    auto present = repositoryFor(service.baseURL(), service.token());
    auto const created = runTask(present->create(someMeet()));
    CompositeMeetRepositoryImpl composite({gone, present});
    EXPECT_EQ(runTask(composite.fetchAllMeets()), std::vector{created});
}

struct HostileRow {
    std::string name;
    std::string mode;
    std::string failure;
    std::chrono::seconds patience = std::chrono::seconds(30);
};
class HostileServiceTests : public testing::TestWithParam<HostileRow> {};

TEST_P(HostileServiceTests, endsAsOneError) {
    BackendProcess const service({"--hostile", GetParam().mode});
    auto const repository = repositoryFor(service.baseURL(), service.token(), GetParam().patience);
    EXPECT_EQ(failureOf(repository->fetchAllMeets()), GetParam().failure);
}

constexpr auto wrongFormat = "The data couldn’t be read because it isn’t in the correct format.";
constexpr auto lost = "The network connection was lost.";
constexpr auto tooLarge = "The server's response is too large.";

INSTANTIATE_TEST_SUITE_P(Modes, HostileServiceTests,
                         testing::Values(HostileRow{"silence", "silence", "The request timed out.",
                                                    std::chrono::seconds(1)},
                                         HostileRow{"endlessHeaders", "endless-headers", tooLarge},
                                         HostileRow{"gzipBomb", "gzip-bomb", tooLarge},
                                         HostileRow{"endlessBody", "endless-body", tooLarge},
                                         HostileRow{"valueBomb", "value-bomb", wrongFormat},
                                         HostileRow{"resetAtOnce", "reset-at:0", lost},
                                         HostileRow{"resetInHead", "reset-at:20", lost},
                                         HostileRow{"wrongContent", "wrong-content", wrongFormat},
                                         HostileRow{"redirect", "redirect", "error del servidor (302)"},
                                         HostileRow{"noContent", "no-content", wrongFormat},
                                         HostileRow{"invalidUTF8", "invalid-utf8", wrongFormat},
                                         HostileRow{"badCertificate", "tls-bad-certificate",
                                                    "A secure connection to the server could not be made."}),
                         [](auto const& row) { return row.param.name; });

TEST(SlowServiceTests, slowBytesAreAwaited) {
    BackendProcess const service({"--hostile", "slow-bytes"});
    auto const repository = repositoryFor(service.baseURL(), service.token());
    EXPECT_TRUE(runTask(repository->fetchAllMeets()).empty());
}

} // namespace
