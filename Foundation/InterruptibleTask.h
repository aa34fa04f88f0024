#pragma once

#include "Foundation/Task.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace Foundation {

/// How a task that a signal may end has ended.
struct TaskEnd {
    std::exception_ptr error;  ///< What the task threw, if it did.
    std::optional<int> signal; ///< SIGINT or SIGTERM, if one came while it ran.
};

/// Runs `task` to its end on the calling thread. SIGINT or SIGTERM cancels it, and it is still awaited, so
/// that nothing of it is left behind; a second one ends the process as it usually does. A signal that the
/// process ignores stays ignored. Every second that it takes, `everySecond` is called with their count.
TaskEnd runInterruptibly(Task<void> task, std::function<void(std::chrono::seconds)> everySecond);

/// A value, unless the task failed, and how it ended.
template <typename T>
struct TaskResult {
    std::optional<T> value;
    TaskEnd end;
};

namespace Detail {

template <typename T>
Task<void> keepResult(Task<T> task, std::shared_ptr<std::optional<T>> kept) {
    T value = co_await std::move(task);
    *kept = std::move(value);
}

} // namespace Detail

/// The same for a task that yields a value.
template <typename T>
TaskResult<T> runInterruptibly(Task<T> task, std::function<void(std::chrono::seconds)> everySecond) {
    auto const kept = std::make_shared<std::optional<T>>();
    auto end = runInterruptibly(Detail::keepResult(std::move(task), kept), std::move(everySecond));
    return {.value = std::move(*kept), .end = std::move(end)};
}

} // namespace Foundation
