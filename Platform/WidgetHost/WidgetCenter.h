#pragma once

namespace Platform {

/// The way to a widget host, wherever it runs.
class WidgetCenter {
public:
    virtual ~WidgetCenter() = default;

    /// Asks every running host to load its timelines anew. Returns at once; without a host nothing happens.
    virtual void reloadAllTimelines() = 0;
};

} // namespace Platform
