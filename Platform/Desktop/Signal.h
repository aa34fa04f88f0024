#pragma once

#include <glib-object.h>

#include <functional>
#include <type_traits>
#include <utility>

namespace Platform {

template <typename Signature>
struct SignalThunk;

template <typename Result, typename... Arguments>
struct SignalThunk<Result(Arguments...)> {
    using Handler = std::function<Result(Arguments...)>;

    /// An exception must not pass through the library's frames: it ends the process here.
    static Result call(gpointer, Arguments... arguments, gpointer handler) noexcept {
        return (*static_cast<Handler*>(handler))(arguments...);
    }
    static void destroy(gpointer handler, GClosure*) { delete static_cast<Handler*>(handler); }
};

/// Connects `handler` to a signal for as long as `instance` lives. `Signature` is that of the C callback
/// without the instance and the data pointer; it has to match the signal's own.
template <typename Signature, typename Callable>
gulong connectSignal(gpointer instance, char const* signal, Callable&& handler) {
    using Thunk = SignalThunk<Signature>;
    return g_signal_connect_data(instance, signal, G_CALLBACK(&Thunk::call),
                                 new typename Thunk::Handler(std::forward<Callable>(handler)),
                                 &Thunk::destroy, GConnectFlags{});
}

} // namespace Platform
