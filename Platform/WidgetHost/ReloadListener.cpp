#include "Platform/WidgetHost/ReloadListener.h"

#include "Platform/SessionBus/BusSubscription.h"
#include "Platform/WidgetHost/GLibServed.h"
#include "Platform/WidgetHost/WidgetBus.h"

#include <utility>

namespace Platform {

struct ReloadListener::State {
    GLibServed<BusSubscription> requests;
};

ReloadListener::ReloadListener(std::optional<std::string> const& busAddress,
                               std::function<void()> onRequest) {
    if (!busAddress) return;
    state.reset(new State{
        .requests = GLibServed<BusSubscription>(*busAddress, WidgetBus::reloadSignal, std::move(onRequest))});
}

ReloadListener::~ReloadListener() = default;

} // namespace Platform
