#include "Platform/URLSession/CurlURLSession.h"

#include "Foundation/Task.h"
#include "Tests/Networking/LoopbackServer.h"

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

namespace asio = boost::asio;
using Connection = LoopbackServer::Connection;
using Platform::CurlURLSession;
using Platform::URLError;
using Platform::URLRequest;
using Platform::URLResponse;

URLRequest request(std::string url) {
    return URLRequest{.url = {.absoluteString = std::move(url)}};
}

LoopbackServer::Answer always(std::string response) {
    return [response = std::move(response)](Connection const& connection, std::string const&) {
        connection.send(response);
    };
}

// The case that the exchange failed with; fails the test when it gave a response.
std::optional<URLError::Case> failureOf(CurlURLSession& session, URLRequest const& request) {
    try {
        auto const response = Foundation::runTask(session.data(request));
        ADD_FAILURE() << "a response came: " << response.statusCode.value_or(0);
        return std::nullopt;
    } catch (URLError const& error) {
        return error.errorCase();
    }
}

TEST(CurlURLSessionTests, aGetYieldsStatusAndBody) {
    LoopbackServer server(always(httpResponse("200 OK", "[1]")));
    CurlURLSession session;
    auto const response = Foundation::runTask(session.data(request(server.base() + "/v0/events?q=1")));
    EXPECT_EQ(response.statusCode, 200);
    EXPECT_EQ(response.data, "[1]");
    auto const sent = server.requests().at(0);
    EXPECT_TRUE(sent.starts_with("GET /v0/events?q=1 HTTP/1.1\r\n")) << sent;
}

TEST(CurlURLSessionTests, headersAndBodyGoOutAsGiven) {
    LoopbackServer server(always(httpResponse("201 Created", "")));
    CurlURLSession session;
    auto post = request(server.base() + "/x");
    post.httpMethod = "POST";
    post.httpBody = std::string("{\"a\":\0}", 7);
    post.setValue("application/json", "Content-Type");
    post.setValue("Bearer t", "Authorization");
    EXPECT_EQ(Foundation::runTask(session.data(post)).statusCode, 201);
    auto const sent = server.requests().at(0);
    EXPECT_TRUE(sent.starts_with("POST /x HTTP/1.1\r\n"));
    EXPECT_NE(sent.find("\r\nContent-Type: application/json\r\n"), std::string::npos);
    EXPECT_NE(sent.find("\r\nAuthorization: Bearer t\r\n"), std::string::npos);
    EXPECT_NE(sent.find("\r\nContent-Length: 7\r\n"), std::string::npos);
    EXPECT_EQ(sent.find("Expect:"), std::string::npos);
    EXPECT_TRUE(sent.ends_with(std::string("\r\n\r\n{\"a\":\0}", 11)));
}

TEST(CurlURLSessionTests, aDeleteKeepsItsBodyAndAPatchWithoutBodySaysItsLength) {
    LoopbackServer server(always(httpResponse("204 No Content", "")));
    CurlURLSession session;
    auto remove = request(server.base() + "/x");
    remove.httpMethod = "DELETE";
    remove.httpBody = "{}";
    EXPECT_EQ(Foundation::runTask(session.data(remove)).statusCode, 204);
    auto patch = request(server.base() + "/x");
    patch.httpMethod = "PATCH";
    EXPECT_EQ(Foundation::runTask(session.data(patch)).statusCode, 204);
    auto const sent = server.requests();
    EXPECT_TRUE(sent.at(0).starts_with("DELETE /x HTTP/1.1\r\n"));
    EXPECT_TRUE(sent.at(0).ends_with("\r\n\r\n{}"));
    EXPECT_TRUE(sent.at(1).starts_with("PATCH /x HTTP/1.1\r\n"));
    EXPECT_NE(sent.at(1).find("\r\nContent-Length: 0\r\n"), std::string::npos) << sent.at(1);
}

TEST(CurlURLSessionTests, dotsInAPathStay) {
    LoopbackServer server(always(httpResponse("200 OK", "")));
    CurlURLSession session;
    Foundation::runTask(session.data(request(server.base() + "/v0/events/..")));
    EXPECT_TRUE(server.requests().at(0).starts_with("GET /v0/events/.. HTTP/1.1\r\n"));
}

TEST(CurlURLSessionTests, aRedirectIsNotFollowed) {
    LoopbackServer server(always(httpResponse("302 Found", "", "Location: /elsewhere\r\n")));
    CurlURLSession session;
    EXPECT_EQ(Foundation::runTask(session.data(request(server.base() + "/x"))).statusCode, 302);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST(CurlURLSessionTests, aProxyOfTheEnvironmentIsNotUsed) {
    ::setenv("http_proxy", "http://127.0.0.1:1", 1);
    LoopbackServer server(always(httpResponse("200 OK", "")));
    CurlURLSession session;
    EXPECT_EQ(Foundation::runTask(session.data(request(server.base() + "/x"))).statusCode, 200);
    ::unsetenv("http_proxy");
}

TEST(CurlURLSessionTests, compressedContentIsDecoded) {
    // "hello" by gzip, its time and system fields zero.
    constexpr unsigned char packed[] = {0x1f, 0x8b, 0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                        0x03, 0xcb, 0x48, 0xcd, 0xc9, 0xc9, 0x07, 0x00, 0x86,
                                        0xa6, 0x10, 0x36, 0x05, 0x00, 0x00, 0x00};
    std::string const body(reinterpret_cast<char const*>(packed), sizeof packed);
    LoopbackServer server(always(httpResponse("200 OK", body, "Content-Encoding: gzip\r\n")));
    CurlURLSession session;
    EXPECT_EQ(Foundation::runTask(session.data(request(server.base() + "/x"))).data, "hello");
}

TEST(CurlURLSessionTests, plainTextInsteadOfAHandshakeIsNoSecureConnection) {
    LoopbackServer server(always("this is no handshake"));
    CurlURLSession session;
    auto const secure = "https" + server.base().substr(4);
    EXPECT_EQ(failureOf(session, request(secure)), URLError::Case::secureConnectionFailed);
}

TEST(CurlURLSessionTests, aClosedPortCannotBeConnectedTo) {
    std::string base;
    {
        LoopbackServer const server(always(""));
        base = server.base();
    }
    CurlURLSession session;
    EXPECT_EQ(failureOf(session, request(base)), URLError::Case::cannotConnectToHost);
}

TEST(CurlURLSessionTests, aHostThatDoesNotExistIsNotFound) {
    CurlURLSession session;
    EXPECT_EQ(failureOf(session, request("http://no-such-host.invalid/")), URLError::Case::cannotFindHost);
}

TEST(CurlURLSessionTests, aResetAndAnEarlyEndAreALostConnection) {
    LoopbackServer server([](Connection const& connection, std::string const& request) {
        if (request.starts_with("GET /reset")) connection.resetOnClose();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly this");
    });
    CurlURLSession session;
    EXPECT_EQ(failureOf(session, request(server.base() + "/reset")), URLError::Case::networkConnectionLost);
    EXPECT_EQ(failureOf(session, request(server.base() + "/early")), URLError::Case::networkConnectionLost);
}

TEST(CurlURLSessionTests, whatIsNoAnswerOfHTTPIsABadOneAndNoMatterOfTheScheme) {
    for (auto const* answer : {"SSH-2.0-x\r\n", "[]", "HTTP/1.1 99 X\r\n\r\n[]",
                               "HTTP/1.1 1000 X\r\nContent-Length: 2\r\n\r\n[]"}) {
        LoopbackServer server(always(answer));
        CurlURLSession session;
        EXPECT_EQ(failureOf(session, request(server.base())), URLError::Case::badServerResponse) << answer;
    }
}

TEST(CurlURLSessionTests, silenceTimesOut) {
    LoopbackServer server([](Connection const& connection, std::string const&) {
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n");
        connection.waitForPeerToClose();
    });
    CurlURLSession session({.timeWithoutData = std::chrono::seconds(1)});
    EXPECT_EQ(failureOf(session, request(server.base())), URLError::Case::timedOut);
}

TEST(CurlURLSessionTests, aBodyBeyondTheBoundIsRefusedAlsoOnceDecoded) {
    LoopbackServer server([](Connection const& connection, std::string const&) {
        connection.send("HTTP/1.1 200 OK\r\n\r\n");
        std::string const block(65536, 'x');
        while (connection.send(block)) {
        }
    });
    CurlURLSession session({.responseBytes = 1 << 20});
    EXPECT_EQ(failureOf(session, request(server.base())), URLError::Case::dataLengthExceedsMaximum);
}

TEST(CurlURLSessionTests, headersWithoutEndAreRefused) {
    LoopbackServer server([](Connection const& connection, std::string const&) {
        connection.send("HTTP/1.1 200 OK\r\n");
        std::string const line = "X-Filler: " + std::string(1000, 'x') + "\r\n";
        while (connection.send(line)) {
        }
    });
    CurlURLSession session;
    EXPECT_EQ(failureOf(session, request(server.base())), URLError::Case::dataLengthExceedsMaximum);
}

TEST(CurlURLSessionTests, aHeaderWithALineBreakNeverLeaves) {
    LoopbackServer server(always(httpResponse("200 OK", "")));
    CurlURLSession session;
    for (std::string const& bad :
         {std::string("a\r\nX-Evil: 1"), std::string("a\nb"), std::string("a\0b", 3)}) {
        auto get = request(server.base());
        get.setValue("Bearer " + bad, "Authorization");
        EXPECT_EQ(failureOf(session, get), URLError::Case::badRequestHeader);
    }
    EXPECT_TRUE(server.requests().empty());
}

TEST(CurlURLSessionTests, aFileIsNoResponseOfHTTPAndOtherSchemesAreUnsupported) {
    CurlURLSession session;
    EXPECT_EQ(Foundation::runTask(session.data(request("file:///etc/hostname"))).statusCode, std::nullopt);
    EXPECT_EQ(failureOf(session, request("ftp://127.0.0.1/x")), URLError::Case::unsupportedURL);
}

TEST(CurlURLSessionTests, cancellingTheTaskEndsTheExchange) {
    LoopbackServer server(
        [](Connection const& connection, std::string const&) { connection.waitForPeerToClose(); });
    CurlURLSession session;
    asio::io_context context;
    asio::cancellation_signal signal;
    std::string failure;
    asio::co_spawn(
        context, session.data(request(server.base())),
        asio::bind_cancellation_slot(signal.slot(), [&](std::exception_ptr const& error, URLResponse const&) {
            try {
                if (error) std::rethrow_exception(error);
            } catch (std::exception const& thrown) {
                failure = thrown.what();
            }
        }));
    asio::steady_timer canceller(context, std::chrono::milliseconds(50));
    canceller.async_wait(
        [&](boost::system::error_code const&) { signal.emit(asio::cancellation_type::terminal); });
    context.run();
    EXPECT_EQ(failure, "cancelled");
}

TEST(CurlURLSessionTests, endingTheSessionEndsItsExchanges) {
    LoopbackServer server(
        [](Connection const& connection, std::string const&) { connection.waitForPeerToClose(); });
    asio::io_context context;
    std::string failure;
    auto session = std::make_unique<CurlURLSession>();
    asio::co_spawn(context, session->data(request(server.base())),
                   [&](std::exception_ptr const& error, URLResponse const&) {
                       try {
                           if (error) std::rethrow_exception(error);
                       } catch (URLError const& thrown) {
                           failure = thrown.what();
                       }
                   });
    asio::steady_timer ender(context, std::chrono::milliseconds(50));
    ender.async_wait([&](boost::system::error_code const&) { session.reset(); });
    context.run();
    EXPECT_EQ(failure, "cancelled");
}

// Starts an exchange; `count` grows when it ends well.
template <typename Executor>
void start(Executor&& executor, CurlURLSession& session, std::string const& url, std::atomic<int>& count) {
    asio::co_spawn(executor, session.data(request(url)),
                   [&count](std::exception_ptr const& error, URLResponse const& response) {
                       if (!error && response.statusCode == 200) ++count;
                   });
}

TEST(CurlURLSessionTests, exchangesOfSeveralThreadsEndOnceEach) {
    constexpr int count = 200;
    LoopbackServer server(always(httpResponse("200 OK", "[]")));
    std::atomic<int> ended = 0;
    CurlURLSession session;
    asio::thread_pool pool(4);
    for (int number = 0; number < count; ++number)
        start(pool, session, server.base(), ended);
    pool.join();
    EXPECT_EQ(ended, count);
    EXPECT_EQ(server.requests().size(), static_cast<std::size_t>(count));
}

TEST(CurlURLSessionTests, oneSessionServesSeveralLoopsAtOnce) {
    LoopbackServer server(always(httpResponse("200 OK", "[]")));
    std::atomic<int> ended = 0;
    CurlURLSession session;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                asio::io_context context;
                start(context, session, server.base(), ended);
                context.run();
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(ended, 80);
}

TEST(CurlURLSessionTests, aLoopThatGoesTakesItsExchangesAlong) {
    LoopbackServer server([](Connection const& connection, std::string const& asked) {
        if (asked.starts_with("GET /silence")) connection.waitForPeerToClose();
        connection.send(httpResponse("200 OK", "[]"));
    });
    std::atomic<int> ended = 0;
    CurlURLSession session;
    {
        asio::io_context context;
        start(context, session, server.base() + "/silence", ended);
        while (server.requests().empty())
            context.run_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(ended, 0);
    EXPECT_EQ(Foundation::runTask(session.data(request(server.base()))).statusCode, 200);
}

TEST(CurlURLSessionTests, aRequestWithABodyLeavesNothingOfItToTheNext) {
    LoopbackServer server(always(httpResponse("200 OK", "[]")));
    CurlURLSession session;
    auto post = request(server.base() + "/x");
    post.httpMethod = "POST";
    post.httpBody = "{\"a\":1}";
    post.setValue("Bearer t", "Authorization");
    Foundation::runTask(session.data(post));
    Foundation::runTask(session.data(request(server.base() + "/y")));
    auto head = request(server.base() + "/z");
    head.httpMethod = "HEAD";
    Foundation::runTask(session.data(head));
    Foundation::runTask(session.data(request(server.base() + "/y")));
    auto const sent = server.requests();
    for (std::size_t const index : {1U, 3U}) {
        EXPECT_TRUE(sent.at(index).starts_with("GET /y HTTP/1.1\r\n")) << sent.at(index);
        EXPECT_EQ(sent.at(index).find("Authorization"), std::string::npos);
        EXPECT_EQ(sent.at(index).find("Content-Length"), std::string::npos);
        EXPECT_TRUE(sent.at(index).ends_with("\r\n\r\n"));
    }
    EXPECT_TRUE(sent.at(2).starts_with("HEAD /z HTTP/1.1\r\n"));
}

} // namespace
