#pragma once

#include "Foundation/Task.h"

#include <string_view>

namespace Platform {

/// An action that a button, a key or a command runs.
class AppIntent {
public:
    virtual ~AppIntent() = default;

    /// Key of its title in the extension's string table.
    [[nodiscard]] virtual std::string_view title() const = 0;

    /// Never throws.
    virtual Foundation::Task<void> perform() = 0;
};

} // namespace Platform
