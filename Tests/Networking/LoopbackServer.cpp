#include "Tests/Networking/LoopbackServer.h"

#include <array>
#include <charconv>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::size_t contentLength(std::string_view head) {
    constexpr std::string_view name = "Content-Length: ";
    auto const at = head.find(name);
    std::size_t length = 0;
    if (at != std::string_view::npos) {
        auto const digits = head.substr(at + name.size());
        std::from_chars(digits.data(), digits.data() + digits.size(), length);
    }
    return length;
}

// The head and as much body as it announces.
std::string readRequest(int descriptor) {
    std::string request;
    std::array<char, 65536> buffer;
    while (true) {
        auto const headEnd = request.find("\r\n\r\n");
        if (headEnd != std::string::npos && request.size() >= headEnd + 4 + contentLength(request))
            return request;
        auto const count = ::recv(descriptor, buffer.data(), buffer.size(), 0);
        if (count <= 0) return request;
        request.append(buffer.data(), static_cast<std::size_t>(count));
        // A TLS handshake: this server cannot read further.
        if (request.starts_with('\x16')) return request;
    }
}

} // namespace

bool LoopbackServer::Connection::send(std::string_view bytes) const {
    while (!bytes.empty()) {
        auto const count = ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void LoopbackServer::Connection::waitForPeerToClose() const {
    std::array<char, 256> buffer;
    while (::recv(descriptor, buffer.data(), buffer.size(), 0) > 0) {
    }
}

void LoopbackServer::Connection::resetOnClose() const {
    linger const atOnce{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

LoopbackServer::LoopbackServer(Answer answer)
    : answer(std::move(answer)),
      listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    bool const isListening = ::bind(listener, generic, length) == 0 && ::listen(listener, 128) == 0 &&
                             ::getsockname(listener, generic, &length) == 0;
    if (!isListening) throw std::runtime_error("no loopback port for the test's server");
    port = ntohs(address.sin_port);
    acceptor = std::thread([this] { acceptConnections(); });
}

LoopbackServer::~LoopbackServer() {
    ::shutdown(listener, SHUT_RDWR);
    acceptor.join();
    for (auto& connection : connections)
        connection.join();
    ::close(listener);
}

std::string LoopbackServer::base() const {
    return "http://127.0.0.1:" + std::to_string(port);
}

std::vector<std::string> LoopbackServer::requests() const {
    std::lock_guard const lock(mutex);
    return received;
}

void LoopbackServer::acceptConnections() {
    while (true) {
        int const descriptor = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0) return;
        connections.emplace_back([this, descriptor] { serve(descriptor); });
    }
}

void LoopbackServer::serve(int descriptor) {
    auto const request = readRequest(descriptor);
    {
        std::lock_guard const lock(mutex);
        received.push_back(request);
    }
    answer(Connection(descriptor), request);
    ::close(descriptor);
}

std::string httpResponse(std::string_view status, std::string_view body, std::string_view headers) {
    return "HTTP/1.1 " + std::string(status) + "\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\n" + std::string(headers) + "\r\n" + std::string(body);
}
