#pragma once

#include "Foundation/Task.h"

#include <thread>

namespace Platform {

/// One thread on which tasks run, so that reading calendars never holds up the window.
class TaskThread final {
public:
    TaskThread();
    TaskThread(TaskThread const&) = delete;
    TaskThread& operator=(TaskThread const&) = delete;

    /// Waits for the step that is running; tasks that wait for something else are dropped.
    ~TaskThread();

    [[nodiscard]] Foundation::TaskExecutor executor();

private:
    boost::asio::io_context context;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> keepsRunning;
    std::thread thread;
};

} // namespace Platform
