#pragma once

#include "Platform/Resources/ColorProvider.h"

#include <array>
#include <map>
#include <string>
#include <utility>

namespace Platform {

/// Colours from a table given by the caller; of those that it lacks there are none.
class TableColorProvider final : public ColorProvider {
public:
    using Table = std::map<std::pair<std::string, ColorScheme>, std::array<double, 3>>;

    TableColorProvider() = default;
    explicit TableColorProvider(Table colors) : colors(std::move(colors)) {}

    [[nodiscard]] std::optional<std::array<double, 3>> color(std::string_view name,
                                                             ColorScheme scheme) const override {
        auto const entry = colors.find({std::string(name), scheme});
        return entry == colors.end() ? std::nullopt : std::optional(entry->second);
    }

private:
    Table colors;
};

} // namespace Platform
