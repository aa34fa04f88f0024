#include "Networking/APIClient.h"

#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Logging/RecordingConsoleOutput.h"
#include "Platform/URLSession/CurlURLSession.h"
#include "Tests/Networking/LoopbackServer.h"
#include "Tests/Platform/FaultScale.h"

#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <gtest/gtest.h>

// The client over real HTTP: what goes out, what each status becomes, and what the log says of it.

namespace {

namespace JSON = Foundation::JSON;
using Connection = LoopbackServer::Connection;
using Networking::APIError;
using Networking::APIResult;

struct Note {
    std::string title;

    static std::expected<Note, JSON::DecodeFailure> decode(JSON::Value const& value) {
        auto const member = JSON::required(value, "title");
        if (!member) return std::unexpected(member.error());
        auto title = JSON::text(**member);
        if (!title) return std::unexpected(title.error());
        return Note{.title = std::move(*title)};
    }
    [[nodiscard]] JSON::Value encode() const { return JSON::Object{{"title", title}}; }

    bool operator==(Note const&) const = default;
};

class GivenToken final : public Networking::AuthTokenProvider {
public:
    Foundation::Task<std::string> token() override { co_return "s3cr3t-token"; }
};

class SilentTokens final : public Networking::AuthTokenProvider {
public:
    Foundation::Task<std::string> token() override {
        auto executor = co_await boost::asio::this_coro::executor;
        boost::asio::steady_timer never(executor, std::chrono::hours(24));
        co_await never.async_wait(boost::asio::use_awaitable);
        co_return "";
    }
};

class APIClientLoopbackTests : public testing::Test {
protected:
    Networking::APIClient client(LoopbackServer const& server) { return client(server.base()); }
    Networking::APIClient client(std::string base) {
        return Networking::APIClient({.absoluteString = std::move(base)}, tokens,
                                     std::make_shared<Platform::CurlURLSession>(), true,
                                     {.files = files, .console = console, .clock = clock, .region = region});
    }

    static LoopbackServer::Answer always(std::string_view status, std::string_view body) {
        return [response = httpResponse(status, body)](Connection const& connection, std::string const&) {
            connection.send(response);
        };
    }

    // The record of one exchange, in which `request` and `response` stand as given.
    static std::string record(std::string const& endpoint, std::string const& request,
                              std::string const& response) {
        return "[2023-11-14 22:13:20]\nendpoint: " + endpoint + "\nrequest: " + request +
               "\nresponse: " + response + "\n";
    }
    std::string logged() { return files->content("/data/Quillora/Logs/network.log").value_or(""); }

    std::shared_ptr<Networking::AuthTokenProvider> tokens = std::make_shared<GivenToken>();
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::RecordingConsoleOutput> console =
        std::make_shared<Platform::RecordingConsoleOutput>();
    std::shared_ptr<Platform::FixedClock> clock =
        std::make_shared<Platform::FixedClock>(Foundation::Date{.secondsSince1970 = 1700000000});
    std::shared_ptr<Platform::FixedRegionSettings> region = std::make_shared<Platform::FixedRegionSettings>(
        Foundation::Calendar(Foundation::TimeZone::utc()), Foundation::Locale{.identifier = "en"});
};

struct StatusRow {
    char const* name;
    char const* status;
    std::string body;
    APIError error;
    std::string logged;
};

void PrintTo(StatusRow const& row, std::ostream* stream) {
    *stream << row.name;
}

class LoopbackStatusTests : public APIClientLoopbackTests, public testing::WithParamInterface<StatusRow> {};

TEST_P(LoopbackStatusTests, becomesItsErrorAndItsRecord) {
    LoopbackServer const server(always(GetParam().status, GetParam().body));
    auto const result = Foundation::runTask(client(server).get<Note>("/v0/notes/1", {}));
    EXPECT_EQ(result, APIResult<Note>(std::unexpected(GetParam().error)));
    auto const expected = record("GET " + server.base() + "/v0/notes/1", "-", GetParam().logged);
    EXPECT_EQ(logged(), expected);
    EXPECT_EQ(console->printed, expected + "\n");
    auto const sent = server.requests();
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_TRUE(sent[0].starts_with("GET /v0/notes/1 HTTP/1.1\r\n")) << sent[0];
    EXPECT_NE(sent[0].find("\r\nContent-Type: application/json\r\n"), std::string::npos);
    EXPECT_NE(sent[0].find("\r\nAuthorization: Bearer s3cr3t-token\r\n"), std::string::npos);
}

constexpr auto wrongFormat = "The data couldn’t be read because it isn’t in the correct format.";

INSTANTIATE_TEST_SUITE_P(
    Statuses, LoopbackStatusTests,
    testing::Values(
        StatusRow{"badRequest", "400 Bad Request", "falta", APIError::badRequest("falta"), "400 falta"},
        StatusRow{"unauthorized", "401 Unauthorized", "x", APIError::unauthorized(), "401 x"},
        StatusRow{"forbidden", "403 Forbidden", "no", APIError::forbidden("no"), "403 no"},
        StatusRow{"forbiddenNotText", "403 Forbidden", "\xFF\xFE", APIError::forbidden(""), "403 -"},
        StatusRow{"notFound", "404 Not Found", "", APIError::notFound(), "404 "},
        StatusRow{"redirect", "302 Found", "", APIError::server(302), "302 "},
        StatusRow{"server", "500 Internal Server Error", "a\nb", APIError::server(500), "500 a\nb"},
        StatusRow{"unknownStatus", "599 Odd", "", APIError::server(599), "599 "},
        StatusRow{"noContent", "204 No Content", "", APIError::decoding(wrongFormat), "204 "},
        StatusRow{"notTheRecord", "200 OK", "[]", APIError::decoding(wrongFormat), "200 []"}),
    [](auto const& info) { return info.param.name; });

TEST_F(APIClientLoopbackTests, aBodyGoesOutAndIsLoggedAndTheTokenIsNot) {
    LoopbackServer const server(always("201 Created", R"({"title":"b"})"));
    EXPECT_EQ(Foundation::runTask(client(server).post<Note>("/v0/notes", Note{.title = "ñ/"})),
              Note{.title = "b"});
    EXPECT_TRUE(server.requests().at(0).ends_with("\r\n\r\n{\"title\":\"ñ\\/\"}"));
    EXPECT_EQ(logged(),
              record("POST " + server.base() + "/v0/notes", R"({"title":"ñ\/"})", R"(201 {"title":"b"})"));
    EXPECT_EQ((logged() + console->printed).find("s3cr3t"), std::string::npos);
}

TEST_F(APIClientLoopbackTests, aDeleteSucceedsWithoutContentAndQueriesGoOutEscaped) {
    LoopbackServer const server(always("204 No Content", ""));
    EXPECT_TRUE(Foundation::runTask(client(server).remove("/v0/notes/1")).has_value());
    static_cast<void>(Foundation::runTask(client(server).getList<Note>("/v0/notes", {{"q", "a b&c"}})));
    auto const sent = server.requests();
    EXPECT_TRUE(sent.at(0).starts_with("DELETE /v0/notes/1 HTTP/1.1\r\n")) << sent.at(0);
    EXPECT_TRUE(sent.at(1).starts_with("GET /v0/notes?q=a%20b%26c HTTP/1.1\r\n")) << sent.at(1);
}

TEST_F(APIClientLoopbackTests, aServerThatIsGoneIsLoggedWithItsText) {
    std::string base;
    {
        LoopbackServer const server(always("200 OK", ""));
        base = server.base();
    }
    EXPECT_EQ(Foundation::runTask(client(base).get<Note>("/x", {})),
              APIResult<Note>(std::unexpected(APIError::transport("Could not connect to the server."))));
    EXPECT_EQ(logged(),
              record("GET " + base + "/x", "-", "transport error: Could not connect to the server."));
}

TEST_F(APIClientLoopbackTests, aTokenThatNeverComesIsWaitedForFifteenSecondsAndNothingIsSent) {
    if (!FaultScale::isFull())
        GTEST_SKIP() << "fifteen seconds are waited for only with QUILLORA_FAULTS=full";
    LoopbackServer const server(always("200 OK", "{}"));
    tokens = std::make_shared<SilentTokens>();
    auto const begin = std::chrono::steady_clock::now();
    auto const result = Foundation::runTask(client(server).post<Note>("/v0/notes", Note{.title = "a"}));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(15));
    EXPECT_EQ(result, APIResult<Note>(
                          std::unexpected(APIError::transport("tiempo de espera agotado al autenticar"))));
    EXPECT_TRUE(server.requests().empty());
    EXPECT_EQ(logged(), record("POST " + server.base() + "/v0/notes", "-", "auth timeout"));
}

} // namespace
