#pragma once

#include "Platform/WidgetHost/MainLoop.h"

struct _GMainLoop;

namespace Platform {

/// The loop of GLib's default main context, which a window toolkit shares.
class GLibMainLoop final : public MainLoop {
public:
    GLibMainLoop();
    GLibMainLoop(GLibMainLoop const&) = delete;
    GLibMainLoop& operator=(GLibMainLoop const&) = delete;
    ~GLibMainLoop() override;

    void invoke(std::move_only_function<void()> work) override;

    /// Runs on the calling thread until quit().
    void run();

    /// Ends run() after the round it is in. Before run() it has no effect.
    void quit();

private:
    _GMainLoop* loop;
};

} // namespace Platform
