#pragma once

#include <functional>

struct _GSource;

namespace Platform {

/// A callback on the default GLib main context. It is called only while this object lives.
class GLibSource final {
public:
    GLibSource() = default;

    /// Calls `handler` whenever `descriptor` can be read. The descriptor stays the caller's and must stay
    /// open for as long.
    static GLibSource watchingDescriptor(int descriptor, std::function<void()> handler);

    /// Calls `handler` whenever one of `events`, named as for `poll`, holds of `descriptor`, or its other end
    /// has gone. The descriptor stays the caller's, as above.
    static GLibSource whenReady(int descriptor, short events, std::function<void()> handler);

    /// Calls `handler` when nobody is left at the other end of `descriptor`, a pipe or terminal, and again
    /// for as long as this object lives. What can be read there does not matter.
    static GLibSource whenHungUp(int descriptor, std::function<void()> handler);

    /// Calls `handler` once, `milliseconds` from now; 0 means in the loop's next round.
    static GLibSource afterDelay(unsigned milliseconds, std::function<void()> handler);

    /// Calls `handler` at each arrival of the signal, on the loop's thread.
    static GLibSource onSignal(int signal, std::function<void()> handler);

    GLibSource(GLibSource const&) = delete;
    GLibSource& operator=(GLibSource const&) = delete;
    GLibSource(GLibSource&& other) noexcept;
    GLibSource& operator=(GLibSource&& other) noexcept;
    ~GLibSource();

private:
    explicit GLibSource(_GSource* source) : source(source) {}
    _GSource* source = nullptr;
};

} // namespace Platform
