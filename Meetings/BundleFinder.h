#pragma once

#include <string_view>

namespace Meetings {

/// Stands for this package where its resource bundle is looked up.
class BundleFinder final {
public:
    static constexpr std::string_view bundleName = "Meetings_Meetings";

    /// An address inside the package's code, which tells the object file that holds it.
    static void const* marker();
};

} // namespace Meetings
