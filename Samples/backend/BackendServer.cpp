#include "Samples/backend/BackendServer.h"

#include "Foundation/Task.h"
#include "Samples/backend/SelfSignedCertificate.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>

#include <chrono>
#include <sstream>

namespace Backend {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using Foundation::Task;
using Stream = boost::beast::tcp_stream;
using Request = http::request<http::string_body>;
using Response = http::response<http::string_body>;

constexpr auto patience = std::chrono::seconds(30);
constexpr std::uint64_t maximumBody = std::uint64_t{1} << 20;

Response responseTo(Request const& request, EventEndpoint& endpoint) {
    auto const answer = endpoint.answer({
        .method = std::string(request.method_string()),
        .target = std::string(request.target()),
        .authorization = std::string(request[http::field::authorization]),
        .body = request.body(),
    });
    Response response(static_cast<http::status>(answer.status), request.version());
    response.set(http::field::content_type, answer.contentType);
    response.body() = answer.body;
    response.keep_alive(request.keep_alive());
    response.prepare_payload();
    return response;
}

Task<Request> readRequest(Stream& stream, boost::beast::flat_buffer& buffer) {
    http::request_parser<http::string_body> parser;
    parser.body_limit(maximumBody);
    stream.expires_after(patience);
    co_await http::async_read(stream, buffer, parser, asio::use_awaitable);
    co_return parser.release();
}

Task<void> send(Stream& stream, std::string const& bytes) {
    stream.expires_after(patience);
    co_await asio::async_write(stream, asio::buffer(bytes), asio::use_awaitable);
}

Task<void> sendForEver(Stream& stream, std::string const& piece) {
    while (true) {
        co_await send(stream, piece);
    }
}

Task<void> sendSlowly(Stream& stream, std::string const& bytes) {
    auto executor = co_await asio::this_coro::executor;
    asio::steady_timer timer(executor);
    for (char const byte : bytes) {
        std::string const one(1, byte);
        co_await send(stream, one);
        timer.expires_after(std::chrono::milliseconds(20));
        co_await timer.async_wait(asio::use_awaitable);
    }
}

// Until the client gives up or the service's own patience ends.
Task<void> waitForTheOtherEnd(Stream& stream) {
    stream.expires_after(std::chrono::minutes(5));
    char byte = 0;
    co_await stream.async_read_some(asio::buffer(&byte, 1), asio::use_awaitable);
}

std::string wireText(Response const& response) {
    std::ostringstream text;
    text << response;
    return std::move(text).str();
}

std::string okHead(std::string_view headers) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n" + std::string(headers) + "\r\n";
}

void resetConnection(Stream& stream) {
    boost::system::error_code ignored;
    stream.socket().set_option(asio::socket_base::linger(true, 0), ignored);
    stream.socket().close(ignored);
}

Task<void> answerHostilely(Stream& stream, HostileMode mode, Response good) {
    std::string const whole = wireText(good);
    std::string reply;
    switch (mode.hostility) {
    case Hostility::slowBytes: co_await sendSlowly(stream, whole); co_return;
    case Hostility::silence:
        reply = okHead("Content-Length: 10\r\n");
        co_await send(stream, reply);
        co_await waitForTheOtherEnd(stream);
        co_return;
    case Hostility::endlessHeaders:
        reply = "HTTP/1.1 200 OK\r\n";
        co_await send(stream, reply);
        reply = "X-Filler: " + std::string(1000, 'x') + "\r\n";
        co_await sendForEver(stream, reply);
        co_return;
    case Hostility::gzipBomb:
        reply = okHead("Content-Encoding: gzip\r\n") + gzipBombPiece(true);
        co_await send(stream, reply);
        reply = gzipBombPiece(false);
        co_await sendForEver(stream, reply);
        co_return;
    case Hostility::endlessBody:
        reply = okHead("");
        co_await send(stream, reply);
        reply = std::string(65536, '[');
        co_await sendForEver(stream, reply);
        co_return;
    case Hostility::valueBomb: reply = okHead("Connection: close\r\n") + valueBomb(); break;
    case Hostility::resetAt:
        reply = whole.substr(0, mode.bytes);
        co_await send(stream, reply);
        resetConnection(stream);
        co_return;
    case Hostility::wrongContent: reply = okHead("Connection: close\r\n") + "<html>Sign in</html>"; break;
    case Hostility::redirect:
        reply =
            "HTTP/1.1 302 Found\r\nLocation: /v0/events\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
        break;
    case Hostility::noContent: reply = "HTTP/1.1 204 No Content\r\nConnection: close\r\n\r\n"; break;
    case Hostility::invalidUTF8:
        reply = okHead("Connection: close\r\n") + "[{\"evtId\":\"\xFF\xFE\"}]";
        break;
    case Hostility::tlsBadCertificate: reply = whole; break;
    }
    co_await send(stream, reply);
}

Task<void> serveRequests(Stream& stream, EventEndpoint& endpoint, std::optional<HostileMode> mode) {
    boost::beast::flat_buffer buffer;
    bool keepsAlive = true;
    while (keepsAlive) {
        Request const request = co_await readRequest(stream, buffer);
        Response response = responseTo(request, endpoint);
        keepsAlive = response.keep_alive() && !mode;
        if (mode) {
            co_await answerHostilely(stream, *mode, std::move(response));
            co_return;
        }
        co_await http::async_write(stream, response, asio::use_awaitable);
    }
}

// A client that is content with the certificate gets no further than the handshake.
Task<void> shakeHands(Stream& stream, std::shared_ptr<asio::ssl::context> context) {
    asio::ssl::stream<Stream&> secure(stream, *context);
    stream.expires_after(patience);
    co_await secure.async_handshake(asio::ssl::stream_base::server, asio::use_awaitable);
}

Task<void> serveConnection(Stream stream, EventEndpoint& endpoint, std::optional<HostileMode> mode,
                           std::shared_ptr<asio::ssl::context> secureContext) {
    try {
        if (secureContext) {
            co_await shakeHands(stream, secureContext);
        } else {
            co_await serveRequests(stream, endpoint, mode);
        }
    } catch (std::exception const&) {
        // The client has gone, or speaks no HTTP: its connection ends, the service does not.
        stream.close();
    }
}

Task<void> acceptConnections(asio::ip::tcp::acceptor& acceptor, EventEndpoint& endpoint,
                             std::optional<HostileMode> mode) {
    auto executor = co_await asio::this_coro::executor;
    std::shared_ptr<asio::ssl::context> secureContext;
    if (mode && mode->hostility == Hostility::tlsBadCertificate) {
        secureContext = std::make_shared<asio::ssl::context>(contextWithSelfSignedCertificate());
    }
    while (true) {
        asio::ip::tcp::socket socket = co_await acceptor.async_accept(asio::use_awaitable);
        auto connection = serveConnection(Stream(std::move(socket)), endpoint, mode, secureContext);
        asio::co_spawn(executor, std::move(connection), [](std::exception_ptr const&) {});
    }
}

} // namespace

std::optional<std::string> serve(EventEndpoint& endpoint, BackendServerOptions options,
                                 std::function<void(std::string const&)> listening) {
    asio::io_context context(1);
    asio::ip::tcp::acceptor acceptor(context);
    try {
        asio::ip::tcp::endpoint const address(asio::ip::address_v4::loopback(), options.port);
        acceptor.open(address.protocol());
        acceptor.set_option(asio::socket_base::reuse_address(true));
        acceptor.bind(address);
        acceptor.listen();
    } catch (std::exception const& error) {
        return "port " + std::to_string(options.port) +
               " of 127.0.0.1 cannot be listened on: " + error.what();
    }
    bool const isSecure =
        options.hostileMode && options.hostileMode->hostility == Hostility::tlsBadCertificate;

    asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([&](boost::system::error_code const&, int) { context.stop(); });
    asio::co_spawn(context, acceptConnections(acceptor, endpoint, options.hostileMode),
                   [](std::exception_ptr const&) {});
    listening((isSecure ? "https" : "http") +
              ("://127.0.0.1:" + std::to_string(acceptor.local_endpoint().port())));
    context.run();
    return std::nullopt;
}

} // namespace Backend
