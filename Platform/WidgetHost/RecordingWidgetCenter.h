#pragma once

#include "Platform/WidgetHost/WidgetCenter.h"

namespace Platform {

/// Counts the reload requests that it was given.
class RecordingWidgetCenter final : public WidgetCenter {
public:
    void reloadAllTimelines() override { ++reloadCount; }

    int reloadCount = 0;
};

} // namespace Platform
