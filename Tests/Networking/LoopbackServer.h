#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// A real TCP server on 127.0.0.1 that reads one request a connection and lets a test write the raw answer.
class LoopbackServer {
public:
    /// One accepted connection; it is closed after the answer.
    class Connection {
    public:
        explicit Connection(int descriptor) : descriptor(descriptor) {}

        /// False once the peer has gone.
        bool send(std::string_view bytes) const;
        /// Waits until the peer closes its end.
        void waitForPeerToClose() const;
        /// Makes the close a reset instead of an orderly end.
        void resetOnClose() const;

    private:
        int descriptor;
    };
    using Answer = std::function<void(Connection const&, std::string const& request)>;

    explicit LoopbackServer(Answer answer);
    ~LoopbackServer();

    LoopbackServer(LoopbackServer const&) = delete;
    LoopbackServer& operator=(LoopbackServer const&) = delete;

    [[nodiscard]] std::string base() const;
    /// Head and body of each request, in the order in which they came.
    [[nodiscard]] std::vector<std::string> requests() const;

private:
    void acceptConnections();
    void serve(int descriptor);

    Answer answer;
    int listener;
    std::uint16_t port;
    mutable std::mutex mutex;
    std::vector<std::string> received;
    std::vector<std::thread> connections;
    std::thread acceptor;
};

/// A whole response with a length.
std::string httpResponse(std::string_view status, std::string_view body, std::string_view headers = "");
