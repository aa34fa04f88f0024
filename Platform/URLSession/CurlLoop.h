#pragma once

#include "Platform/URLSession/CurlTransfers.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Platform {

/// Drives the exchanges that the tasks of one loop await, on that very loop: it waits for the library's
/// sockets and for its deadline, and no other thread takes part. May be called from every thread that runs
/// the loop.
///
/// While exchanges run, the waits that the loop holds own this object. A loop that is destroyed before they
/// end thus takes it along, with the tasks that await it.
class CurlLoop final : public std::enable_shared_from_this<CurlLoop> {
public:
    CurlLoop(boost::asio::any_io_executor executor, std::shared_ptr<IdleCurlTransfers> idleTransfers);
    ~CurlLoop();

    CurlLoop(CurlLoop const&) = delete;
    CurlLoop& operator=(CurlLoop const&) = delete;

    /// Starts the exchange. Its outcome if it ended within the call, as a quick server on a connection that
    /// is open lets it; otherwise the caller goes on with `await`.
    [[nodiscard]] std::optional<CurlOutcome> submit(std::unique_ptr<CurlExchange> exchange);

    /// Has the outcome of a submitted exchange handed over, but never within this call.
    void await(std::uint64_t identifier, CurlCompletion completion);

    /// Ends the exchange as cancelled. One that has ended, or is unknown, is left alone.
    void cancel(std::uint64_t identifier);

    /// The same for every exchange that runs.
    void cancelAll();

private:
    using Clock = std::chrono::steady_clock;

    enum class Direction : std::uint8_t { reading, writing };
    struct Finished {
        CurlCompletion completion;
        CurlOutcome outcome;
    };
    class Watch;

    static int socketChanged(CURL*, curl_socket_t socket, int wanted, void* context, void*);
    static int deadlineChanged(CURLM*, long milliseconds, void* context);

    // Runs `work` with the lock held, then tells the exchanges that it ended.
    template <typename Work>
    void locked(Resumption resumption, Work work);

    void begin(std::unique_ptr<CurlExchange> exchange);
    void finish(std::uint64_t identifier, CurlOutcome outcome);
    void finishAll(URLError::Case errorCase);
    void act(curl_socket_t socket, int events);
    void collectFinished();
    void connect();
    void rest();

    int watch(curl_socket_t socket, int wanted);
    void awaitSocket(std::shared_ptr<Watch> const& watched, Direction direction);
    void socketIsReady(std::shared_ptr<Watch> const& watched, Direction direction, bool hasFailed);
    void awaitDeadline();
    void deadlineHasCome(std::uint64_t wait);

    boost::asio::any_io_executor executor;
    std::shared_ptr<IdleCurlTransfers> idleTransfers;

    std::mutex mutex;
    std::unique_ptr<CurlTransfers> transfers; ///< Null while nothing runs.
    std::map<std::uint64_t, std::unique_ptr<CurlExchange>> exchanges;
    std::map<curl_socket_t, std::shared_ptr<Watch>> watches;
    std::map<std::uint64_t, CurlOutcome> unclaimed; ///< Of exchanges that ended before a task awaited them.
    std::vector<Finished> finished;
    bool isDueNow = false;
    std::optional<Clock::time_point> deadline; ///< As the library gave it.
    boost::asio::steady_timer timer;
    std::optional<Clock::time_point> awaited; ///< What the timer waits for.
    std::uint64_t lastWait = 0;
};

} // namespace Platform
