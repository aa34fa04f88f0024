#include "Foundation/TaskRace.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>

namespace Foundation {
namespace {

namespace asio = boost::asio;

std::chrono::nanoseconds timerDuration(std::uint64_t nanoseconds) {
    // The clock counts in signed 64-bit nanoseconds: a longer sleep would wrap into the past.
    constexpr std::uint64_t century = std::uint64_t{100} * 366 * 86400 * 1'000'000'000;
    return std::chrono::nanoseconds(static_cast<std::int64_t>(std::min(nanoseconds, century)));
}

// What a race and its contender share. The timer is the race's clock, and the bell that the contender rings.
// All but `hasEnded` is touched on one strand only: cancellation signals may not meet on two threads.
struct Course {
    explicit Course(asio::any_io_executor const& executor)
        : strand(asio::make_strand(executor)),
          timer(strand) {}

    asio::strand<asio::any_io_executor> strand;
    asio::steady_timer timer;
    asio::cancellation_signal stop;
    std::atomic<bool> hasEnded = false;
};

Task<void> runContender(Task<void> contender, std::shared_ptr<Course> course) {
    try {
        co_await std::move(contender);
    } catch (...) {
        // How it ended is its own affair.
    }
    course->hasEnded = true;
    course->timer.cancel();
}

Task<void> awaitContender(std::shared_ptr<Course> course) {
    co_await asio::this_coro::reset_cancellation_state(asio::disable_cancellation());
    while (!course->hasEnded) {
        course->timer.expires_at(asio::steady_timer::time_point::max());
        co_await course->timer.async_wait(asio::as_tuple(asio::use_awaitable));
    }
}

Task<bool> race(std::shared_ptr<Course> course, std::uint64_t nanoseconds) {
    // Whatever cancels the race, the contender is not left behind.
    co_await asio::this_coro::throw_if_cancelled(false);
    if (course->hasEnded) co_return true;
    course->timer.expires_after(timerDuration(nanoseconds));
    auto const [timerError] = co_await course->timer.async_wait(asio::as_tuple(asio::use_awaitable));
    if (course->hasEnded) co_return true;
    course->stop.emit(asio::cancellation_type::terminal);
    co_await awaitContender(course);
    // A timer that was cancelled from outside is no timeout.
    if (timerError) throw boost::system::system_error(timerError);
    co_return false;
}

} // namespace

Task<bool> outrunsTimer(Task<void> contender, std::uint64_t nanoseconds) {
    auto executor = co_await asio::this_coro::executor;
    auto course = std::make_shared<Course>(executor);
    asio::co_spawn(course->strand, runContender(std::move(contender), course),
                   asio::bind_cancellation_slot(course->stop.slot(), [course](std::exception_ptr const&) {}));
    // One that need not wait has won before there is anything to race against.
    if (course->hasEnded) co_return true;
    auto raced = race(course, nanoseconds);
    bool const isContenderFirst =
        co_await asio::co_spawn(course->strand, std::move(raced), asio::use_awaitable);
    co_return isContenderFirst;
}

} // namespace Foundation
