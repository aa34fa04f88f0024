#pragma once

#include "Platform/WidgetHost/Timeline.h"
#include "Platform/WidgetHost/WidgetFamily.h"

#include <functional>

namespace Platform {

/// What a host tells a provider about the place it asks for.
struct TimelineProviderContext {
    WidgetFamily family;
};

/// Answers the host's three questions. Completions are called once each, from the provider's task.
template <typename Entry>
class TimelineProvider {
public:
    virtual ~TimelineProvider() = default;

    /// Something to show at once, without any data.
    virtual Entry placeholder(TimelineProviderContext const& context) = 0;

    virtual void getSnapshot(TimelineProviderContext const& context,
                             std::function<void(Entry)> completion) = 0;

    virtual void getTimeline(TimelineProviderContext const& context,
                             std::function<void(Timeline<Entry>)> completion) = 0;
};

} // namespace Platform
