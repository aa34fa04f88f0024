#pragma once

#include "Foundation/FatalError.h"
#include "Platform/WidgetHost/MainExecutor.h"
#include "Platform/WidgetHost/MainLoop.h"

#include <future>
#include <thread>
#include <utility>

namespace Platform {

/// Hands work over to a main loop. Made on the loop's own thread; the loop outlives it.
class MainLoopExecutor final : public MainExecutor {
public:
    explicit MainLoopExecutor(MainLoop& loop) : loop(loop), mainThread(std::this_thread::get_id()) {}

    [[nodiscard]] bool isMainThread() const override { return std::this_thread::get_id() == mainThread; }

    void runAndWait(std::function<void()> const& work) override {
        std::packaged_task<void()> task(work);
        auto ended = task.get_future();
        loop.invoke(std::move(task));
        try {
            ended.get();
        } catch (std::future_error const&) {
            Foundation::fatalError("the main loop dropped work that another thread waits for");
        }
    }

private:
    MainLoop& loop;
    std::thread::id mainThread;
};

} // namespace Platform
