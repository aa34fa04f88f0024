#pragma once

#include "Applications/Widget/WidgetState.h"
#include "Applications/Widget/WidgetStateStore.h"
#include "Platform/WidgetHost/GLibSource.h"

#include <functional>
#include <future>
#include <optional>

namespace Widget {

/// What the running widget remembers of its size and place. It lives on the main loop's thread; the disk is
/// waited for elsewhere.
class WidgetMemory final {
public:
    /// Without a store nothing is remembered, and nothing is written. `currentPlace` is asked once the window
    /// has stood still; absent where windows have no place that a program could know.
    WidgetMemory(std::optional<WidgetStateStore> store,
                 std::function<std::optional<Platform::WindowPlace>()> currentPlace);
    WidgetMemory(WidgetMemory const&) = delete;
    WidgetMemory& operator=(WidgetMemory const&) = delete;
    /// Waits for what is being written. A move that was not settled is lost.
    ~WidgetMemory();

    /// As the last run left it, with what was chosen in this one.
    [[nodiscard]] WidgetState const& state() const { return remembered; }

    void familyWasChosen(Platform::WidgetFamily family);

    /// May be called as often as the window moves: its place is written a moment after the last time.
    void windowMoved();

    /// Writes at once what waits for the window to stand still.
    void settle();

private:
    void change(WidgetState const& state);

    std::optional<WidgetStateStore> store;
    std::function<std::optional<Platform::WindowPlace>()> currentPlace;
    WidgetState remembered;
    std::optional<Platform::GLibSource> rest; // While the window may still be moving.
    std::future<void> writing;
};

} // namespace Widget
