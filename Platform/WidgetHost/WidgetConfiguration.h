#pragma once

#include "Platform/WidgetHost/WidgetFamily.h"

#include <string>
#include <vector>

namespace Platform {

/// What a widget declares about itself. The two texts are keys of the extension's string table.
struct StaticConfiguration {
    std::string kind;
    std::string displayNameKey;
    std::string descriptionKey;
    std::vector<WidgetFamily> supportedFamilies;
};

} // namespace Platform
