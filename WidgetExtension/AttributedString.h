#pragma once

#include <string>

namespace WidgetExtension {

/// A text that could bear attributes. The widget's own texts have none.
struct AttributedString {
    std::string string;

    bool operator==(AttributedString const&) const = default;
};

} // namespace WidgetExtension
