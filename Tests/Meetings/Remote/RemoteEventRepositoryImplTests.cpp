#include "Meetings/Remote/RemoteEventRepositoryImpl.h"

#include "Meetings/Remote/RemoteEventRepositoryError.h"
#include "Platform/Appearance/FixedAppearance.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Logging/RecordingConsoleOutput.h"
#include "Platform/URLSession/FakeURLSession.h"
#include "Tests/Meetings/MeetFixtures.h"

#include <gtest/gtest.h>

namespace {

using namespace Meetings;
using Foundation::runTask;
using Platform::URLResponse;

class GivenToken final : public Networking::AuthTokenProvider {
public:
    Foundation::Task<std::string> token() override { co_return "t"; }
};

constexpr auto event =
    R"({"evtId":"e/1","evtTitle":"T","evtSchedule":"2023-11-14T22:13:20Z","evtDurationMinutes":30,)"
    R"("evtDescription":"","evtRepeat":"never","evtCustomRepeat":""})";

class RemoteEventRepositoryImplTests : public testing::Test {
protected:
    RemoteEventRepositoryImplTests()
        : repository(Networking::APIClient(
                         {.absoluteString = "https://h/api"}, std::make_shared<GivenToken>(), session, false,
                         {.files = std::make_shared<Platform::InMemoryFileManager>(),
                          .console = std::make_shared<Platform::RecordingConsoleOutput>(),
                          .clock = std::make_shared<Platform::FixedClock>(Foundation::Date{1700000000}),
                          .region = std::make_shared<Platform::FixedRegionSettings>(
                              utcCalendar(), Foundation::Locale{.identifier = "en"})}),
                     std::make_shared<Platform::FixedAppearance>()) {}

    static MeetEntity remoteMeet() {
        auto meet = someMeet();
        meet.metOriginalIdentifier = "e/1";
        meet.metSource = MeetSource::backend;
        return meet;
    }

    // The text that the operation fails with.
    template <typename T>
    static std::string failureOf(Foundation::Task<T> task) {
        try {
            runTask(std::move(task));
        } catch (RemoteEventRepositoryError const& error) {
            return error.message();
        }
        return "no failure";
    }

    std::shared_ptr<Platform::FakeURLSession> session = std::make_shared<Platform::FakeURLSession>();
    RemoteEventRepositoryImpl repository;
};

TEST_F(RemoteEventRepositoryImplTests, anEmptyListIsNoError) {
    session->prepare(URLResponse{.statusCode = 200, .data = "[]"});
    EXPECT_TRUE(runTask(repository.fetchAllMeets()).empty());
    EXPECT_EQ(session->requests[0].url.absoluteString, "https://h/api/v0/events");
    EXPECT_EQ(session->requests[0].httpMethod, "GET");
}

TEST_F(RemoteEventRepositoryImplTests, listingTwiceYieldsEqualMeetsInTheOrderReceived) {
    std::string const list = "[" + std::string(event) + "," + event + "]";
    session->prepare(URLResponse{.statusCode = 200, .data = list});
    session->prepare(URLResponse{.statusCode = 200, .data = list});
    auto const first = runTask(repository.fetchAllMeets());
    auto const second = runTask(repository.fetchAllMeets());
    ASSERT_EQ(first.size(), 2U);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first[0].metSource, MeetSource::backend);
    EXPECT_EQ(first[0].metOriginalIdentifier, "e/1");
}

TEST_F(RemoteEventRepositoryImplTests, creatingPostsToTheCollection) {
    session->prepare(URLResponse{.statusCode = 201, .data = event});
    EXPECT_EQ(runTask(repository.create(someMeet())).metOriginalIdentifier, "e/1");
    EXPECT_EQ(session->requests[0].httpMethod, "POST");
    EXPECT_EQ(session->requests[0].url.absoluteString, "https://h/api/v0/events");
    EXPECT_TRUE(session->requests[0].httpBody->starts_with(R"({"evtTitle":"Stand-up")"));
}

TEST_F(RemoteEventRepositoryImplTests, updatingAndDeletingNameTheItem) {
    session->prepare(URLResponse{.statusCode = 200, .data = event});
    session->prepare(URLResponse{.statusCode = 204, .data = ""});
    EXPECT_EQ(runTask(repository.update(remoteMeet())).metName, "T");
    runTask(repository.deleteMeet(remoteMeet()));
    EXPECT_EQ(session->requests[0].httpMethod, "PUT");
    EXPECT_EQ(session->requests[0].url.absoluteString, "https://h/api/v0/events/e/1");
    EXPECT_EQ(session->requests[1].httpMethod, "DELETE");
    EXPECT_EQ(session->requests[1].url.absoluteString, "https://h/api/v0/events/e/1");
    EXPECT_EQ(session->requests[1].httpBody, std::nullopt);
}

TEST_F(RemoteEventRepositoryImplTests, eachFailureBearsTheTextForThePerson) {
    session->prepare(URLResponse{.statusCode = 404, .data = "x"});
    EXPECT_EQ(failureOf(repository.update(remoteMeet())), "evento no encontrado");
    session->prepare(URLResponse{.statusCode = 404, .data = "x"});
    EXPECT_EQ(failureOf(repository.deleteMeet(remoteMeet())), "evento no encontrado");
    session->prepare(URLResponse{.statusCode = 401, .data = "x"});
    EXPECT_EQ(failureOf(repository.fetchAllMeets()), "no autorizado");
    session->prepare(URLResponse{.statusCode = 503, .data = "x"});
    EXPECT_EQ(failureOf(repository.fetchAllMeets()), "error del servidor (503)");
    session->prepare(URLResponse{.statusCode = 400, .data = "falta el título"});
    EXPECT_EQ(failureOf(repository.create(someMeet())), "falta el título");
    session->prepare(Platform::URLError::Case::timedOut);
    EXPECT_EQ(failureOf(repository.fetchAllMeets()), "The request timed out.");
}

} // namespace
