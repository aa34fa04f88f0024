#pragma once

#include "Platform/URLSession/URLSession.h"

#include <chrono>
#include <cstddef>
#include <memory>

namespace Platform {

/// What bounds an exchange.
struct CurlURLSessionLimits {
    std::chrono::seconds timeWithoutData{60};          ///< Then the exchange has timed out.
    std::size_t responseBytes = std::size_t{32} << 20; ///< Of the decoded body.
    long connectionsPerHost = 6;
};

/// HTTP over libcurl: one worker thread drives all exchanges of a session. Redirects are not followed, no
/// proxy or credential is taken from the environment, paths go out as they are written, TLS is 1.2 or later
/// with the system's certificates.
class CurlURLSession final : public URLSession {
public:
    explicit CurlURLSession(CurlURLSessionLimits limits = {});

    /// Ends every running exchange as cancelled and waits for the worker.
    ~CurlURLSession() override;

    CurlURLSession(CurlURLSession const&) = delete;
    CurlURLSession& operator=(CurlURLSession const&) = delete;

    Foundation::Task<URLResponse> data(URLRequest request) override;

private:
    class Worker;
    std::shared_ptr<Worker> worker;
};

} // namespace Platform
