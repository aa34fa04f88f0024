#include "Platform/WidgetHost/GLibSource.h"

#include <glib-unix.h>
#include <glib.h>

#include <utility>

namespace Platform {

namespace {

using Handler = std::function<void()>;

void deleteHandler(gpointer handler) {
    delete static_cast<Handler*>(handler);
}

// An exception must not pass through the library's frames: it ends the process here.
gboolean callAndKeep(gpointer handler) noexcept {
    (*static_cast<Handler*>(handler))();
    return G_SOURCE_CONTINUE;
}

gboolean callAndRemove(gpointer handler) noexcept {
    (*static_cast<Handler*>(handler))();
    return G_SOURCE_REMOVE;
}

gboolean callForDescriptor(gint, GIOCondition, gpointer handler) noexcept {
    return callAndKeep(handler);
}

// Such a source calls its function with two more arguments than the type of all of them tells.
GSourceFunc functionForDescriptor() {
    return reinterpret_cast<GSourceFunc>(reinterpret_cast<void (*)()>(callForDescriptor)); // NOLINT
}

_GSource* attach(GSource* source, GSourceFunc function, Handler handler) {
    g_source_set_callback(source, function, new Handler(std::move(handler)), deleteHandler);
    g_source_attach(source, nullptr);
    return source;
}

} // namespace

GLibSource GLibSource::watchingDescriptor(int descriptor, std::function<void()> handler) {
    return GLibSource(
        attach(g_unix_fd_source_new(descriptor, G_IO_IN), functionForDescriptor(), std::move(handler)));
}

GLibSource GLibSource::whenReady(int descriptor, short events, std::function<void()> handler) {
    // The library's conditions have the values of `poll`'s events.
    auto const conditions = static_cast<GIOCondition>(events | G_IO_ERR | G_IO_HUP);
    return GLibSource(
        attach(g_unix_fd_source_new(descriptor, conditions), functionForDescriptor(), std::move(handler)));
}

GLibSource GLibSource::whenHungUp(int descriptor, std::function<void()> handler) {
    return whenReady(descriptor, 0, std::move(handler));
}

GLibSource GLibSource::afterDelay(unsigned milliseconds, std::function<void()> handler) {
    return GLibSource(attach(g_timeout_source_new(milliseconds), callAndRemove, std::move(handler)));
}

GLibSource GLibSource::onSignal(int signal, std::function<void()> handler) {
    return GLibSource(attach(g_unix_signal_source_new(signal), callAndKeep, std::move(handler)));
}

GLibSource::GLibSource(GLibSource&& other) noexcept : source(std::exchange(other.source, nullptr)) {}

GLibSource& GLibSource::operator=(GLibSource&& other) noexcept {
    std::swap(source, other.source);
    return *this;
}

GLibSource::~GLibSource() {
    if (source != nullptr) {
        g_source_destroy(source);
        g_source_unref(source);
    }
}

} // namespace Platform
