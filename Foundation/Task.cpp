#include "Foundation/Task.h"

#include "Foundation/FatalError.h"

// The compiled half of the library, built once here: every other unit sees declarations only.
#include <boost/asio/impl/src.hpp>

#include <string>

namespace Foundation {
namespace {

std::string describe(std::exception_ptr const& exception) {
    try {
        std::rethrow_exception(exception);
    } catch (std::exception const& error) {
        return error.what();
    } catch (...) {
        return "an exception of unknown type";
    }
}

} // namespace

TaskExecutor::TaskExecutor(boost::asio::any_io_executor executor) : executor(std::move(executor)) {}

void TaskExecutor::start(Task<void> task) const {
    boost::asio::co_spawn(executor, std::move(task), [](std::exception_ptr const& exception) {
        if (exception) fatalError("a task ended with an error that nobody handles: " + describe(exception));
    });
}

boost::asio::any_io_executor const& TaskExecutor::asioExecutor() const {
    return executor;
}

} // namespace Foundation
