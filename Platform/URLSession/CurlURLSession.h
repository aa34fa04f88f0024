#pragma once

#include "Platform/URLSession/URLSession.h"

#include <chrono>
#include <cstddef>
#include <memory>

namespace Platform {

/// What bounds an exchange.
struct CurlURLSessionLimits {
    std::chrono::seconds timeWithoutData{60}; ///< Then the exchange has timed out.
    /// Of the decoded body: thousands of events. What they become takes six times as much memory, so that
    /// with more the programs would no longer get by with 64 MiB.
    std::size_t responseBytes = std::size_t{4} << 20;
    long connectionsPerHost = 6; ///< Of each loop that tasks run on.
};

/// HTTP over libcurl. The loop that the awaiting task runs on also drives its exchange, so that no request
/// changes threads. Redirects are not followed, no proxy or credential is taken from the environment, paths
/// go out as they are written, TLS is 1.2 or later with the system's certificates.
class CurlURLSession final : public URLSession {
public:
    explicit CurlURLSession(CurlURLSessionLimits limits = {});

    /// Ends every running exchange as cancelled; the tasks that await them are told by their own loops.
    ~CurlURLSession() override;

    CurlURLSession(CurlURLSession const&) = delete;
    CurlURLSession& operator=(CurlURLSession const&) = delete;

    Foundation::Task<URLResponse> data(URLRequest request) override;

private:
    class Loops;
    std::shared_ptr<Loops> loops;
};

} // namespace Platform
