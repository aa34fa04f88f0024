#include "Networking/Timeout.h"

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <stdexcept>

namespace {

namespace asio = boost::asio;
using Foundation::Task;
using namespace std::chrono_literals;

using IntOperation = std::function<Task<int>()>;

Task<int> after(std::chrono::nanoseconds duration, int value) {
    auto executor = co_await asio::this_coro::executor;
    asio::steady_timer timer(executor, duration);
    co_await timer.async_wait(asio::use_awaitable);
    co_return value;
}

// Never yields by itself; says whether it was cancelled.
Task<int> never(std::shared_ptr<std::atomic<int>> cancelled) {
    try {
        int const value = co_await after(std::chrono::hours(24), 0);
        co_return value;
    } catch (std::exception const&) {
        ++*cancelled;
        throw;
    }
}

Task<int> throwing() {
    throw std::domain_error("refused");
    co_return 0;
}

TEST(TimeoutTests, yieldsTheOperationsValueWithoutWaitingForTheTimer) {
    IntOperation operation = [] { return after(10ms, 7); };
    auto const started = std::chrono::steady_clock::now();
    EXPECT_EQ(Foundation::runTask(Networking::withTimeout<int>(15.0, operation)), 7);
    // The timer's fifteen seconds are not waited for, however slow the machine is.
    EXPECT_LT(std::chrono::steady_clock::now() - started, 10s);
}

TEST(TimeoutTests, rethrowsTheOperationsErrorWhenItFailsFirst) {
    IntOperation operation = [] { return throwing(); };
    EXPECT_THROW(Foundation::runTask(Networking::withTimeout<int>(15.0, operation)), std::domain_error);
}

TEST(TimeoutTests, throwsTimeoutErrorAndHasCancelledTheOperationByThen) {
    auto cancelled = std::make_shared<std::atomic<int>>(0);
    IntOperation operation = [cancelled] { return never(cancelled); };
    EXPECT_THROW(Foundation::runTask(Networking::withTimeout<int>(0.01, operation)),
                 Networking::TimeoutError);
    EXPECT_EQ(*cancelled, 1);
}

TEST(TimeoutTests, anOperationThatHeedsNoCancellationIsAwaitedAndItsValueDropped) {
    auto finished = std::make_shared<std::atomic<bool>>(false);
    IntOperation operation = [finished]() -> Task<int> {
        return [](std::shared_ptr<std::atomic<bool>> end) -> Task<int> {
            co_await asio::this_coro::reset_cancellation_state(asio::disable_cancellation());
            int const value = co_await after(50ms, 1);
            *end = true;
            co_return value;
        }(finished);
    };
    EXPECT_THROW(Foundation::runTask(Networking::withTimeout<int>(0.001, operation)),
                 Networking::TimeoutError);
    EXPECT_TRUE(*finished);
}

TEST(TimeoutTests, aHugeTimeIsWaitedForAndNotWrappedIntoThePast) {
    IntOperation operation = [] { return after(5ms, 3); };
    EXPECT_EQ(Foundation::runTask(Networking::withTimeout<int>(1.8e10, operation)), 3);
}

TEST(TimeoutTests, zeroSecondsEndEitherWay) {
    for (double const seconds : {0.0, -0.0}) {
        IntOperation operation = [] { return after(0ms, 5); };
        try {
            EXPECT_EQ(Foundation::runTask(Networking::withTimeout<int>(seconds, operation)), 5);
        } catch (Networking::TimeoutError const& error) {
            EXPECT_STREQ(error.what(), "the time ran out");
        }
    }
}

TEST(TimeoutTests, cancellingTheCallerCancelsTheOperation) {
    auto cancelled = std::make_shared<std::atomic<int>>(0);
    asio::io_context context;
    asio::cancellation_signal signal;
    bool isTimeout = false;
    bool hasFailed = false;
    IntOperation operation = [cancelled] { return never(cancelled); };
    asio::co_spawn(context, Networking::withTimeout<int>(3600, operation),
                   asio::bind_cancellation_slot(signal.slot(), [&](std::exception_ptr const& error, int) {
                       hasFailed = error != nullptr;
                       try {
                           if (error) std::rethrow_exception(error);
                       } catch (Networking::TimeoutError const&) {
                           isTimeout = true;
                       } catch (...) {
                           isTimeout = false;
                       }
                   }));
    asio::steady_timer canceller(context, 10ms);
    canceller.async_wait(
        [&](boost::system::error_code const&) { signal.emit(asio::cancellation_type::terminal); });
    context.run();
    EXPECT_TRUE(hasFailed);
    EXPECT_FALSE(isTimeout);
    EXPECT_EQ(*cancelled, 1);
}

TEST(TimeoutTests, twoThousandRacesOnAThreadPoolLeaveNothingBehind) {
    constexpr int count = 2000;
    asio::thread_pool pool(4);
    std::atomic<int> values = 0;
    std::atomic<int> timeouts = 0;
    std::atomic<int> others = 0;
    for (int number = 0; number < count; ++number) {
        auto const duration = std::chrono::microseconds(number % 7 * 300);
        IntOperation operation = [duration] { return after(duration, 1); };
        asio::co_spawn(pool, Networking::withTimeout<int>(0.001, operation),
                       [&](std::exception_ptr const& error, int value) {
                           if (!error) {
                               values += value;
                               return;
                           }
                           try {
                               std::rethrow_exception(error);
                           } catch (Networking::TimeoutError const&) {
                               ++timeouts;
                           } catch (...) {
                               ++others;
                           }
                       });
    }
    pool.join();
    EXPECT_EQ(values + timeouts, count);
    EXPECT_EQ(others, 0);
}

struct FatalRow {
    std::string name;
    double seconds;
};
class TimeoutDeathTests : public testing::TestWithParam<FatalRow> {};

TEST_P(TimeoutDeathTests, secondsThatNoTimerCanTakeEndTheProcess) {
    IntOperation operation = [] { return after(0ms, 1); };
    EXPECT_EXIT(Foundation::runTask(Networking::withTimeout<int>(GetParam().seconds, operation)),
                testing::KilledBySignal(SIGABRT),
                "withTimeout wants a finite, non-negative number of seconds");
}

INSTANTIATE_TEST_SUITE_P(Seconds, TimeoutDeathTests,
                         testing::Values(FatalRow{"minusOne", -1}, FatalRow{"barelyNegative", -1e-10},
                                         FatalRow{"tooLarge", 1.9e10},
                                         FatalRow{"infinite", std::numeric_limits<double>::infinity()},
                                         FatalRow{"notANumber", std::numeric_limits<double>::quiet_NaN()}),
                         [](auto const& row) { return row.param.name; });

} // namespace
