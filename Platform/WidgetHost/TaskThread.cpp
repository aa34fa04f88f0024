#include "Platform/WidgetHost/TaskThread.h"

namespace Platform {

TaskThread::TaskThread()
    : context(1),
      keepsRunning(context.get_executor()),
      thread([this] { context.run(); }) {}

TaskThread::~TaskThread() {
    context.stop();
    thread.join();
}

Foundation::TaskExecutor TaskThread::executor() {
    return Foundation::TaskExecutor(context.get_executor());
}

} // namespace Platform
