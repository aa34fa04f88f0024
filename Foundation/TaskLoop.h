#pragma once

#include "Foundation/Task.h"

namespace Foundation {

/// Runs tasks on the calling thread, for programs that have no loop of their own.
class TaskLoop final {
public:
    [[nodiscard]] TaskExecutor executor() { return TaskExecutor(context.get_executor()); }

    /// Runs what was started on the executor, and what that starts, until nothing is left to do.
    void run() {
        context.restart();
        context.run();
    }

private:
    boost::asio::io_context context{1}; // One thread runs it.
};

} // namespace Foundation
