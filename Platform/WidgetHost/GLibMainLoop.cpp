#include "Platform/WidgetHost/GLibMainLoop.h"

#include <glib.h>

#include <utility>

namespace Platform {

namespace {

using Work = std::move_only_function<void()>;

// An exception must not pass through the library's frames: it ends the process here.
gboolean perform(gpointer work) noexcept {
    (*static_cast<Work*>(work))();
    return G_SOURCE_REMOVE;
}

void deleteWork(gpointer work) {
    delete static_cast<Work*>(work);
}

} // namespace

GLibMainLoop::GLibMainLoop() : loop(g_main_loop_new(nullptr, FALSE)) {}

GLibMainLoop::~GLibMainLoop() {
    g_main_loop_unref(loop);
}

void GLibMainLoop::invoke(std::move_only_function<void()> work) {
    // Not g_main_context_invoke: while nobody runs the context, as during start-up, that would run the work
    // on the calling thread.
    GSource* const source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(source, perform, new Work(std::move(work)), deleteWork);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

void GLibMainLoop::run() {
    g_main_loop_run(loop);
}

void GLibMainLoop::quit() {
    g_main_loop_quit(loop);
}

} // namespace Platform
