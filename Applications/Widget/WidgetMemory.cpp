#include "Applications/Widget/WidgetMemory.h"

#include <utility>

namespace Widget {

WidgetMemory::WidgetMemory(std::optional<WidgetStateStore> store,
                           std::function<std::optional<Platform::WindowPlace>()> currentPlace)
    : store(std::move(store)),
      currentPlace(std::move(currentPlace)),
      remembered(this->store ? this->store->load() : WidgetState{}) {}

WidgetMemory::~WidgetMemory() = default;

void WidgetMemory::familyWasChosen(Platform::WidgetFamily family) {
    auto state = remembered;
    state.family = family;
    change(state);
}

void WidgetMemory::windowMoved() {
    constexpr unsigned restMilliseconds = 500;
    if (store) {
        rest = Platform::GLibSource::afterDelay(restMilliseconds, [this] { settle(); });
    }
}

void WidgetMemory::settle() {
    if (!rest) {
        return;
    }
    rest.reset();
    if (auto const place = currentPlace()) {
        auto state = remembered;
        state.place = place;
        change(state);
    }
}

void WidgetMemory::change(WidgetState const& state) {
    if (std::exchange(remembered, state) == state || !store) {
        return;
    }
    if (writing.valid()) {
        writing.wait(); // The later state has to be written last.
    }
    writing = std::async(std::launch::async, [store = *store, state] { store.save(state); });
}

} // namespace Widget
