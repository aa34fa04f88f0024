#pragma once

#include <string_view>

namespace CalendarProviders {

/// Stands for this package where its resource bundle is looked up.
class BundleFinder final {
public:
    static constexpr std::string_view bundleName = "CalendarProviders_CalendarProviders";

    /// An address inside the package's code, which tells the object file that holds it.
    static void const* marker();
};

} // namespace CalendarProviders
