#include "Networking/APIClient.h"

#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/FixedRegionSettings.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Logging/RecordingConsoleOutput.h"
#include "Platform/URLSession/FakeURLSession.h"

#include "Networking/TimeoutError.h"

#include <gtest/gtest.h>

namespace {

namespace JSON = Foundation::JSON;
using Networking::APIError;
using Networking::APIResult;
using Platform::URLError;
using Platform::URLResponse;

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

enum class TokenBehaviour { yields, refuses, runsOutOfTime };

class PreparedTokenProvider final : public Networking::AuthTokenProvider {
public:
    Foundation::Task<std::string> token() override {
        ++asked;
        if (behaviour == TokenBehaviour::refuses) throw std::runtime_error("signed out");
        if (behaviour == TokenBehaviour::runsOutOfTime) throw Networking::TimeoutError();
        co_return value;
    }

    TokenBehaviour behaviour = TokenBehaviour::yields;
    std::string value = "s3cr3t-token";
    int asked = 0;
};

class APIClientTests : public testing::Test {
protected:
    Networking::APIClient client(std::string base = "https://api.example.com") {
        return Networking::APIClient({.absoluteString = std::move(base)}, tokens, session, true,
                                     {.files = files, .console = console, .clock = clock, .region = region});
    }

    APIResult<Note> getNote() { return Foundation::runTask(client().get<Note>("/v0/notes/1", {})); }

    // The log without its time line.
    std::string logged() {
        auto const text = files->content("/data/Quillora/Logs/network.log").value_or("");
        return text.empty() ? "" : text.substr(text.find('\n') + 1);
    }

    std::shared_ptr<PreparedTokenProvider> tokens = std::make_shared<PreparedTokenProvider>();
    std::shared_ptr<Platform::FakeURLSession> session = std::make_shared<Platform::FakeURLSession>();
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::RecordingConsoleOutput> console =
        std::make_shared<Platform::RecordingConsoleOutput>();
    std::shared_ptr<Platform::FixedClock> clock =
        std::make_shared<Platform::FixedClock>(Foundation::Date{.secondsSince1970 = 1700000000});
    std::shared_ptr<Platform::FixedRegionSettings> region = std::make_shared<Platform::FixedRegionSettings>(
        Foundation::Calendar(Foundation::TimeZone::utc()), Foundation::Locale{.identifier = "en"});
};

TEST_F(APIClientTests, aGetSendsTheTokenAndDecodesTheRecord) {
    session->prepare(URLResponse{.statusCode = 200, .data = R"({"title":"a","more":1})"});
    EXPECT_EQ(getNote(), Note{.title = "a"});
    ASSERT_EQ(session->requests.size(), 1U);
    auto const& request = session->requests[0];
    EXPECT_EQ(request.url.absoluteString, "https://api.example.com/v0/notes/1");
    EXPECT_EQ(request.httpMethod, "GET");
    EXPECT_EQ(request.httpBody, std::nullopt);
    std::vector<std::pair<std::string, std::string>> const headers = {
        {"Content-Type", "application/json"}, {"Authorization", "Bearer s3cr3t-token"}};
    EXPECT_EQ(request.headers, headers);
    EXPECT_EQ(logged(), "endpoint: GET https://api.example.com/v0/notes/1\nrequest: -\n"
                        "response: 200 {\"title\":\"a\",\"more\":1}\n");
}

TEST_F(APIClientTests, queryItemsAreEscaped) {
    session->prepare(URLResponse{.statusCode = 200, .data = "[]"});
    auto const notes =
        Foundation::runTask(client().getList<Note>("/v0/notes", {{"q", "a b&c"}, {"all", std::nullopt}}));
    EXPECT_EQ(notes, std::vector<Note>{});
    EXPECT_EQ(session->requests[0].url.absoluteString, "https://api.example.com/v0/notes?q=a%20b%26c&all");
}

TEST_F(APIClientTests, aPostAndAPutSendTheEncodedBody) {
    session->prepare(URLResponse{.statusCode = 201, .data = R"({"title":"b"})"});
    session->prepare(URLResponse{.statusCode = 200, .data = R"({"title":"c"})"});
    EXPECT_EQ(Foundation::runTask(client().post<Note>("/v0/notes", Note{.title = "a/b"})),
              Note{.title = "b"});
    EXPECT_EQ(Foundation::runTask(client().put<Note>("/v0/notes/1", Note{.title = "c"})), Note{.title = "c"});
    EXPECT_EQ(session->requests[0].httpMethod, "POST");
    EXPECT_EQ(session->requests[0].httpBody, R"({"title":"a\/b"})");
    EXPECT_EQ(session->requests[1].httpMethod, "PUT");
    EXPECT_EQ(session->requests[1].httpBody, R"({"title":"c"})");
}

TEST_F(APIClientTests, aPatchSendsNoBody) {
    session->prepare(URLResponse{.statusCode = 200, .data = R"({"title":"a"})"});
    EXPECT_EQ(Foundation::runTask(client().patch<Note>("/v0/notes/1")), Note{.title = "a"});
    EXPECT_EQ(session->requests[0].httpMethod, "PATCH");
    EXPECT_EQ(session->requests[0].httpBody, std::nullopt);
}

TEST_F(APIClientTests, aDeleteIgnoresTheContentAndMaySendABody) {
    session->prepare(URLResponse{.statusCode = 204, .data = ""});
    session->prepare(URLResponse{.statusCode = 200, .data = "not json"});
    EXPECT_TRUE(Foundation::runTask(client().remove("/v0/notes/1")).has_value());
    EXPECT_TRUE(Foundation::runTask(client().remove("/v0/notes", Note{.title = "a"})).has_value());
    EXPECT_EQ(session->requests[0].httpMethod, "DELETE");
    EXPECT_EQ(session->requests[0].httpBody, std::nullopt);
    EXPECT_EQ(session->requests[1].httpBody, R"({"title":"a"})");
}

struct StatusRow {
    std::string name;
    std::int64_t status;
    std::string body;
    APIError error;
    std::string logged;
};
class APIClientStatusTests : public APIClientTests, public testing::WithParamInterface<StatusRow> {};

TEST_P(APIClientStatusTests, mapsTheStatusAndLogsIt) {
    session->prepare(URLResponse{.statusCode = GetParam().status, .data = GetParam().body});
    EXPECT_EQ(getNote(), APIResult<Note>(std::unexpected(GetParam().error)));
    EXPECT_EQ(logged(), "endpoint: GET https://api.example.com/v0/notes/1\nrequest: -\nresponse: " +
                            GetParam().logged + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Table, APIClientStatusTests,
    testing::Values(StatusRow{"badRequest", 400, "falta el título", APIError::badRequest("falta el título"),
                              "400 falta el título"},
                    StatusRow{"unauthorized", 401, "x", APIError::unauthorized(), "401 x"},
                    StatusRow{"forbidden", 403, "no", APIError::forbidden("no"), "403 no"},
                    StatusRow{"forbiddenNotText", 403, "\xFF", APIError::forbidden(""), "403 -"},
                    StatusRow{"notFound", 404, "", APIError::notFound(), "404 "},
                    StatusRow{"redirect", 302, "", APIError::server(302), "302 "},
                    StatusRow{"continue", 100, "", APIError::server(100), "100 "},
                    StatusRow{"server", 500, "oops", APIError::server(500), "500 oops"}),
    [](auto const& row) { return row.param.name; });

TEST_F(APIClientTests, anEmptyBodyIsNoRecord) {
    session->prepare(URLResponse{.statusCode = 204, .data = ""});
    EXPECT_EQ(getNote(), APIResult<Note>(std::unexpected(APIError::decoding(
                             "The data couldn’t be read because it isn’t in the correct format."))));
}

TEST_F(APIClientTests, aMissingKeyIsSaidApart) {
    session->prepare(URLResponse{.statusCode = 200, .data = R"({"Title":"a"})"});
    EXPECT_EQ(getNote(), APIResult<Note>(std::unexpected(
                             APIError::decoding("The data couldn’t be read because it is missing."))));
}

TEST_F(APIClientTests, oneBadElementFailsTheList) {
    session->prepare(URLResponse{.statusCode = 200, .data = R"([{"title":"a"},{"title":3}])"});
    EXPECT_EQ(Foundation::runTask(client().getList<Note>("/v0/notes", {})).error().errorCase(),
              APIError::Case::decoding);
}

TEST_F(APIClientTests, aTokenThatComesTooLateIsLoggedAndNothingIsSent) {
    tokens->behaviour = TokenBehaviour::runsOutOfTime;
    auto const result = Foundation::runTask(client().post<Note>("/v0/notes", Note{.title = "a"}));
    EXPECT_EQ(result, APIResult<Note>(
                          std::unexpected(APIError::transport("tiempo de espera agotado al autenticar"))));
    EXPECT_TRUE(session->requests.empty());
    EXPECT_EQ(logged(),
              "endpoint: POST https://api.example.com/v0/notes\nrequest: -\nresponse: auth timeout\n");
}

TEST_F(APIClientTests, aRefusedTokenIsUnauthorizedWithoutARecord) {
    tokens->behaviour = TokenBehaviour::refuses;
    EXPECT_EQ(getNote(), APIResult<Note>(std::unexpected(APIError::unauthorized())));
    EXPECT_TRUE(session->requests.empty());
    EXPECT_EQ(logged(), "");
    EXPECT_EQ(console->printed, "");
}

TEST_F(APIClientTests, aBodyThatCannotBeEncodedIsReportedAfterTheTokenWasAskedFor) {
    auto const result = Foundation::runTask(client().post<Note>("/v0/notes", Note{.title = "\xFF"}));
    EXPECT_EQ(result,
              APIResult<Note>(std::unexpected(APIError::badRequest("no se pudo codificar la solicitud"))));
    EXPECT_EQ(tokens->asked, 1);
    EXPECT_TRUE(session->requests.empty());
    EXPECT_EQ(logged(), "");
}

TEST_F(APIClientTests, aBaseThatIsNoLinkAsksForNoToken) {
    auto const result = Foundation::runTask(client("not a link").get<Note>("/v0/notes", {}));
    EXPECT_EQ(result, APIResult<Note>(std::unexpected(APIError::badRequest("URL inválida"))));
    EXPECT_EQ(tokens->asked, 0);
}

TEST_F(APIClientTests, aFailedExchangeIsLoggedWithItsText) {
    session->prepare(URLError::Case::cannotConnectToHost);
    EXPECT_EQ(getNote(),
              APIResult<Note>(std::unexpected(APIError::transport("Could not connect to the server."))));
    EXPECT_EQ(logged(), "endpoint: GET https://api.example.com/v0/notes/1\nrequest: -\n"
                        "response: transport error: Could not connect to the server.\n");
}

TEST_F(APIClientTests, aResponseThatIsNotHTTPIsInvalid) {
    session->prepare(URLResponse{.statusCode = std::nullopt, .data = "{}"});
    EXPECT_EQ(getNote(), APIResult<Note>(std::unexpected(APIError::transport("respuesta inválida"))));
    EXPECT_EQ(logged(), "endpoint: GET https://api.example.com/v0/notes/1\nrequest: -\n"
                        "response: invalid response\n");
}

TEST_F(APIClientTests, theTokenStandsInNoLogAndOnNoConsole) {
    session->prepare(URLResponse{.statusCode = 500, .data = "oops"});
    session->prepare(URLError::Case::timedOut);
    auto const first = getNote();
    auto const second = getNote();
    for (auto const& text : {first.error().message(), second.error().message(), console->printed,
                             files->content("/data/Quillora/Logs/network.log").value_or("")}) {
        EXPECT_EQ(text.find("s3cr3t"), std::string::npos);
    }
}

TEST_F(APIClientTests, aServerThatRepeatsTheRequestShowsNoToken) {
    for (std::int64_t const status : {400, 403}) {
        session->prepare(URLResponse{.statusCode = status,
                                     .data = "GET / HTTP/1.1\r\nAuthorization: Bearer s3cr3t-token\r\n"});
        EXPECT_EQ(getNote().error().message(), "GET / HTTP/1.1\r\nAuthorization: Bearer [token]\r\n");
    }
    session->prepare(URLResponse{.statusCode = 200, .data = R"({"title":"s3cr3t-token"})"});
    static_cast<void>(Foundation::runTask(
        client("https://h/s3cr3t-token").post<Note>("/v0/notes", Note{.title = "my s3cr3t-token"})));
    EXPECT_TRUE(logged().ends_with("endpoint: POST https://h/[token]/v0/notes\n"
                                   "request: {\"title\":\"my [token]\"}\n"
                                   "response: 200 {\"title\":\"[token]\"}\n"))
        << logged();
    EXPECT_EQ(logged().find("s3cr3t"), std::string::npos);
    EXPECT_EQ(console->printed.find("s3cr3t"), std::string::npos);
}

TEST(APIErrorTextTests, fixedTextsHaveTheirExactBytes) {
    EXPECT_EQ(std::string_view("URL inválida").size(), 13U);
    EXPECT_EQ(std::string_view("respuesta inválida").size(), 19U);
}

} // namespace
