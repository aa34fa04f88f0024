#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>

#include <exception>
#include <optional>
#include <utility>

namespace Foundation {

/// An asynchronous operation that yields `T` or throws; it starts when it is awaited.
template <typename T>
using Task = boost::asio::awaitable<T>;

/// Where tasks run. A value; copies name the same place.
class TaskExecutor {
public:
    explicit TaskExecutor(boost::asio::any_io_executor executor);

    /// Starts `task` on its own and returns at once. An exception that leaves it is a fatal error: a task
    /// body handles its failures itself.
    void start(Task<void> task) const;

    [[nodiscard]] boost::asio::any_io_executor const& asioExecutor() const;

private:
    boost::asio::any_io_executor executor;
};

/// Runs `task` to its end on the calling thread and yields its result, or throws its exception. For command
/// lines and tests, where no loop runs.
template <typename T>
T runTask(Task<T> task) {
    boost::asio::io_context context(1); // One thread runs it.
    auto result = boost::asio::co_spawn(context, std::move(task), boost::asio::use_future);
    context.run();
    return result.get();
}

} // namespace Foundation
