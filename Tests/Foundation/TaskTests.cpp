#include "Foundation/Task.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>
#include <string>

namespace {

using namespace Foundation;

Task<int> answer(int value) {
    co_return value;
}

Task<int> sum(int left, int right) {
    int const first = co_await answer(left);
    int const second = co_await answer(right);
    co_return first + second;
}

Task<int> failing() {
    throw std::runtime_error("no luck");
    co_return 0;
}

Task<void> failingInTheBackground() {
    int const value = co_await failing();
    static_cast<void>(value);
}

TEST(TaskTests, aTaskRunsToItsValueOnTheCallingThread) {
    EXPECT_EQ(runTask(sum(40, 2)), 42);
}

TEST(TaskTests, anExceptionReachesTheCaller) {
    EXPECT_THROW(runTask(failing()), std::runtime_error);
}

TEST(TaskTests, aStartedTaskRunsWithItsExecutor) {
    boost::asio::io_context context;
    TaskExecutor const executor(context.get_executor());
    bool ran = false;
    // The flag outlives the loop below; the task is a captureless coroutine with a pointer parameter.
    auto const body = [](bool* flag) -> Task<void> {
        *flag = true;
        co_return;
    };
    executor.start(body(&ran));
    EXPECT_FALSE(ran);
    context.run();
    EXPECT_TRUE(ran);
}

TEST(TaskDeathTests, anExceptionThatNobodyHandlesEndsTheProcess) {
    auto const run = [] {
        boost::asio::io_context context;
        TaskExecutor(context.get_executor()).start(failingInTheBackground());
        context.run();
    };
    EXPECT_EXIT(run(), testing::KilledBySignal(SIGABRT), "an error that nobody handles: no luck");
}

} // namespace
