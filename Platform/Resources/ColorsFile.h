#pragma once

#include "Platform/Appearance/ColorScheme.h"

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// A table of named colours, one for each colour scheme, in JSON:
/// `{"AccentColor": {"light": "#5CC2C6", "dark": "#696F9B"}}`. A colour is "#" and six hexadecimal digits, in
/// sRGB.
struct ColorsFile {
    /// Channels from 0 to 1.
    using Color = std::array<double, 3>;
    struct Schemes {
        std::optional<Color> light;
        std::optional<Color> dark;

        bool operator==(Schemes const&) const = default;
    };

    std::map<std::string, Schemes, std::less<>> colors;
    std::vector<std::string> problems; ///< What could not be read and was left out.

    /// Reads the whole document. What is wrong with a colour is reported and costs that colour alone; of
    /// equal names the first one stays.
    static ColorsFile parse(std::string_view document);

    /// Absent where the name or the scheme is not there.
    [[nodiscard]] std::optional<Color> find(std::string_view name, ColorScheme scheme) const;
};

} // namespace Platform
