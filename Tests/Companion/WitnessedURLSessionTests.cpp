#include "Applications/Composition/WitnessedURLSession.h"

#include "Platform/URLSession/FakeURLSession.h"

#include <gtest/gtest.h>

namespace {

using Composition::WitnessedURLSession;
using Platform::URLError;
using Platform::URLResponse;

class WitnessedURLSessionTests : public testing::Test {
protected:
    // Whether the server may have done it, when its answer was this.
    template <typename Answer>
    bool mayHaveChanged(std::string method, Answer answer) {
        fake->prepare(answer);
        Platform::URLRequest request{.url = {.absoluteString = "https://h/"},
                                     .httpMethod = std::move(method)};
        try {
            Foundation::runTask(session.data(std::move(request)));
        } catch (URLError const&) {
            // What it is remembered for.
        }
        return session.mayHaveChangedSomething();
    }

    static URLResponse answer(std::int64_t status) { return {.statusCode = status, .data = ""}; }

    std::shared_ptr<Platform::FakeURLSession> fake = std::make_shared<Platform::FakeURLSession>();
    WitnessedURLSession session{fake};
};

TEST_F(WitnessedURLSessionTests, beforeAnyRequestNothingHasHappened) {
    EXPECT_FALSE(session.mayHaveChangedSomething());
    EXPECT_EQ(session.lastStatus(), std::nullopt);
}

TEST_F(WitnessedURLSessionTests, aServerThatSaysSoOrBreaksDownMayHaveDoneIt) {
    for (std::int64_t const status : {200, 201, 204, 500, 502, 504}) {
        EXPECT_TRUE(mayHaveChanged("PUT", answer(status))) << status;
        EXPECT_EQ(session.lastStatus(), status);
    }
    for (std::int64_t const status : {302, 400, 401, 403, 404, 409})
        EXPECT_FALSE(mayHaveChanged("POST", answer(status))) << status;
}

TEST_F(WitnessedURLSessionTests, aRequestThatCannotHaveArrivedChangedNothing) {
    for (auto const error : {URLError::Case::cannotConnectToHost, URLError::Case::cannotFindHost,
                             URLError::Case::secureConnectionFailed, URLError::Case::unsupportedURL})
        EXPECT_FALSE(mayHaveChanged("DELETE", error));
    for (auto const error : {URLError::Case::networkConnectionLost, URLError::Case::timedOut,
                             URLError::Case::badServerResponse, URLError::Case::dataLengthExceedsMaximum})
        EXPECT_TRUE(mayHaveChanged("DELETE", error));
    EXPECT_EQ(session.lastStatus(), std::nullopt);
}

TEST_F(WitnessedURLSessionTests, whoOnlyReadsChangesNothing) {
    EXPECT_TRUE(mayHaveChanged("PUT", URLError::Case::timedOut));
    EXPECT_FALSE(mayHaveChanged("GET", URLError::Case::timedOut));
    EXPECT_FALSE(mayHaveChanged("GET", answer(200)));
}

} // namespace
