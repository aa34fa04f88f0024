#pragma once

#include <string_view>

namespace WidgetExtension {

/// Stands for the extension where its own resource bundle is looked up.
class ResourceBundleClass final {
public:
    static constexpr std::string_view bundleName = "WidgetExtension_WidgetExtension";

    /// An address inside the extension's code, which tells the object file that holds it.
    static void const* marker();
};

} // namespace WidgetExtension
