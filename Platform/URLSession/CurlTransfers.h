#pragma once

#include "Platform/URLSession/CurlExchange.h"

#include <memory>
#include <mutex>
#include <vector>

namespace Platform {

/// The library's side of a loop: the connections that it keeps open, and handles that were used before. It
/// belongs to one loop at a time, and between two loops to none.
class CurlTransfers final {
public:
    explicit CurlTransfers(CurlURLSessionLimits limits);
    ~CurlTransfers();

    CurlTransfers(CurlTransfers const&) = delete;
    CurlTransfers& operator=(CurlTransfers const&) = delete;

    [[nodiscard]] CURLM* multi() const { return handle; }

    /// A handle that is set up for any request; null when memory is out.
    [[nodiscard]] CurlHandle takeHandle();
    void giveBack(CurlHandle used);

private:
    CurlURLSessionLimits limits;
    CURLM* handle;
    // Making one and setting it up costs a good part of a short exchange.
    std::vector<CurlHandle> used;
};

/// Transfers that no loop uses at the moment, so that connections outlive the loop that opened them. May be
/// used from any thread.
class IdleCurlTransfers final {
public:
    explicit IdleCurlTransfers(CurlURLSessionLimits limits);

    [[nodiscard]] std::unique_ptr<CurlTransfers> take();
    void giveBack(std::unique_ptr<CurlTransfers> transfers);

private:
    CurlURLSessionLimits limits;
    std::mutex mutex;
    std::vector<std::unique_ptr<CurlTransfers>> idle;
};

} // namespace Platform
