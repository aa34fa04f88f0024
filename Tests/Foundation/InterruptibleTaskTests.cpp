#include "Foundation/InterruptibleTask.h"

#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

namespace asio = boost::asio;
using namespace std::chrono_literals;
using Foundation::Task;

Task<int> after(std::chrono::nanoseconds duration, int value) {
    auto executor = co_await asio::this_coro::executor;
    asio::steady_timer timer(executor, duration);
    co_await timer.async_wait(asio::use_awaitable);
    co_return value;
}

// Waits for an hour once it has raised the signal; notes when it is ended earlier.
Task<int> raising(int signal, std::shared_ptr<bool> wasEnded) {
    ::raise(signal);
    try {
        int const value = co_await after(1h, 1);
        co_return value;
    } catch (...) {
        *wasEnded = true;
        throw;
    }
}

Task<int> refusing() {
    throw std::runtime_error("refused");
    co_return 0;
}

TEST(InterruptibleTaskTests, yieldsTheValueOfATaskThatEnds) {
    auto const result = Foundation::runInterruptibly(after(1ms, 7), nullptr);
    EXPECT_EQ(result.value, 7);
    EXPECT_EQ(result.end.signal, std::nullopt);
    EXPECT_FALSE(result.end.error);
}

TEST(InterruptibleTaskTests, keepsTheErrorOfATaskThatFails) {
    auto const result = Foundation::runInterruptibly(refusing(), nullptr);
    EXPECT_EQ(result.value, std::nullopt);
    EXPECT_THROW(std::rethrow_exception(result.end.error), std::runtime_error);
}

TEST(InterruptibleTaskTests, aSignalCancelsTheTaskAndAwaitsIt) {
    for (int const signal : {SIGINT, SIGTERM}) {
        auto const wasEnded = std::make_shared<bool>(false);
        auto const result = Foundation::runInterruptibly(raising(signal, wasEnded), nullptr);
        EXPECT_EQ(result.end.signal, signal);
        EXPECT_EQ(result.value, std::nullopt);
        EXPECT_TRUE(*wasEnded);
    }
}

TEST(InterruptibleTaskTests, afterTheRunASignalIsTheSystemsAgain) {
    static_cast<void>(Foundation::runInterruptibly(after(1ms, 7), nullptr));
    EXPECT_EXIT(::raise(SIGINT), testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptibleTaskTests, anIgnoredSignalStaysIgnored) {
    std::signal(SIGINT, SIG_IGN);
    auto const wasEnded = std::make_shared<bool>(false);
    auto const result = Foundation::runInterruptibly(
        [](std::shared_ptr<bool> ended) -> Task<int> {
            ::raise(SIGINT);
            int const value = co_await after(1ms, 3);
            *ended = true;
            co_return value;
        }(wasEnded),
        nullptr);
    EXPECT_EQ(result.value, 3);
    EXPECT_EQ(result.end.signal, std::nullopt);
    std::signal(SIGINT, SIG_DFL);
}

TEST(InterruptibleTaskTests, theSecondsOfALongTaskAreCounted) {
    auto const seconds = std::make_shared<std::vector<std::int64_t>>();
    // It ends itself after the second count, however slow the machine is.
    auto const result = Foundation::runInterruptibly(after(1h, 1), [seconds](std::chrono::seconds elapsed) {
        seconds->push_back(elapsed.count());
        if (seconds->size() == 2) ::raise(SIGTERM);
    });
    EXPECT_EQ(*seconds, (std::vector<std::int64_t>{1, 2}));
    EXPECT_EQ(result.end.signal, SIGTERM);
}

} // namespace
