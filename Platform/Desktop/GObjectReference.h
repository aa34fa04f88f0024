#pragma once

#include <glib-object.h>

#include <memory>

namespace Platform {

struct GObjectUnreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// Owns one reference to a GObject.
template <typename Object>
using GObjectReference = std::unique_ptr<Object, GObjectUnreference>;

} // namespace Platform
