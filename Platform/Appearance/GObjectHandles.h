#pragma once

#include <gio/gio.h>

#include <memory>

/// Owners of what GIO hands out. Only this folder's sources include it.
namespace Platform::GObjectHandles {

struct Release {
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
    void operator()(GCancellable* cancellable) const { g_object_unref(cancellable); }
    void operator()(GAsyncResult* result) const { g_object_unref(result); }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

} // namespace Platform::GObjectHandles
