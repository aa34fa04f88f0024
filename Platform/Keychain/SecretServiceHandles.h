#pragma once

#include <libsecret/secret.h>

#include <memory>

/// Owners of what libsecret and GIO hand out. Only this folder's sources include it.
namespace Platform::SecretServiceHandles {

struct Release {
    void operator()(GDBusConnection* object) const { g_object_unref(object); }
    void operator()(GCancellable* object) const { g_object_unref(object); }
    void operator()(SecretService* object) const { g_object_unref(object); }
    void operator()(SecretCollection* object) const { g_object_unref(object); }
    void operator()(SecretItem* object) const { g_object_unref(object); }
    void operator()(SecretValue* value) const { secret_value_unref(value); }
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
    void operator()(GError* error) const { g_error_free(error); }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

/// An error's way out of a C call: `owned` holds it once this object has gone.
class ErrorSlot {
public:
    explicit ErrorSlot(Owned<GError>& owned) : owned(owned) {}
    ~ErrorSlot() { owned.reset(raw); }
    ErrorSlot(ErrorSlot const&) = delete;
    ErrorSlot& operator=(ErrorSlot const&) = delete;

    operator GError**() { return &raw; } // NOLINT(google-explicit-constructor): it stands in for one.

private:
    Owned<GError>& owned;
    GError* raw = nullptr;
};

} // namespace Platform::SecretServiceHandles
