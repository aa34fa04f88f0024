#pragma once

#include "Foundation/Environment.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <chrono>
#include <optional>
#include <string>

namespace Platform {

/// Sends the reload signal on the session bus. Without a bus nothing happens; one that does not answer is
/// given up after a quarter of a second.
class SessionBusWidgetCenter final : public WidgetCenter {
public:
    static constexpr std::chrono::milliseconds patience{250};

    explicit SessionBusWidgetCenter(Foundation::Environment const& environment);

    void reloadAllTimelines() override;

private:
    std::optional<std::string> address;
};

} // namespace Platform
