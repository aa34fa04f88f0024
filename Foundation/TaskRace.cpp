#include "Foundation/TaskRace.h"

#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/deferred.hpp>
#include <boost/asio/experimental/parallel_group.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <algorithm>
#include <chrono>

namespace Foundation {
namespace {

namespace asio = boost::asio;

Task<void> sleep(std::uint64_t nanoseconds) {
    auto executor = co_await asio::this_coro::executor;
    // The clock counts in signed 64-bit nanoseconds: a longer sleep would wrap into the past.
    constexpr std::uint64_t century = std::uint64_t{100} * 366 * 86400 * 1'000'000'000;
    auto const duration = std::chrono::nanoseconds(static_cast<std::int64_t>(std::min(nanoseconds, century)));
    asio::steady_timer timer(executor, duration);
    co_await timer.async_wait(asio::use_awaitable);
}

// Runs on one strand: cancellation signals may not meet on two threads.
Task<bool> race(Task<void> contender, std::uint64_t nanoseconds) {
    auto executor = co_await asio::this_coro::executor;
    auto group = asio::experimental::make_parallel_group(
        asio::co_spawn(executor, std::move(contender), asio::deferred),
        asio::co_spawn(executor, sleep(nanoseconds), asio::deferred));
    auto const [order, contenderError, timerError] =
        co_await group.async_wait(asio::experimental::wait_for_one(), asio::use_awaitable);
    bool const isContenderFirst = order[0] == 0;
    if (isContenderFirst) co_return true;
    // The timer came first by being cancelled from outside: that is no timeout.
    if (timerError) std::rethrow_exception(timerError);
    co_return false;
}

} // namespace

Task<bool> outrunsTimer(Task<void> contender, std::uint64_t nanoseconds) {
    auto executor = co_await asio::this_coro::executor;
    auto strand = asio::make_strand(executor);
    auto raced = race(std::move(contender), nanoseconds);
    bool const isContenderFirst = co_await asio::co_spawn(strand, std::move(raced), asio::use_awaitable);
    co_return isContenderFirst;
}

} // namespace Foundation
