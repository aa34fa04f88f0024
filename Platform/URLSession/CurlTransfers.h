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
    explicit CurlTransfers(long connectionsPerHost);
    ~CurlTransfers();

    CurlTransfers(CurlTransfers const&) = delete;
    CurlTransfers& operator=(CurlTransfers const&) = delete;

    [[nodiscard]] CURLM* multi() const { return handle; }

    /// A handle that is as new; null when memory is out.
    [[nodiscard]] CurlHandle takeHandle();
    void giveBack(CurlHandle used);

private:
    CURLM* handle;
    // Making a handle costs a good part of a short exchange; a used one keeps nothing but its memory.
    std::vector<CurlHandle> used;
};

/// Transfers that no loop uses at the moment, so that connections outlive the loop that opened them. May be
/// used from any thread.
class IdleCurlTransfers final {
public:
    explicit IdleCurlTransfers(long connectionsPerHost) : connectionsPerHost(connectionsPerHost) {}

    [[nodiscard]] std::unique_ptr<CurlTransfers> take();
    void giveBack(std::unique_ptr<CurlTransfers> transfers);

private:
    long connectionsPerHost;
    std::mutex mutex;
    std::vector<std::unique_ptr<CurlTransfers>> idle;
};

} // namespace Platform
