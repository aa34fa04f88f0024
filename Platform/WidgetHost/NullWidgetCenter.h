#pragma once

#include "Platform/WidgetHost/WidgetCenter.h"

namespace Platform {

/// The way to no host, for a process whose presses nobody has to be told of.
class NullWidgetCenter final : public WidgetCenter {
public:
    void reloadAllTimelines() override {}
};

} // namespace Platform
