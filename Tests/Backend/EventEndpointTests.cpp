#include "Samples/backend/EventEndpoint.h"

#include <gtest/gtest.h>

namespace {

using Backend::Access;
using Backend::EndpointRequest;
using Backend::EventArchive;
using Backend::EventEndpoint;

constexpr auto body = R"({"evtTitle":"A","evtSchedule":"2023-11-14T22:13:20Z","evtDurationMinutes":30,)"
                      R"("evtHasAlarm":false,"evtDescription":"","evtRepeat":"never","evtCustomRepeat":""})";
constexpr auto stored =
    R"({"evtId":"e1","evtTitle":"A","evtSchedule":"2023-11-14T22:13:20Z",)"
    R"("evtDurationMinutes":30,"evtDescription":"","evtRepeat":"never","evtCustomRepeat":""})";

class EventEndpointTests : public testing::Test {
protected:
    static EventEndpoint endpoint(Access access = Access::readWrite) {
        return {EventArchive::open(std::nullopt).value(), "secret", access,
                [number = 0]() mutable { return "e" + std::to_string(++number); }};
    }

    static EndpointRequest request(std::string method, std::string target, std::string content = "") {
        return {.method = std::move(method),
                .target = std::move(target),
                .authorization = "Bearer secret",
                .body = std::move(content)};
    }
};

TEST_F(EventEndpointTests, aCreatedEventIsListedWithItsIdentifierAndWithoutTheAlarm) {
    auto service = endpoint();
    EXPECT_EQ(service.answer(request("GET", "/v0/events")).body, "[]");
    auto const created = service.answer(request("POST", "/v0/events", body));
    EXPECT_EQ(created.status, 201U);
    EXPECT_EQ(created.body, stored);
    EXPECT_EQ(created.contentType, "application/json");
    EXPECT_EQ(service.answer(request("GET", "/v0/events?x=1")).body, "[" + std::string(stored) + "]");
}

TEST_F(EventEndpointTests, anEventIsReplacedKeptByPatchAndDeleted) {
    auto service = endpoint();
    service.answer(request("POST", "/v0/events", body));
    auto const changed = std::string(body).replace(std::string(body).find("\"A\""), 3, "\"B\"");
    EXPECT_EQ(service.answer(request("PUT", "/v0/events/e1", changed)).status, 200U);
    EXPECT_NE(service.answer(request("PATCH", "/v0/events/%651")).body.find("\"B\""), std::string::npos);
    EXPECT_EQ(service.answer(request("DELETE", "/v0/events/e1")).status, 204U);
    EXPECT_EQ(service.answer(request("DELETE", "/v0/events/e1")).status, 404U);
    EXPECT_EQ(service.answer(request("PUT", "/v0/events/e1", body)).status, 404U);
}

TEST_F(EventEndpointTests, onlyTheTokensBearerIsLetIn) {
    auto service = endpoint();
    for (auto const* const authorization : {"", "secret", "Bearer", "Bearer Secret", "Bearer secret "}) {
        auto get = request("GET", "/v0/events");
        get.authorization = authorization;
        EXPECT_EQ(service.answer(get).status, 401U) << authorization;
    }
}

TEST_F(EventEndpointTests, aReadOnlyServiceForbidsEveryChange) {
    auto service = endpoint(Access::readOnly);
    EXPECT_EQ(service.answer(request("GET", "/v0/events")).status, 200U);
    for (auto const* const method : {"POST", "PUT", "PATCH", "DELETE"}) {
        EXPECT_EQ(service.answer(request(method, "/v0/events", body)).status, 403U) << method;
    }
}

TEST_F(EventEndpointTests, aBadRecordIsRefusedWithTheFieldsName) {
    auto service = endpoint();
    auto const refusal = [&](std::string const& content) {
        auto const response = service.answer(request("POST", "/v0/events", content));
        return std::to_string(response.status) + " " + response.body;
    };
    EXPECT_EQ(refusal("nothing"), "400 el cuerpo no es JSON");
    EXPECT_EQ(refusal("{}"), "400 falta evtTitle");
    auto const replaced = [](std::string_view part, std::string_view with) {
        std::string text = body;
        return text.replace(text.find(part), part.size(), with);
    };
    EXPECT_EQ(refusal(replaced("\"2023-11-14T22:13:20Z\"", "\"today\"")),
              "400 valor inválido en evtSchedule");
    EXPECT_EQ(refusal(replaced("30", "30.5")), "400 valor inválido en evtDurationMinutes");
    EXPECT_EQ(refusal(replaced("false", "0")), "400 valor inválido en evtHasAlarm");
    EXPECT_EQ(service.answer(request("GET", "/v0/events")).body, "[]");
}

TEST_F(EventEndpointTests, otherPathsAndMethodsAreRefused) {
    auto service = endpoint();
    EXPECT_EQ(service.answer(request("GET", "/")).status, 404U);
    EXPECT_EQ(service.answer(request("GET", "/v0/eventsx")).status, 404U);
    EXPECT_EQ(service.answer(request("GET", "/v0/events/%4")).status, 400U);
    EXPECT_EQ(service.answer(request("DELETE", "/v0/events")).status, 405U);
}

} // namespace
